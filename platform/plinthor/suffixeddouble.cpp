#include <plinthor/suffixeddouble.h>

#include <values/tree.h>
#include <values/valuebase.h>

#include <QtMath>

#include <climits>
#include <cmath>

namespace {

const int kNoPower = INT_MIN;
const int kMaxPower = 4;          // tera, plain numbers only
const int kMaxFrequencyPower = 3; // giga: the letters a frequency field's validator admits are k, M and G
const int kMinPower = -4;         // pico, plain numbers only
// Digits of a display text: hertz resolution up to hundreds of gigahertz.
const int kDisplayDigits = 12;
// Enough significant digits to write any double so that it reads back exactly.
const int kMaxDigits = 17;

bool isAsciiDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

int powerOf(SuffixedDouble::ESuffix suffix)
{
    switch (suffix) {
    case SuffixedDouble::SuffixNone:
        return 0;
    case SuffixedDouble::SuffixKilo:
        return 1;
    case SuffixedDouble::SuffixMega:
        return 2;
    case SuffixedDouble::SuffixGiga:
        return 3;
    case SuffixedDouble::SuffixTera:
        return 4;
    case SuffixedDouble::SuffixMilli:
        return -1;
    case SuffixedDouble::SuffixMicro:
        return -2;
    case SuffixedDouble::SuffixNano:
        return -3;
    case SuffixedDouble::SuffixPico:
        return -4;
    case SuffixedDouble::SuffixAuto:
        break;
    }
    return kNoPower;
}

SuffixedDouble::ESuffix suffixOf(int power)
{
    static const SuffixedDouble::ESuffix byPower[] = {
        SuffixedDouble::SuffixPico, SuffixedDouble::SuffixNano, SuffixedDouble::SuffixMicro,
        SuffixedDouble::SuffixMilli, SuffixedDouble::SuffixNone, SuffixedDouble::SuffixKilo,
        SuffixedDouble::SuffixMega, SuffixedDouble::SuffixGiga, SuffixedDouble::SuffixTera,
    };
    if (power < kMinPower || power > kMaxPower)
        return SuffixedDouble::SuffixNone;
    return byPower[power - kMinPower];
}

QString nonFiniteText(double value)
{
    if (std::isnan(value))
        return QStringLiteral("nan");
    return value < 0 ? QStringLiteral("-inf") : QStringLiteral("inf");
}

// Splits "1.5e+18" into "1.5" and 18; a text without exponent gets 0.
void splitExponent(const QString& number, QString& mantissa, long long& exponent)
{
    const int e = number.indexOf(QLatin1Char('e'));
    if (e < 0) {
        mantissa = number;
        exponent = 0;
        return;
    }
    mantissa = number.left(e);
    exponent = number.mid(e + 1).toLongLong();
}

} // namespace

QString SuffixedDouble::DefaultUnitPath()
{
    return QStringLiteral("/plinthor/frequencyunit");
}

SuffixedDouble::SuffixedDouble(QString suffix, int factor, bool plain)
    : m_strSuffix(suffix)
    , m_nFactor(factor >= 2 ? factor : 1000)
    , m_bPlain(plain)
{
    if (!m_bPlain)
        SetSuffix_ValuePath(DefaultUnitPath());
}

SuffixedDouble::~SuffixedDouble()
{
    releaseUnitValue();
}

bool SuffixedDouble::SetSuffix_ValuePath(const QString& path)
{
    releaseUnitValue();
    if (path.isEmpty())
        return false;
    values::Tree* tree = values::Tree::Instance();
    values::ValueBase* value = tree ? tree->Find(path) : nullptr;
    if (!value)
        return false;
    m_pUnitValue = value;
    m_pUnitValue->Attach(this);
    readUnitValue();
    return true;
}

void SuffixedDouble::SetSuffix(SuffixedDouble::ESuffix suffix)
{
    const int number = static_cast<int>(suffix);
    if (number >= SuffixAuto && number <= SuffixPico)
        m_eSuffix = suffix;
}

