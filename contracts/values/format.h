#pragma once

#include <values/korthane_export.h>

#include <QLocale>
#include <QString>

#include <limits>
#include <string>

namespace values {

class CheckedString;

/// Text form of a boolean: "true" and "false"; reads also "1", "0", "on", "off", "yes", "no".
template <class T>
struct FormatBool
{
    /// "true" or "false".
    static QString ToString(const T& value) { return value ? QStringLiteral("true") : QStringLiteral("false"); }
    /// Reads \a text (case and surrounding spaces ignored) into \a out; false, leaving \a out, for other text.
    static bool FromString(const QString& text, T& out)
    {
        const QString t = text.trimmed().toLower();
        if (t == QLatin1String("true") || t == QLatin1String("1") || t == QLatin1String("on") || t == QLatin1String("yes")) {
            out = true;
            return true;
        }
        if (t == QLatin1String("false") || t == QLatin1String("0") || t == QLatin1String("off") || t == QLatin1String("no")) {
            out = false;
            return true;
        }
        return false;
    }
};

/// Text form of an integer of at most 32 bits: decimal.
template <class T>
struct FormatInt
{
    /// The number in decimal, in the C locale.
    static QString ToString(const T& value) { return QString::number(value); }
    /// Reads a decimal integer into \a out; false, leaving \a out, when \a text is no number or out of T's range.
    static bool FromString(const QString& text, T& out)
    {
        bool ok = false;
        const qlonglong v = text.trimmed().toLongLong(&ok);
        if (!ok || v < qlonglong(std::numeric_limits<T>::min()) || v > qlonglong(std::numeric_limits<T>::max()))
            return false;
        out = T(v);
        return true;
    }
};

/// Text form of a 64-bit integer: decimal.
template <class T>
struct FormatInt64
{
    /// The number in decimal, in the C locale.
    static QString ToString(const T& value) { return QString::number(value); }
    /// Reads a decimal integer into \a out; false, leaving \a out, when \a text is no 64-bit number.
    static bool FromString(const QString& text, T& out)
    {
        bool ok = false;
        const qlonglong v = text.trimmed().toLongLong(&ok);
        if (ok)
            out = T(v);
        return ok;
    }
};

/// Text form of a floating point number: the shortest text that reads back as the same number.
template <class T>
struct FormatDouble
{
    /// The shortest text, in the C locale, that reads back as \a value.
    static QString ToString(const T& value) { return QString::number(double(value), 'g', QLocale::FloatingPointShortest); }
    /// Reads a number in the C locale (decimal point '.') into \a out; false, leaving \a out, for other text.
    static bool FromString(const QString& text, T& out)
    {
        bool ok = false;
        const double v = text.trimmed().toDouble(&ok);
        if (ok)
            out = T(v);
        return ok;
    }
};

/// Text form of a text: itself.
template <class T>
struct FormatString
{
    /// The text itself.
    static QString ToString(const T& value) { return value; }
    /// Copies \a text into \a out; never false.
    static bool FromString(const QString& text, T& out)
    {
        out = text;
        return true;
    }
};

/// Text form of a checked string: "1:text" or "0:text".
struct KORTHANE_EXPORT FormatCheckedString
{
    /// "1:" for a checked string, "0:" otherwise, followed by the text.
    static QString ToString(const CheckedString& value);
    /// Reads "1:text" or "0:text" into \a out; false, leaving \a out, for anything else.
    static bool FromString(const QString& text, CheckedString& out);
};

/**
 * \brief The stream form of a value, as written into command texts.
 *
 * The text form of \a F in UTF-8, with ';' and '\\' escaped by a backslash so that the command separator
 * stays unambiguous. \a format is reserved; every format gives the same text.
 */
template <class T, class F>
struct StreamFormat
{
    /// The escaped UTF-8 text form of \a value.
    static std::string ToStream(const T& value, int format)
    {
        Q_UNUSED(format)
        const QByteArray utf8 = F::ToString(value).toUtf8();
        std::string out;
        out.reserve(size_t(utf8.size()));
        for (char c : utf8) {
            if (c == ';' || c == '\\')
                out.push_back('\\');
            out.push_back(c);
        }
        return out;
    }
};

/// The text format a value class uses when none is named.
template <class T>
struct DefaultFormat;
/// Booleans are written with FormatBool.
template <>
struct DefaultFormat<bool> { using type = FormatBool<bool>; /**< The format class. */ };
/// 32-bit integers are written with FormatInt.
template <>
struct DefaultFormat<int> { using type = FormatInt<int>; /**< The format class. */ };
/// Unsigned short integers are written with FormatInt.
template <>
struct DefaultFormat<unsigned short> { using type = FormatInt<unsigned short>; /**< The format class. */ };
/// 64-bit integers are written with FormatInt64.
template <>
struct DefaultFormat<long long> { using type = FormatInt64<long long>; /**< The format class. */ };
/// Doubles are written with FormatDouble.
template <>
struct DefaultFormat<double> { using type = FormatDouble<double>; /**< The format class. */ };
/// Texts are written with FormatString.
template <>
struct DefaultFormat<QString> { using type = FormatString<QString>; /**< The format class. */ };

} // namespace values
