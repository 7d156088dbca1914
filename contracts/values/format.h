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
    static QString ToString(const T& value) { return value ? QStringLiteral("true") : QStringLiteral("false"); }
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
    static QString ToString(const T& value) { return QString::number(value); }
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
    static QString ToString(const T& value) { return QString::number(value); }
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
    static QString ToString(const T& value) { return QString::number(double(value), 'g', QLocale::FloatingPointShortest); }
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
    static QString ToString(const T& value) { return value; }
    static bool FromString(const QString& text, T& out)
    {
        out = text;
        return true;
    }
};

/// Text form of a checked string: "1:text" or "0:text".
struct KORTHANE_EXPORT FormatCheckedString
{
    static QString ToString(const CheckedString& value);
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
template <>
struct DefaultFormat<bool> { using type = FormatBool<bool>; };
template <>
struct DefaultFormat<int> { using type = FormatInt<int>; };
template <>
struct DefaultFormat<unsigned short> { using type = FormatInt<unsigned short>; };
template <>
struct DefaultFormat<long long> { using type = FormatInt64<long long>; };
template <>
struct DefaultFormat<double> { using type = FormatDouble<double>; };
template <>
struct DefaultFormat<QString> { using type = FormatString<QString>; };

} // namespace values