void SuffixedDouble::SetFactor(int factor)
{
    if (factor >= 2)
        m_nFactor = factor;
}

void SuffixedDouble::SetStringSuffix(QString suffix)
{
    m_strSuffix = suffix;
}

bool SuffixedDouble::SetFrequencyString(QString text)
{
    double number = 0;
    int power = 0;
    bool unitTyped = false;
    if (!parse(text, number, power, unitTyped))
        return false;
    m_fValue = number;
    if (unitTyped && m_eSuffix != SuffixAuto)
        m_eSuffix = suffixOf(power);
    return true;
}

void SuffixedDouble::SetValue(double value)
{
    m_fValue = value;
}

QString SuffixedDouble::GetString(double value) const
{
    const double number = value == HeldValue ? m_fValue : value;
    int power = fixedPower();
    if (!std::isfinite(number))
        return compose(nonFiniteText(number), power == kNoPower ? 0 : power);

    // Rounded before the prefix is chosen, so that 999999.9999999 shows as "1 MHz", not "1000 kHz".
    const double rounded = QString::number(number, 'e', kDisplayDigits - 1).toDouble();
    if (power == kNoPower)
        power = automaticPower(rounded);
    QString text = formatScaled(rounded, power, kDisplayDigits);
    if (!m_bPlain && m_nFactor == 1000 && !text.contains(QLatin1Char('e'))) {
        const int point = text.indexOf(QLatin1Char('.'));
        if (point >= 0) {
            const int decimals = text.size() - point - 1;
            text += QString((3 - decimals % 3) % 3, QLatin1Char('0'));
        }
    }
    return compose(text, power);
}

QString SuffixedDouble::GetShortestString(double value) const
{
    const double number = value == HeldValue ? m_fValue : value;
    if (!std::isfinite(number))
        return compose(nonFiniteText(number), 0);
    const int power = automaticPower(number);
    QString text;
    for (int digits = 1; digits <= kMaxDigits; ++digits) {
        text = formatScaled(number, power, digits);
        QString mantissa;
        long long exponent = 0;
        splitExponent(text, mantissa, exponent);
        if (fromMantissa(mantissa, exponent, power) == number)
            break;
    }
    return compose(text, power);
}

void SuffixedDouble::Update(Observable* source, TChangeCode code)
{
    if (!m_pUnitValue || source != static_cast<Observable*>(m_pUnitValue))
        return;
    switch (code) {
    case StateChanged:
        if (m_pUnitValue->GetState() == Removed)
            releaseUnitValue();
        break;
    case ValueDestroyed:
        m_pUnitValue = nullptr; // going: no Detach
        break;
    case ValueChanged:
    case ItemsChanged:
    case ItemAdded:
        readUnitValue();
        break;
    default:
        break;
    }
}

bool SuffixedDouble::parse(const QString& text, double& number, int& power, bool& unitTyped) const
{
    const QString s = text.trimmed();
    const int n = s.size();
    int i = 0;

    QString mantissa;
    if (i < n && (s.at(i) == QLatin1Char('+') || s.at(i) == QLatin1Char('-'))) {
        if (s.at(i) == QLatin1Char('-'))
            mantissa += QLatin1Char('-');
        ++i;
    }
    QString integral;
    QString fraction;
    while (i < n && isAsciiDigit(s.at(i)))
        integral += s.at(i++);
    if (i < n && (s.at(i) == QLatin1Char('.') || s.at(i) == QLatin1Char(','))) {
        ++i;
        while (i < n && isAsciiDigit(s.at(i)))
            fraction += s.at(i++);
    }
    if (integral.isEmpty() && fraction.isEmpty())
        return false;
    mantissa += integral.isEmpty() ? QStringLiteral("0") : integral;
    if (!fraction.isEmpty())
        mantissa += QLatin1Char('.') + fraction;

    // An exponent only where digits follow the 'e'; otherwise the letter is left for the unit.
    long long exponent = 0;
    if (i < n && (s.at(i) == QLatin1Char('e') || s.at(i) == QLatin1Char('E'))) {
        int j = i + 1;
        bool negative = false;
        if (j < n && (s.at(j) == QLatin1Char('+') || s.at(j) == QLatin1Char('-'))) {
            negative = s.at(j) == QLatin1Char('-');
            ++j;
        }
        const int first = j;
        long long e = 0;
        for (; j < n && isAsciiDigit(s.at(j)); ++j) {
            if (e < 1000000) // far beyond any double; keeps the sum from overflowing
                e = e * 10 + (s.at(j).unicode() - '0');
        }
        if (j > first) {
            exponent = negative ? -e : e;
            i = j;
        }
    }
    while (i < n && s.at(i).isSpace())
        ++i;

    if (!matchUnit(s.mid(i), power, unitTyped))
        return false;
    if (!unitTyped) {
        const int fixed = fixedPower();
        power = fixed == kNoPower ? 0 : fixed;
    }
    number = fromMantissa(mantissa, exponent, power);
    return std::isfinite(number);
}

