// The commit of a VCLineEdit bound to a number, for each LineEditType, on any text: the value ends
// within its limits and is never NaN; a field with a formatter writes what a formatter of its kind
// reads from the text, clamped (never below 0), shows it in its fixed prefix, and its text reads
// back; a time field writes 0; and once committed, committing the shown text again is stable.
//
// Input: byte 0 the LineEditType (0 to 7), byte 1 the limits and plain format, then the text.

#include "fuzzcheck.h"

#include <plinthor/suffixeddouble.h>
#include <values/values.h>
#include <vandrel/vclineedit.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

const QString kPath = QStringLiteral("/fuzz/number");

struct Setting {
    double minimum;
    double maximum;
    double start;
    // SetFormat() of a plain field; the first is the format of a field that was given none.
    int integerDigits;
    int decimals;
    const char* suffix;
    bool unitLetters;
    double factor;
};

const Setting kSettings[] = {
    {-1e6, 1e9, 250.0, -1, -1, "", false, 1.0},
    {1000.0, 2000.0, 1500.0, 3, 2, "Hz", true, 1000.0},
    {-10.0, 5e9, 0.5, -1, -1, "dB", false, 1.0},
    {-1.7976931348623157e308, 1.7976931348623157e308, 1.0, -1, -1, "", true, 0.0},
};

values::DoubleNumeric* number()
{
    return static_cast<values::DoubleNumeric*>(values::Tree::Instance()->Find(kPath));
}

bool hasFormatter(VCLineEdit::LineEditType type)
{
    return type >= VCLineEdit::Frequency && type <= VCLineEdit::FrequencySuffix4;
}

// A formatter of the field's kind, built as the field builds its own.
std::unique_ptr<SuffixedDouble> formatterOf(VCLineEdit::LineEditType type)
{
    const bool plain = type == VCLineEdit::SuffixedNumber;
    auto formatter = std::make_unique<SuffixedDouble>(plain ? QString() : QStringLiteral("Hz"), 1000, plain);
    formatter->SetSuffix_ValuePath(QString());
    if (type == VCLineEdit::FrequencySuffix2)
        formatter->SetSuffix(SuffixedDouble::SuffixKilo);
    else if (type == VCLineEdit::FrequencySuffix3)
        formatter->SetSuffix(SuffixedDouble::SuffixMega);
    else if (type == VCLineEdit::FrequencySuffix4)
        formatter->SetSuffix(SuffixedDouble::SuffixGiga);
    return formatter;
}

