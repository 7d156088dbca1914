#pragma once

#include <plinthor/plinthor_export.h>

#include <QString>

/**
 * \brief Turns a number into the text of an axis label or a field.
 *
 * Both calls return a reference to a text that the formatter keeps; it stays valid until the next
 * call on the same formatter.
 */
class PLINTHOR_EXPORT IStringFormatter
{
public:
    virtual ~IStringFormatter();
    /// The text of \a value without a unit.
    virtual const QString& convert(double value) = 0;
    /// The text of \a value with its unit.
    virtual const QString& convertSuffixed(double value) = 0;
};

/**
 * \brief Readable text of a time span given in seconds, for time axes and time fields.
 *
 * convertSuffixed() writes units. Below one second it uses one SI unit with up to six significant
 * digits: "250 ms", "1.5 µs", "12 ns", "0.3 ps". From one second to a minute it writes seconds to the
 * millisecond: "12.5 s". From a minute on it writes the non-zero parts of days, hours, minutes and
 * seconds, largest first: "1 min 30 s", "2 h 5 min", "1 d 2 h 0.25 s" (a day, two hours and a quarter
 * second). Zero is "0 s".
 *
 * convert() writes a clock without units: below a minute the seconds alone ("12.5", "0.25"), then
 * "m:ss" and "h:mm:ss", the hours counting on past a day ("26:00:00"), with a fraction of a second
 * where there is one ("1:30.5").
 *
 * Both round to the millisecond from one second on, so 59.9996 s is "1 min" and "1:00". Negative spans
 * take a leading minus sign; spans of 10^15 s and more are written as seconds with an exponent
 * ("1e+15 s"); NaN and infinities are written as "nan", "inf" and "-inf". The decimal point is '.'.
 */
class PLINTHOR_EXPORT TimeToAxisString : public IStringFormatter
{
public:
    TimeToAxisString();
    ~TimeToAxisString() override;

    const QString& convert(double value) override;
    const QString& convertSuffixed(double value) override;

private:
    QString m_strText;
};