bool SuffixedDouble::matchUnit(const QString& rest, int& power, bool& unitTyped) const
{
    power = 0;
    unitTyped = false;
    if (rest.isEmpty())
        return true;
    unitTyped = true;
    // The unit in its own case first, so that a plain "m" for metres is not taken for milli.
    if (m_strSuffix.startsWith(rest, Qt::CaseSensitive))
        return true;
    const int letter = prefixPower(rest.at(0));
    if (letter != kNoPower) {
        const QString tail = rest.mid(1);
        if (tail.isEmpty() || isUnitText(tail)) {
            power = letter;
            return true;
        }
    }
    return isUnitText(rest);
}

int SuffixedDouble::prefixPower(QChar letter) const
{
    if (!m_bPlain) {
        switch (letter.toLower().unicode()) {
        case 'k':
            return 1;
        case 'm':
            return 2;
        case 'g':
            return 3;
        default:
            return kNoPower;
        }
    }
    switch (letter.unicode()) {
    case 'k':
    case 'K':
        return 1;
    case 'M':
        return 2;
    case 'G':
        return 3;
    case 'T':
        return 4;
    case 'm':
        return -1;
    case 'u':
    case 0x00B5: // micro sign
    case 0x03BC: // Greek small mu
        return -2;
    case 'n':
        return -3;
    case 'p':
        return -4;
    default:
        return kNoPower;
    }
}

bool SuffixedDouble::isUnitText(const QString& text) const
{
    if (text.isEmpty())
        return false;
    if (m_strSuffix.startsWith(text, Qt::CaseInsensitive))
        return true;
    return !m_bPlain && QStringLiteral("Hz").startsWith(text, Qt::CaseInsensitive);
}

int SuffixedDouble::fixedPower() const
{
    const int power = powerOf(m_eSuffix);
    if (power == kNoPower || m_bPlain)
        return power;
    return qBound(0, power, kMaxFrequencyPower);
}

int SuffixedDouble::automaticPower(double value) const
{
    const double magnitude = std::fabs(value);
    if (magnitude == 0 || !std::isfinite(magnitude))
        return 0;
    const int lowest = m_bPlain ? kMinPower : 0;
    const int highest = m_bPlain ? kMaxPower : kMaxFrequencyPower;
    int power = 0;
    while (power < highest && magnitude >= scale(power + 1))
        ++power;
    while (power > lowest && magnitude < scale(power))
        --power;
    return power;
}

double SuffixedDouble::scale(int power) const
{
    return std::pow(double(m_nFactor), power);
}

