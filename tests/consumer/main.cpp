// Builds against the installed headers and libraries only, and checks that a bound slider works. The
// umbrella alone must name everything used here.
#include <vandrel/vandrel.h>

#include <QApplication>
#include <QBuffer>
#include <QUiLoader>

#include <cstdio>

int main(int argc, char** argv)
{
    // Only the installed catalogs, and for a Qt 6 build those of its own, suffixed directory.
    qputenv("XDG_DATA_HOME", VANDREL_PREFIX "/nowhere");
    qputenv("XDG_DATA_DIRS", VANDREL_PREFIX "/share");
    QApplication app(argc, argv);
    auto* gain = new values::IntNumeric(10, 0, 60, 1);
    if (!values::Tree::Instance()->Add(QStringLiteral("/receiver/gain"), gain))
        return 1;

    VCSlider slider(nullptr, "gain");
    if (!slider.SetNumeric_ValuePath(QStringLiteral("/receiver/gain")) || slider.value() != 10 || !slider.isEnabled())
        return 2;
    gain->SetValue(42, nullptr);
    slider.setValue(slider.value() + 1);
    if (gain->GetValue() != 43.0)
        return 3;
    if (!TranslationCenter::Instance().IsRegistered(QStringLiteral("Vandrel"))
        || !TranslationCenter::Instance().IsRegistered(QStringLiteral("Plinthor")))
        return 4;
    TranslationCenter::Instance().SetLocale(QStringLiteral("de"));
    const QString catalog = QStringLiteral(VANDREL_PREFIX "/share/vandrel%1/translations/vandrel_de.qm")
                                .arg(QT_VERSION_MAJOR == 6 ? QStringLiteral("6") : QString());
    if (TranslationCenter::Instance().LoadedCatalog(QStringLiteral("Vandrel")) != catalog)
        return 6;
    // The coordinate formats come with the base controls' own (private) GeographicLib link.
    if (basecontrols::CoordText::Format(59.330231, 18.059196, SweRef99) != QStringLiteral("N: 6580822 E: 674032"))
        return 5;
    // A form with a Vandrel control, loaded through the installed Designer plugin and bound by its property.
    QCoreApplication::addLibraryPath(QStringLiteral(VANDREL_PLUGINS));
    QBuffer form;
    form.setData("<ui version=\"4.0\"><widget class=\"QWidget\" name=\"panel\"><widget class=\"VCSlider\" name=\"gainSlider\">"
                 "<property name=\"valuePath\" stdset=\"0\"><string>/receiver/gain</string></property>"
                 "</widget></widget></ui>");
    QUiLoader loader;
    QScopedPointer<QWidget> panel(loader.load(&form));
    if (!panel)
        return 7;
    const vandrel::BindFormResult bound = vandrel::BindForm(panel.data());
    auto* formSlider = panel->findChild<VCSlider*>(QStringLiteral("gainSlider"));
    if (!formSlider || bound.bound.size() != 1 || !bound.failed.isEmpty() || formSlider->value() != 43)
        return 8;
    std::printf("consumer (Qt %s): bound slider follows and writes its value; coordinates convert; a form binds\n", qVersion());
    return 0;
}
