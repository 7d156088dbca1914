// Builds against the installed headers and libraries only, and checks that a bound slider works. The
// umbrella alone must name everything used here.
#include <vandrel/vandrel.h>

#include <QApplication>

#include <cstdio>

int main(int argc, char** argv)
{
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
    // The coordinate formats come with the base controls' own (private) GeographicLib link.
    if (basecontrols::CoordText::Format(59.330231, 18.059196, SweRef99) != QStringLiteral("N: 6580822 E: 674032"))
        return 5;
    std::puts("consumer: bound slider follows and writes its value; coordinates convert");
    return 0;
}
