#include <plinthor/timetoaxisstring.h>

#include <QStringList>

#include <cmath>

namespace {

const double kHugeSpan = 1e15; // seconds; beyond it milliseconds no longer fit a 64-bit count
const qint64 kMsPerMinute = 60 * 1000;
const qint64 kMsPerHour = 60 * kMsPerMinute;
const qint64 kMsPerDay = 24 * kMsPerHour;

QString nonFiniteText(double value)
{
    if (std::isnan(value))
        return QStringLiteral("nan");
    return value < 0 ? QStringLiteral("-inf") : QStringLiteral("inf");
}

// Up to six significant digits, trailing zeros dropped.
QString significant(double value)
{
    return QString::number(value, 'g', 6);
}

// A count of milliseconds below a second as ".5", ".25", ".125"; nothing for zero.
QString fractionText(qint64 milliseconds)
{
    if (milliseconds == 0)
        return QString();
    QString digits = QStringLiteral("%1").arg(milliseconds, 3, 10, QLatin1Char('0'));
    while (digits.endsWith(QLatin1Char('0')))
        digits.chop(1);
    return QLatin1Char('.') + digits;
}

QString withSign(bool negative, const QString& text)
{
    return negative ? QLatin1Char('-') + text : text;
}

} // namespace

IStringFormatter::~IStringFormatter() = default;

TimeToAxisString::TimeToAxisString() = default;

TimeToAxisString::~TimeToAxisString() = default;

const QString& TimeToAxisString::convert(double value)
{
    if (!std::isfinite(value)) {
        m_strText = nonFiniteText(value);
        return m_strText;
    }
    const double span = std::fabs(value);
    const bool negative = value < 0;
    if (span >= kHugeSpan) {
        m_strText = significant(value);
        return m_strText;
    }
    if (span < 1) {
        const QString text = significant(span);
        m_strText = text == QLatin1String("0") ? text : withSign(negative, text);
        if (text != QLatin1String("1"))
            return m_strText;
    }
    const qint64 ms = std::llround(span * 1000);
    const qint64 seconds = ms / 1000;
    const QString fraction = fractionText(ms % 1000);
    if (ms < kMsPerMinute) {
        m_strText = withSign(negative, QString::number(seconds) + fraction);
        return m_strText;
    }
    const qint64 hours = ms / kMsPerHour;
    const qint64 minutes = ms % kMsPerHour / kMsPerMinute;
    const QString secondsText = QStringLiteral("%1").arg(seconds % 60, 2, 10, QLatin1Char('0')) + fraction;
    if (hours > 0) {
        m_strText = withSign(negative, QStringLiteral("%1:%2:%3")
                                           .arg(hours)
                                           .arg(minutes, 2, 10, QLatin1Char('0'))
                                           .arg(secondsText));
    } else {
        m_strText = withSign(negative, QStringLiteral("%1:%2").arg(minutes).arg(secondsText));
    }
    return m_strText;
}

const QString& TimeToAxisString::convertSuffixed(double value)
{
    if (!std::isfinite(value)) {
        m_strText = nonFiniteText(value);
        return m_strText;
    }
    const double span = std::fabs(value);
    const bool negative = value < 0;
    if (span == 0) {
        m_strText = QStringLiteral("0 s");
        return m_strText;
    }
    if (span >= kHugeSpan) {
        m_strText = significant(value) + QStringLiteral(" s");
        return m_strText;
    }
    // Rounded first, so that 0.9999996 s becomes "1 s" and not "1000 ms".
    const double rounded = QString::number(span, 'e', 5).toDouble();
    if (rounded < 1) {
        const double scales[] = {1e3, 1e6, 1e9, 1e12};
        const QString units[] = {QStringLiteral(" ms"), QStringLiteral(" \u00b5s"), QStringLiteral(" ns"),
                                 QStringLiteral(" ps")};
        int i = 0;
        while (i < 3 && rounded * scales[i] < 1) // picoseconds are the last unit, also for less than one
            ++i;
        m_strText = withSign(negative, significant(rounded * scales[i]) + units[i]);
        return m_strText;
    }
    const qint64 ms = std::llround(span * 1000);
    if (ms < kMsPerMinute) {
        m_strText = withSign(negative, QString::number(ms / 1000) + fractionText(ms % 1000) + QStringLiteral(" s"));
        return m_strText;
    }
    QStringList parts;
    const qint64 days = ms / kMsPerDay;
    const qint64 hours = ms % kMsPerDay / kMsPerHour;
    const qint64 minutes = ms % kMsPerHour / kMsPerMinute;
    const qint64 rest = ms % kMsPerMinute;
    if (days)
        parts << QString::number(days) + QStringLiteral(" d");
    if (hours)
        parts << QString::number(hours) + QStringLiteral(" h");
    if (minutes)
        parts << QString::number(minutes) + QStringLiteral(" min");
    if (rest)
        parts << QString::number(rest / 1000) + fractionText(rest % 1000) + QStringLiteral(" s");
    m_strText = withSign(negative, parts.join(QLatin1Char(' ')));
    return m_strText;
}