double SuffixedDouble::fromMantissa(const QString& mantissa, long long exponent, int power) const
{
    bool ok = false;
    double number = 0;
    if (m_nFactor == 1000) {
        // A decimal prefix only moves the decimal point: done in the text, the result is exact.
        const long long total = qBound(-100000LL, exponent + 3LL * power, 100000LL);
        number = QString(mantissa + QLatin1Char('e') + QString::number(total)).toDouble(&ok);
    } else {
        const long long bounded = qBound(-100000LL, exponent, 100000LL);
        number = QString(mantissa + QLatin1Char('e') + QString::number(bounded)).toDouble(&ok) * scale(power);
    }
    return ok ? number : qQNaN();
}

QString SuffixedDouble::compose(const QString& number, int power) const
{
    QString prefix;
    switch (power) {
    case 1:
        prefix = QStringLiteral("k");
        break;
    case 2:
        prefix = QStringLiteral("M");
        break;
    case 3:
        prefix = QStringLiteral("G");
        break;
    case 4:
        prefix = QStringLiteral("T");
        break;
    case -1:
        prefix = QStringLiteral("m");
        break;
    case -2:
        prefix = QString(QChar(0x00B5));
        break;
    case -3:
        prefix = QStringLiteral("n");
        break;
    case -4:
        prefix = QStringLiteral("p");
        break;
    default:
        break;
    }
    const QString unit = prefix + m_strSuffix;
    if (unit.isEmpty())
        return number;
    if (m_strSuffix.isEmpty())
        return number + unit;
    return number + QLatin1Char(' ') + unit;
}

QString SuffixedDouble::formatScaled(double number, int power, int significant) const
{
    if (!std::isfinite(number))
        return nonFiniteText(number);
    if (number == 0)
        return QStringLiteral("0");
    // With the factor 1000 the prefix only moves the decimal point, which is done on the digits, so
    // that no division blurs them; other factors divide.
    int shift = 3 * power;
    if (m_nFactor != 1000) {
        number /= scale(power);
        shift = 0;
    }
    const QString text = QString::number(number, 'e', significant - 1); // "-1.2345e+08"
    QString mantissa;
    long long exponent = 0;
    splitExponent(text, mantissa, exponent);
    const bool negative = mantissa.startsWith(QLatin1Char('-'));
    QString digits = mantissa;
    digits.remove(QLatin1Char('-')).remove(QLatin1Char('.'));
    while (digits.size() > 1 && digits.endsWith(QLatin1Char('0')))
        digits.chop(1);
    const long long point = exponent - shift; // the number is d.ddd x 10^point

    QString result;
    if (point >= 15 || point < -4) {
        result = digits.left(1);
        if (digits.size() > 1)
            result += QLatin1Char('.') + digits.mid(1);
        result += QStringLiteral("e%1%2").arg(point < 0 ? QLatin1Char('-') : QLatin1Char('+')).arg(qAbs(point), 2, 10, QLatin1Char('0'));
    } else if (point >= 0) {
        const int integral = int(point) + 1;
        if (digits.size() <= integral) {
            result = digits + QString(integral - digits.size(), QLatin1Char('0'));
        } else {
            result = digits.left(integral) + QLatin1Char('.') + digits.mid(integral);
        }
    } else {
        result = QStringLiteral("0.") + QString(int(-point) - 1, QLatin1Char('0')) + digits;
    }
    return negative ? QLatin1Char('-') + result : result;
}

void SuffixedDouble::readUnitValue()
{
    if (!m_pUnitValue)
        return;
    const QString text = m_pUnitValue->GetValueString().trimmed();
    if (text.isEmpty())
        return;
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber) {
        if (number >= SuffixAuto && number <= SuffixPico)
            m_eSuffix = static_cast<ESuffix>(number);
        return;
    }
    if (text.compare(QLatin1String("auto"), Qt::CaseInsensitive) == 0) {
        m_eSuffix = SuffixAuto;
        return;
    }
    int power = 0;
    bool unitTyped = false;
    if (matchUnit(text, power, unitTyped) && unitTyped)
        m_eSuffix = suffixOf(power);
}

void SuffixedDouble::releaseUnitValue()
{
    if (m_pUnitValue)
        m_pUnitValue->Detach(this);
    m_pUnitValue = nullptr;
}
