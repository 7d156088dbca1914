#include <vandrel/binding/moduleentry.h>

#include <orvi/translationcenter.h>

#include <QString>

extern "C" bool VandrelModuleEntry(void* module, unsigned long reason, void* reserved)
{
    Q_UNUSED(module)
    Q_UNUSED(reserved)
    if (reason == VandrelProcessAttach) {
        TranslationCenter::Instance().Register(QStringLiteral("Vandrel"));
        // The controls translate their own words with tr(): the catalog serves the application too.
        TranslationCenter::Instance().InstallCatalog(QStringLiteral("Vandrel"));
    }
    else if (reason == VandrelProcessDetach)
        TranslationCenter::Instance().Unregister(QStringLiteral("Vandrel"));
    return true;
}

namespace {
// The shared object's load and unload hooks: a static object of the library is constructed when the
// loader maps it and destroyed when it unmaps it.
struct ModuleHook
{
    ModuleHook() { VandrelModuleEntry(nullptr, VandrelProcessAttach, nullptr); }
    ~ModuleHook() { VandrelModuleEntry(nullptr, VandrelProcessDetach, nullptr); }
};
const ModuleHook s_moduleHook;
} // namespace
