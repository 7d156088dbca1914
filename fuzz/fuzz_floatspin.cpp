// VCNumericFloatSpin's validator and the commit of typed text, with prefixes and suffixes, decimals,
// a scaled display and the C or German locale. An Acceptable text is given back whole; the commit
// leaves the value within its limits and not NaN; and what the box then shows is acceptable to its
// own validator and reads back as the number shown, so committing it again settles at once.
//
// Input: byte 0 prefix and suffix, byte 1 decimals, locale and scaling, then the text.

#include "fuzzcheck.h"

#include <values/values.h>
#include <vandrel/vcnumericfloatspin.h>

#include <QLineEdit>
#include <QLocale>

#include <cmath>
#include <iterator>

namespace {

const QString kPath = QStringLiteral("/fuzz/level");
const double kMinimum = -500.0;
const double kMaximum = 1e6;
const double kStart = 12.5;

struct Affixes {
    const char* prefix;
    const char* suffix;
    // Characters that act as expression syntax in the validator's pattern, by design: such a box
    // need not read its own text back.
    bool syntax;
};
const Affixes kAffixes[] = {
    {"", "", false}, {"", "dB", false}, {"~ ", "Hz", false}, {"", "%", false}, {"", "(x)", true}, {"$", "", true},
};

values::DoubleNumeric* level()
{
    return static_cast<values::DoubleNumeric*>(values::Tree::Instance()->Find(kPath));
}

// The spin box's own number, as its text shows it (before the factor): QDoubleSpinBox::value().
double shownNumber(const VCNumericFloatSpin& spin)
{
    return spin.QDoubleSpinBox::value();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::makeApplication(argc, argv);
    values::Tree::Instance()->Add(kPath, new values::DoubleNumeric(kStart, kMinimum, kMaximum));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const Affixes& affixes = kAffixes[fuzz::choice(data[0], int(std::size(kAffixes)))];
    const int setting = fuzz::choice(data[1], 16);
    const int decimals = setting % 4;
    const bool german = (setting / 4) % 2;
    const bool scaled = setting / 8;
    const QString input = fuzz::text(data + 2, size - 2);

    values::DoubleNumeric* value = level();
    value->SetValue(kStart, nullptr);

    // One box per setting for the whole run: building a spin box, and setting its decimals, costs more
    // than the rest of an input (Qt writes out the box's whole range, +-DBL_MAX, in full).
    static VCNumericFloatSpin* boxes[16] = {};
    if (!boxes[setting]) {
        boxes[setting] = new VCNumericFloatSpin(nullptr, "fuzz");
        // The box's own locale, the application's staying C: the box shows and reads in its own.
        boxes[setting]->setLocale(german ? QLocale(QLocale::German, QLocale::Germany) : QLocale::c());
        boxes[setting]->setDecimals(decimals);
    }
    VCNumericFloatSpin& spin = *boxes[setting];
    spin.setPrefix(QString::fromLatin1(affixes.prefix));
    spin.setSuffix(QString::fromLatin1(affixes.suffix));
    // Scaled, the box counts in thousandths of the value and shows the value's number again.
    spin.SetFactor(scaled ? 1000.0 : 1.0);
    spin.SetUnitScale(scaled ? 1000.0 : 1.0);
    spin.SetNumericValue(value);
    const QString context = QStringLiteral("prefix '%1', suffix '%2', decimals %3, german %4, scaled %5, text '%6'")
                                .arg(QLatin1String(affixes.prefix), QLatin1String(affixes.suffix))
                                .arg(decimals)
                                .arg(german)
                                .arg(scaled)
                                .arg(input);

    QString checked = input;
    int pos = 0;
    if (spin.validate(checked, pos) == QValidator::Acceptable)
        FUZZ_CHECK(checked == input, context + " became '" + checked + "'");

    spin.findChild<QLineEdit*>()->setText(input);
    spin.interpretText();
    spin.SlotEditingFinished();
    const double written = value->GetValue();
    const QString shown = spin.text();
    const QString writtenContext = context + QStringLiteral(" wrote %1, shows '%2'").arg(written, 0, 'g', 17).arg(shown);
    FUZZ_CHECK(!std::isnan(written) && written >= kMinimum && written <= kMaximum, writtenContext);
    // The box shows what it wrote, to its decimals: a typed exponent ("-600E-11") passes
    // QDoubleValidator's count of decimals, so the value may keep digits that the box rounds away.
    const double halfStep = std::pow(10.0, -decimals) / 2;
    FUZZ_CHECK(std::fabs(written - spin.value()) <= halfStep + std::fabs(written) * 1e-12, writtenContext);

    if (!affixes.syntax) {
        QString own = shown;
        FUZZ_CHECK(spin.validate(own, pos) == QValidator::Acceptable, writtenContext);
        const double read = spin.valueFromText(shown);
        const double shownInternal = shownNumber(spin);
        // Read back to the number shown, within the rounding to the decimals shown.
        const double step = std::pow(10.0, -decimals) * (scaled ? 1000.0 : 1.0);
        FUZZ_CHECK(std::fabs(read - shownInternal) <= step / 2 + std::fabs(shownInternal) * 1e-12,
                   writtenContext + QStringLiteral(" reads back as %1").arg(read, 0, 'g', 17));

        // Committed again, the shown text may round the value to the decimals shown (the display
        // of a scaled box has fewer than the box itself); a third commit changes nothing.
        auto commitShown = [value, &spin] {
            spin.findChild<QLineEdit*>()->setText(spin.text());
            spin.interpretText();
            spin.SlotEditingFinished();
            return value->GetValue();
        };
        const double second = commitShown();
        const double third = commitShown();
        const QString againContext =
            writtenContext + QStringLiteral(", committed again %1, %2").arg(second, 0, 'g', 17).arg(third, 0, 'g', 17);
        FUZZ_CHECK(std::fabs(second - written) <= halfStep + std::fabs(written) * 1e-12, againContext);
        FUZZ_CHECK(fuzz::sameNumber(third, second), againContext);
    }
    // The other boxes need not follow the value meanwhile.
    spin.SetNumericValue(nullptr);
    return 0;
}
