#pragma once

#include <plinthor/plinthor_export.h>

#include <values/observable.h>

#include <QString>

namespace values {
class ValueBase;
}

/**
 * \brief Formats and parses a number with a unit prefix: "100.5 MHz", "2 GHz", "4.7k", "250 mV".
 *
 * The formatter holds one number (SetValue(), GetValue()), a unit text (the string suffix, "Hz" for
 * a frequency), a factor between neighbouring prefixes (1000; 1024 for binary sizes) and a choice of
 * prefix (ESuffix): automatic by magnitude, or fixed.
 *
 * \b Two kinds of number, chosen by the constructor's \a plain argument.
 * - A frequency (\a plain false) has the prefixes k, M and G, the letters that a frequency field
 *   admits, and none below the base unit: it shows "0.5 Hz", never "500 mHz", and "1500 GHz", never
 *   "1.5 THz". Typed prefix letters are read in either case, so "100,5 mhz" is 100.5 MHz, and "h" or
 *   "hz" are always accepted as its unit, whatever the string suffix. A fixed prefix that a frequency
 *   lacks falls to the nearest one it has (SuffixTera to GHz, SuffixMilli and below to Hz).
 * - A plain number (\a plain true) also has m (milli), µ (micro, typed as µ, μ or u), n and p, and
 *   typed letters are case sensitive: "m" is milli and "M" mega; "k" and "K" are both kilo.
 *
 * \b Text forms. A number is written in the chosen prefix, followed by a blank and prefix plus unit
 * ("100.5 MHz", "12 Hz", "250 mV"); with an empty string suffix the prefix letter follows the number
 * directly ("4.7k", "12"). The decimal point is always '.'. Numbers whose prefixed form would be 10^15
 * or more, or below 10^-4, are written with an exponent ("1.5e+21 GHz"). NaN and infinities are written
 * as "nan", "inf" and "-inf" with the unit.
 * - GetString() is the display form: rounded to 12 significant digits (hertz resolution up to
 *   hundreds of gigahertz), trailing zeros dropped; a frequency with the factor 1000 keeps its decimals
 *   in whole groups of three, so that each group is one prefix step ("100.500 MHz", "1.234567 GHz").
 * - GetShortestString() always chooses the prefix by magnitude and gives the shortest text that
 *   SetFrequencyString() of a formatter in automatic mode reads back as exactly the same number
 *   ("100.5 MHz", "0 Hz").
 *
 * \b Parsing (SetFrequencyString()). Accepted: blanks, an optional sign, digits with at most one '.'
 * or ',' as decimal separator (at least one digit in all), an optional exponent ("e-3"), blanks, then
 * optionally one prefix letter and the unit or a leading part of it ("k", "kHz", "kH", "Hz"), case
 * ignored for the unit, and trailing blanks. Anything else (empty text, a second separator, an unknown
 * letter, a number too large for a double) is refused: the call returns false and the held number
 * stays as it was. A bare number, without prefix or unit, is read in the fixed prefix when one is set
 * and in the base unit otherwise; "12" in a field fixed to kHz is 12 kHz. A typed prefix or unit while
 * a prefix is fixed makes that prefix the fixed one, so that the field goes on showing the unit the
 * user typed; an application that wants its prefix kept sets it again after parsing. In automatic
 * mode parsing never changes the mode.
 *
 * \b Following a unit value. The prefix may follow a value in the value tree (SetSuffix_ValuePath()):
 * its text (GetValueString(), so the current item's name of a selection) names the prefix, either as
 * an ESuffix number ("3") or as a unit text ("MHz", "M", "Hz", "auto"); other texts change nothing.
 * A frequency formatter starts out following the application's frequency unit at DefaultUnitPath()
 * when the tree holds a value there at its construction; SetSuffix_ValuePath() with an empty path
 * lets go of it.
 */
