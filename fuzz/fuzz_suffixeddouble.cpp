// SuffixedDouble::SetFrequencyString on any text, in every prefix setting, with what reading a number
// promises: a refused text changes nothing, an accepted one gives a finite number whose shortest text
// reads back exactly and whose display text reads back within its 12 digits and shows the same again.
//
// Input: byte 0 the prefix setting (ESuffix 0 to 9), byte 1 the kind of number, then the text.

#include "fuzzcheck.h"

#include <plinthor/suffixeddouble.h>

#include <cmath>
#include <memory>

namespace {

struct Kind {
    const char* unit;
    int factor;
    bool plain;
};

// Frequencies, plain numbers with and without a unit, and a binary factor.
const Kind kKinds[] = {{"Hz", 1000, false}, {"", 1000, true}, {"V", 1000, true}, {"B", 1024, true}};
const double kStart = 7.25;

std::unique_ptr<SuffixedDouble> makeFormatter(const Kind& kind, SuffixedDouble::ESuffix mode)
{
    auto formatter = std::make_unique<SuffixedDouble>(QString::fromLatin1(kind.unit), kind.factor, kind.plain);
    formatter->SetSuffix(mode);
    formatter->SetValue(kStart);
    return formatter;
}

bool isAscii(const QString& text)
{
    for (QChar c : text) {
        if (c.unicode() > 0x7f)
            return false;
    }
    return true;
}

// Two spellings that the parser treats alike must give the same outcome.
void checkSameReading(const Kind& kind, SuffixedDouble::ESuffix mode, const QString& text, bool accepted,
                      double number, const QString& other)
{
    auto formatter = makeFormatter(kind, mode);
    const bool otherAccepted = formatter->SetFrequencyString(other);
    const QString context = QStringLiteral("'%1' and '%2'").arg(text, other);
    FUZZ_CHECK(otherAccepted == accepted, context);
    FUZZ_CHECK(fuzz::sameNumber(formatter->GetValue(), number), context);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const auto mode = static_cast<SuffixedDouble::ESuffix>(fuzz::choice(data[0], 10));
    const Kind& kind = kKinds[fuzz::choice(data[1], 4)];
    const QString text = fuzz::text(data + 2, size - 2);
    const QString context = QStringLiteral("mode %1, unit '%2', factor %3, plain %4, text '%5'")
                                .arg(int(mode))
                                .arg(QLatin1String(kind.unit))
                                .arg(kind.factor)
                                .arg(kind.plain)
                                .arg(text);

    auto formatter = makeFormatter(kind, mode);
    const bool accepted = formatter->SetFrequencyString(text);
    const double number = formatter->GetValue();
    if (!accepted) {
        FUZZ_CHECK(fuzz::sameNumber(number, kStart), context);
        FUZZ_CHECK(formatter->GetSuffix() == mode, context);
    } else {
        FUZZ_CHECK(std::isfinite(number), context);
        if (mode == SuffixedDouble::SuffixAuto)
            FUZZ_CHECK(formatter->GetSuffix() == SuffixedDouble::SuffixAuto, context);

        // The shortest text reads back to the same number in automatic mode.
        const QString shortest = formatter->GetShortestString(SuffixedDouble::HeldValue);
        auto reader = makeFormatter(kind, SuffixedDouble::SuffixAuto);
        FUZZ_CHECK(reader->SetFrequencyString(shortest), context + " shortest '" + shortest + "'");
        FUZZ_CHECK(fuzz::sameNumber(reader->GetValue(), number), context + " shortest '" + shortest + "'");

        // The display text, in the prefix now in force, reads back within its 12 digits and, read
        // back, is shown alike: what a field shows after a commit is stable under the next commit.
        const QString display = formatter->GetString(SuffixedDouble::HeldValue);
        const QString displayContext = context + " display '" + display + "'";
        auto again = makeFormatter(kind, formatter->GetSuffix());
        FUZZ_CHECK(again->SetFrequencyString(display), displayContext);
        const double error = std::fabs(again->GetValue() - number);
        FUZZ_CHECK(error <= std::fabs(number) * 1e-11 || std::fabs(number) < 1e-280, displayContext);
        FUZZ_CHECK(again->GetString(SuffixedDouble::HeldValue) == display,
                   displayContext + " shown again as '" + again->GetString(SuffixedDouble::HeldValue) + "'");
    }

    // A decimal comma reads as the decimal point.
    if (text.count(QLatin1Char(',')) == 1 && !text.contains(QLatin1Char('.')))
        checkSameReading(kind, mode, text, accepted, formatter->GetValue(),
                         QString(text).replace(QLatin1Char(','), QLatin1Char('.')));
    // A frequency reads its letters in either case.
    if (!kind.plain && isAscii(text)) {
        checkSameReading(kind, mode, text, accepted, formatter->GetValue(), text.toUpper());
        checkSameReading(kind, mode, text, accepted, formatter->GetValue(), text.toLower());
    }
    return 0;
}