const char* fixedUnit(VCLineEdit::LineEditType type)
{
    switch (type) {
    case VCLineEdit::FrequencySuffix2:
        return " kHz";
    case VCLineEdit::FrequencySuffix3:
        return " MHz";
    case VCLineEdit::FrequencySuffix4:
        return " GHz";
    default:
        return nullptr;
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::makeApplication(argc, argv);
    values::Tree::Instance()->Add(kPath, new values::DoubleNumeric(0.0, -1.0, 1.0));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const auto type = static_cast<VCLineEdit::LineEditType>(fuzz::choice(data[0], 8));
    int settingIndex = fuzz::choice(data[1], 4);
    // A time field is made for limits that hold 0 (its writes are 0).
    if (type == VCLineEdit::TimeAxis && settingIndex == 1)
        settingIndex = 0;
    const Setting& setting = kSettings[settingIndex];
    const QString input = fuzz::text(data + 2, size - 2);

    values::DoubleNumeric* value = number();
    value->SetRange(setting.minimum, setting.maximum, 0.0);
    value->SetValue(setting.start, nullptr);

    // One field per type for the whole run, its format set anew for each input: building a field
    // costs more than the rest of an input.
    static VCLineEdit* fields[8] = {};
    if (!fields[type]) {
        fields[type] = new VCLineEdit(nullptr, "fuzz", type);
        fields[type]->SuppressErrorMessage(true);
    }
    VCLineEdit& field = *fields[type];
    if (type == VCLineEdit::PlainEdit) {
        const QString letters = setting.unitLetters ? QStringLiteral("km") + QChar(0xFFB5) : QString();
        field.SetFormat(setting.integerDigits, setting.decimals, QString::fromLatin1(setting.suffix), letters,
                        setting.factor);
    }
    FUZZ_CHECK(field.SetText_ValuePath(kPath), QStringLiteral("binding"));
    field.setText(input);
    const QString typed = field.text(); // cut to the field's length limit
    const QString context =
        QStringLiteral("type %1, setting %2, text '%3'").arg(int(type)).arg(settingIndex).arg(typed);

    field.endEdit();
    const double written = value->GetValue();
    const QString shown = field.text();
    const QString writtenContext = context + QStringLiteral(" wrote %1, shows '%2'").arg(written, 0, 'g', 17).arg(shown);
    FUZZ_CHECK(!std::isnan(written), writtenContext);
    FUZZ_CHECK(written >= setting.minimum && written <= setting.maximum, writtenContext);

    if (hasFormatter(type)) {
        auto reader = formatterOf(type);
        reader->SetValue(setting.start);
        reader->SetFrequencyString(typed);
        const double minimum = std::max(0.0, setting.minimum);
        const double expected = std::min(std::max(reader->GetValue(), minimum), setting.maximum);
        FUZZ_CHECK(fuzz::sameNumber(written, expected),
                   writtenContext + QStringLiteral(", expected %1").arg(expected, 0, 'g', 17));
        // The field shows the display text of what it wrote, in its own prefix. A frequency field
        // holds 20 characters and cuts a longer text ("1.23456789012e+18 MHz", numbers of 10^24 Hz
        // and more), which then need not read back; such texts are checked no further.
        auto display = formatterOf(type);
        display->SetValue(written);
        const QString full = display->GetString(SuffixedDouble::HeldValue);
        FUZZ_CHECK(shown == full.left(field.maxLength()), writtenContext + " instead of '" + full + "'");
        if (full.size() <= field.maxLength()) {
            if (const char* unit = fixedUnit(type))
                FUZZ_CHECK(shown.endsWith(QLatin1String(unit)), writtenContext);
            auto again = formatterOf(type);
            FUZZ_CHECK(again->SetFrequencyString(shown), writtenContext);
            FUZZ_CHECK(std::fabs(again->GetValue() - written) <= std::fabs(written) * 1e-11, writtenContext);
        }
    } else if (type == VCLineEdit::TimeAxis) {
        FUZZ_CHECK(written == 0.0, writtenContext);
        FUZZ_CHECK(!shown.isEmpty(), writtenContext);
    } else if (settingIndex == 0) {
        // No suffix, no factor: the text is read as QString::toDouble reads it (0 for no number,
        // infinity beyond the doubles); a NaN is refused by the value, which keeps its number.
        const double read = typed.toDouble();
        const double expected = std::isnan(read) ? setting.start : read;
        FUZZ_CHECK(fuzz::sameNumber(written, std::min(std::max(expected, setting.minimum), setting.maximum)),
                   writtenContext);
    }

    // What a commit shows, committed again, settles at once: a second commit may round to what is
    // shown, a third changes nothing.
    field.endEdit();
    const double second = value->GetValue();
    const QString secondText = field.text();
    field.endEdit();
    FUZZ_CHECK(fuzz::sameNumber(value->GetValue(), second) && field.text() == secondText,
               writtenContext + QStringLiteral(", then %1 '%2', then %3 '%4'")
                                    .arg(second, 0, 'g', 17)
                                    .arg(secondText)
                                    .arg(value->GetValue(), 0, 'g', 17)
                                    .arg(field.text()));
    // The formatters show 12 digits; a plain field shows the 6 of QString::arg's 'g'.
    if (hasFormatter(type))
        FUZZ_CHECK(std::fabs(second - written) <= std::fabs(written) * 1e-11, writtenContext);
    // Unbound until its type comes again, so that the other fields need not follow the writes.
    field.SetText_ValuePath(QStringLiteral("/fuzz/unbound"));
    return 0;
}