class PLINTHOR_EXPORT SuffixedDouble : public IObserver
{
public:
    /// The prefix in which numbers are shown.
    enum ESuffix {
        SuffixAuto = 0,  ///< chosen by the magnitude of each number
        SuffixNone = 1,  ///< the base unit, no prefix ("Hz")
        SuffixKilo = 2,  ///< k: factor^1 ("kHz")
        SuffixMega = 3,  ///< M: factor^2 ("MHz")
        SuffixGiga = 4,  ///< G: factor^3 ("GHz")
        SuffixTera = 5,  ///< T: factor^4, plain numbers only (a frequency shows GHz instead)
        SuffixMilli = 6, ///< m: factor^-1, plain numbers only (a frequency shows the base unit)
        SuffixMicro = 7, ///< µ: factor^-2, plain numbers only
        SuffixNano = 8,  ///< n: factor^-3, plain numbers only
        SuffixPico = 9,  ///< p: factor^-4, plain numbers only
    };

    /// Passed to GetString() and GetShortestString(): format the held number.
    static constexpr double HeldValue = -9999.765;

    /// The path of the application-wide frequency unit that frequency formatters follow from the start.
    static QString DefaultUnitPath();

    /**
     * \brief A formatter for numbers with the unit \a suffix and the prefix step \a factor, holding 0.
     *
     * \a plain false makes it a frequency formatter (see the class description), which also starts
     * following the value at DefaultUnitPath() when there is one.
     */
    explicit SuffixedDouble(QString suffix = QStringLiteral("Hz"), int factor = 1000, bool plain = false);
    ~SuffixedDouble() override;
    SuffixedDouble(const SuffixedDouble&) = delete;
    SuffixedDouble& operator=(const SuffixedDouble&) = delete;

    /**
     * \brief Makes the prefix follow the value at \a path; returns whether a value was found.
     *
     * The former unit value is let go in any case; an empty or unknown path leaves none. The prefix
     * is read from the new value at once.
     */
    bool SetSuffix_ValuePath(const QString& path);
    /// Fixes the prefix, or with SuffixAuto lets the magnitude choose it. Unknown numbers are ignored.
    void SetSuffix(SuffixedDouble::ESuffix suffix);
    /// The fixed prefix, or SuffixAuto.
    SuffixedDouble::ESuffix GetSuffix() const { return m_eSuffix; }
    /// Sets the step between neighbouring prefixes; factors below 2 are ignored.
    void SetFactor(int factor);
    /// The step between neighbouring prefixes (1000 unless set otherwise).
    int GetFactor() const { return m_nFactor; }
    /// Sets the unit text written behind the prefix.
    void SetStringSuffix(QString suffix);
    /// The unit text written behind the prefix.
    QString GetStringSuffix() const { return m_strSuffix; }
    /// True for a plain number, false for a frequency.
    bool IsPlain() const { return m_bPlain; }

    /// Parses \a text into the held number; false, with the number unchanged, for text it refuses.
    bool SetFrequencyString(QString text);
    /// Sets the held number, as it is (no check, no rounding).
    void SetValue(double value);
    /// The held number.
    double GetValue() const { return m_fValue; }

    /// The display text of \a value, or of the held number for HeldValue.
    QString GetString(double value) const;
    /// The shortest text of \a value (or of the held number for HeldValue) that reads back exactly.
    QString GetShortestString(double value) const;

    /// Follows the unit value: reads it on changes, lets go of it when it is removed or destroyed.
    void Update(Observable* source, TChangeCode code) override;

private:
    bool parse(const QString& text, double& number, int& power, bool& unitTyped) const;
    bool matchUnit(const QString& rest, int& power, bool& unitTyped) const;
    int prefixPower(QChar letter) const;
    bool isUnitText(const QString& text) const;
    int fixedPower() const;
    int automaticPower(double value) const;
    double scale(int power) const;
    double fromMantissa(const QString& mantissa, long long exponent, int power) const;
    QString compose(const QString& number, int power) const;
    QString formatScaled(double number, int power, int significant) const;
    void readUnitValue();
    void releaseUnitValue();

    values::ValueBase* m_pUnitValue = nullptr;
    QString m_strSuffix;
    int m_nFactor;
    bool m_bPlain;
    ESuffix m_eSuffix = SuffixAuto;
    double m_fValue = 0.0;
};
