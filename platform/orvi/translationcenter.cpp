#include <orvi/translationcenter.h>

#include <brevanbase/errorhandler.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>
#include <QThread>
#include <QTranslator>

#include <cstring>

struct TranslationCenter::Entry
{
    ~Entry() { uninstall(); }
    // The catalog also serves the application's own lookups, so that the tr() of a library's
    // classes (context: the class name) finds the words of the library's catalog.
    void install()
    {
        // Only the application's thread may install: installing sends LanguageChange to the widgets.
        QCoreApplication* app = QCoreApplication::instance();
        if (translator && app && !installed && QThread::currentThread() == app->thread())
            installed = QCoreApplication::installTranslator(translator.get());
    }
    void uninstall()
    {
        if (translator && installed && QCoreApplication::instance())
            QCoreApplication::removeTranslator(translator.get());
        installed = false;
    }
    void reset()
    {
        uninstall();
        translator.reset();
    }

    bool serveApplication = false;           // InstallCatalog() was asked for this namespace
    bool loaded = false;                     // a search was made for the current locale and paths
    bool installed = false;                  // the translator is among the application's
    std::unique_ptr<QTranslator> translator; // null when no catalog was found
};

namespace {

// Catalog file names for a locale, most specific first per UI language, with the same fallbacks
// QTranslator::load(QLocale, ...) uses: "de-AT" tries base_de_AT.qm, then base_de.qm. Doing the
// search here rather than in QTranslator lets a catalog that exists but will not load be reported.
QStringList catalogFileNames(const QLocale& locale, const QString& base)
{
    QStringList names;
    const QStringList languages = locale.uiLanguages();
    for (const QString& language : languages) {
        QString tag = language;
        tag.replace(QLatin1Char('-'), QLatin1Char('_'));
        for (QString variant : {tag, tag.toLower()}) {
            for (;;) {
                const QString name = base + QLatin1Char('_') + variant + QLatin1String(".qm");
                if (!names.contains(name))
                    names.append(name);
                const int cut = variant.lastIndexOf(QLatin1Char('_'));
                if (cut <= 0)
                    break;
                variant.truncate(cut);
            }
        }
    }
    return names;
}

// Namespaces registered before the application existed get their catalogs as soon as it does, so
// that the words of their classes are translated from the first window on.
void loadRegisteredCatalogs()
{
    TranslationCenter& center = TranslationCenter::Instance();
    for (const QString& name : center.RegisteredNames())
        center.LoadedCatalog(name);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(loadRegisteredCatalogs)

void TranslationCenter::InstallCatalog(const QString& name)
{
    QMutexLocker locker(&m_mutex);
    const auto it = m_entries.find(name.toUtf8());
    if (it == m_entries.end())
        return;
    Entry& entry = *it->second;
    entry.serveApplication = true;
    if (!QCoreApplication::instance())
        return; // installed when the catalog loads with the application
    if (!entry.loaded)
        load(it->first, entry);
    else
        entry.install();
}

TranslationCenter& TranslationCenter::Instance()
{
    // Never destroyed: libraries may translate from their own static destructors, and the pointer
    // stays reachable so leak checkers do not report it.
    static TranslationCenter* const center = new TranslationCenter;
    return *center;
}

TranslationCenter::TranslationCenter() = default;

TranslationCenter::~TranslationCenter() = default;

void TranslationCenter::Register(const QString& name)
{
    if (name.isEmpty())
        return;
    QMutexLocker locker(&m_mutex);
    std::unique_ptr<Entry>& entry = m_entries[name.toUtf8()];
    if (!entry)
        entry = std::make_unique<Entry>();
}

void TranslationCenter::Unregister(const QString& name)
{
    QMutexLocker locker(&m_mutex);
    const auto it = m_entries.find(name.toUtf8());
    if (it != m_entries.end())
        m_entries.erase(it);
}

bool TranslationCenter::IsRegistered(const QString& name) const
{
    QMutexLocker locker(&m_mutex);
    return m_entries.count(name.toUtf8()) != 0;
}

QStringList TranslationCenter::RegisteredNames() const
{
    QMutexLocker locker(&m_mutex);
    QStringList names;
    names.reserve(int(m_entries.size()));
    for (const auto& entry : m_entries)
        names.append(QString::fromUtf8(entry.first));
    // The map orders by UTF-8 bytes, which is not QString's order for every text.
    names.sort();
    return names;
}

QString TranslationCenter::translate(const char* nameSpace, QString text, const char* context) const
{
    // Without an application nothing is loaded yet and no translator can be installed.
    if (!nameSpace || text.isEmpty() || !QCoreApplication::instance())
        return text;

    const QByteArray source = text.toUtf8();
    {
        QMutexLocker locker(&m_mutex);
        const Entry* entry = ensureLoaded(QByteArray::fromRawData(nameSpace, int(std::strlen(nameSpace))));
        if (entry && entry->translator) {
            QString translated = entry->translator->translate(nameSpace, source.constData(), context);
            if (!translated.isNull())
                return translated;
        }
    }
    // Outside the lock: an installed translator may itself end up calling back into the centre.
    return QCoreApplication::translate(nameSpace, source.constData(), context);
}

void TranslationCenter::AddSearchPath(const QString& directory)
{
    if (directory.isEmpty())
        return;
    QMutexLocker locker(&m_mutex);
    m_searchPaths.removeAll(directory);
    m_searchPaths.prepend(directory);
    for (auto& entry : m_entries)
        entry.second->loaded = false;
}

QStringList TranslationCenter::SearchPaths() const
{
    QMutexLocker locker(&m_mutex);
    return m_searchPaths;
}

void TranslationCenter::SetLocale(const QString& localeName)
{
    QMutexLocker locker(&m_mutex);
    m_strLocale = localeName;
    const bool canLoad = QCoreApplication::instance() != nullptr;
    for (auto& entry : m_entries) {
        entry.second->loaded = false;
        entry.second->reset();
        if (canLoad)
            load(entry.first, *entry.second);
    }
}

QString TranslationCenter::LoadedCatalog(const QString& name) const
{
    QMutexLocker locker(&m_mutex);
    const Entry* entry = QCoreApplication::instance() ? ensureLoaded(name.toUtf8()) : nullptr;
    return entry && entry->translator ? entry->translator->filePath() : QString();
}

TranslationCenter::Entry* TranslationCenter::ensureLoaded(const QByteArray& name) const
{
    const auto it = m_entries.find(name);
    if (it == m_entries.end())
        return nullptr;
    if (!it->second->loaded)
        load(it->first, *it->second);
    return it->second.get();
}

void TranslationCenter::load(const QByteArray& name, Entry& entry) const
{
    entry.loaded = true;
    entry.reset();

    const QString base = QString::fromUtf8(name).toLower();
    QStringList directories = m_searchPaths;
    directories.append(QCoreApplication::applicationDirPath() + QLatin1String("/translations"));
    const QStringList dataLocations = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
    for (const QString& location : dataLocations) {
        // A Qt 6 build's catalogs stand beside a Qt 5 build's, in "<namespace>6"; its own come first.
        constexpr char dataDirSuffix[] = ORVI_DATA_DIR_SUFFIX;
        if (dataDirSuffix[0] != '\0')
            directories.append(location + QLatin1Char('/') + base + QLatin1String(dataDirSuffix) +
                               QLatin1String("/translations"));
        directories.append(location + QLatin1Char('/') + base + QLatin1String("/translations"));
    }
    directories.append(QStringLiteral(":/i18n"));

    const QStringList fileNames =
        catalogFileNames(m_strLocale.isEmpty() ? QLocale() : QLocale(m_strLocale), base);
    for (const QString& directory : qAsConst(directories)) {
        const QDir dir(directory);
        for (const QString& fileName : fileNames) {
            const QString path = dir.filePath(fileName);
            if (!QFileInfo(path).isFile())
                continue;
            auto translator = std::make_unique<QTranslator>();
            if (translator->load(path)) {
                entry.translator = std::move(translator);
                if (entry.serveApplication)
                    entry.install();
                return;
            }
            BREVAN_TRACE_FAILURE(QStringLiteral("translation catalog %1 could not be loaded").arg(path));
        }
    }
}
