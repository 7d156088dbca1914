#include <plinthor/coordinates.h>

#include <orvi/translationcenter.h>

#include <GeographicLib/Constants.hpp>
#include <GeographicLib/DMS.hpp>
#include <GeographicLib/MGRS.hpp>
#include <GeographicLib/TransverseMercator.hpp>
#include <GeographicLib/UTMUPS.hpp>

#include <QRegularExpression>
#include <QStringList>
#include <QtGlobal>

#include <cmath>
#include <exception>
#include <string>

namespace basecontrols {

namespace {

const char* const formatNames[] = {
    QT_TRANSLATE_NOOP("Plinthor", "Decimal degrees"),
    QT_TRANSLATE_NOOP("Plinthor", "Degrees, minutes, seconds"),
    QT_TRANSLATE_NOOP("Plinthor", "Degrees, minutes, whole seconds"),
    QT_TRANSLATE_NOOP("Plinthor", "UTM"),
    QT_TRANSLATE_NOOP("Plinthor", "MGRS"),
    QT_TRANSLATE_NOOP("Plinthor", "RT 90"),
    QT_TRANSLATE_NOOP("Plinthor", "SWEREF 99 TM"),
};

// The GRS 80 ellipsoid as Lantmäteriet gives it for its projections.
const double grs80InverseFlattening = 298.257222101;

// A Swedish grid: a transverse Mercator projection on GRS 80 with its false origin, northing first.
class Grid
{
public:
    Grid(double centralMeridian, double scale, double falseNorthing, double falseEasting)
        : m_projection(GeographicLib::Constants::GRS80_a(), 1.0 / grs80InverseFlattening, scale)
        , m_fCentralMeridian(centralMeridian)
        , m_fFalseNorthing(falseNorthing)
        , m_fFalseEasting(falseEasting)
    {
    }
    void Forward(double latitude, double longitude, double& northing, double& easting) const
    {
        m_projection.Forward(m_fCentralMeridian, latitude, longitude, easting, northing);
        northing += m_fFalseNorthing;
        easting += m_fFalseEasting;
    }
    void Reverse(double northing, double easting, double& latitude, double& longitude) const
    {
        m_projection.Reverse(m_fCentralMeridian, easting - m_fFalseEasting, northing - m_fFalseNorthing, latitude,
                             longitude);
    }

private:
    GeographicLib::TransverseMercator m_projection;
    double m_fCentralMeridian;
    double m_fFalseNorthing;
    double m_fFalseEasting;
};

// SWEREF 99 TM (EPSG:3006).
const Grid& sweref99Tm()
{
    static const Grid grid(15.0, 0.9996, 0.0, 500000.0);
    return grid;
}

// RT 90 2.5 gon V, reached directly from SWEREF 99 with the projection parameters of Lantmäteriet.
const Grid& rt90()
{
    static const Grid grid(15.0 + 48.0 / 60.0 + 22.624306 / 3600.0, 1.00000561024, -667.711, 1500064.274);
    return grid;
}

// A number as the grid forms write it: digits with an optional fraction, no exponent.
QString numberPattern()
{
    return QStringLiteral("([-+]?\\d+(?:\\.\\d+)?)");
}

std::string toStd(const QString& text)
{
    return text.toUtf8().toStdString();
}

QString fromStd(const std::string& text)
{
    return QString::fromStdString(text);
}

bool isPlainNumber(const QString& token)
{
    static const QRegularExpression plain(QStringLiteral("^[-+]?\\d*\\.?\\d*$"));
    return plain.match(token).hasMatch();
}

bool isHemisphere(QChar c)
{
    return c == QLatin1Char('N') || c == QLatin1Char('S') || c == QLatin1Char('E') || c == QLatin1Char('W');
}

// One coordinate as GeographicLib's DMS reader takes it: no inner spaces, a hemisphere letter kept in
// front or at the end. Plain numbers separated by spaces are degrees, minutes and seconds.
QString dmsPiece(QString piece)
{
    piece = piece.trimmed();
    QString leading;
    QString trailing;
    if (!piece.isEmpty() && isHemisphere(piece.front())) {
        leading = piece.front();
        piece.remove(0, 1);
    } else if (!piece.isEmpty() && isHemisphere(piece.back())) {
        trailing = piece.back();
        piece.chop(1);
    }
    static const QRegularExpression space(QStringLiteral("\\s+"));
    const QStringList tokens = piece.trimmed().split(space, Qt::SkipEmptyParts);
    bool plain = tokens.size() > 1;
    for (const QString& token : tokens)
        plain = plain && isPlainNumber(token);
    return leading + tokens.join(plain ? QStringLiteral(":") : QString()) + trailing;
}

// Splits the text of a geographic position into its two coordinates; false when it cannot tell them.
bool splitGeographic(QString text, QString& first, QString& second)
{
    static const QRegularExpression space(QStringLiteral("\\s+"));
    static const QRegularExpression decimalComma(QStringLiteral("(\\d),(\\d)"));
    static const QRegularExpression separator(QStringLiteral("[,;]"));
    // "59,5 18,5": a decimal comma in each number, the two separated by space only.
    if (!text.contains(QLatin1Char('.')) && !text.contains(QLatin1Char(';')) && text.count(QLatin1Char(',')) == 2
        && text.count(decimalComma) == 2)
        text.replace(decimalComma, QStringLiteral("\\1.\\2"));

    if (text.contains(QLatin1Char(',')) || text.contains(QLatin1Char(';'))) {
        const QStringList parts = text.split(separator);
        if (parts.size() != 2)
            return false;
        first = parts[0];
        second = parts[1];
        return true;
    }

    QVector<int> letters;
    for (int i = 0; i < text.size(); ++i) {
        if (isHemisphere(text[i]))
            letters << i;
    }
    if (letters.size() == 2) {
        // "N 59.5 E 18.5" splits before the second letter, "59.5 N 18.5 E" after the first.
        const int cut = letters[0] == 0 ? letters[1] : letters[0] + 1;
        first = text.left(cut);
        second = text.mid(cut);
        return true;
    }

    const QStringList tokens = text.split(space, Qt::SkipEmptyParts);
    if (tokens.size() % 2 != 0 || tokens.size() < 2 || tokens.size() > 6)
        return false;
    first = tokens.mid(0, tokens.size() / 2).join(QLatin1Char(' '));
    second = tokens.mid(tokens.size() / 2).join(QLatin1Char(' '));
    return true;
}

// Colons separate the at most three parts of plain numbers only. GeographicLib's reader (2.1) runs
// past the end of its arrays on more parts ("1:2:3:4:5:6") or on colon parts after a seconds mark
// ("1\"2:3:4") and crashes, so such a piece never reaches it.
bool hasUnreadableColons(const QString& piece)
{
    if (!piece.contains(QLatin1Char(':')))
        return false;
    if (piece.count(QLatin1Char(':')) > 2)
        return true;
    for (QChar c : piece) {
        const bool digit = c >= QLatin1Char('0') && c <= QLatin1Char('9');
        if (!digit && !isHemisphere(c) && !QStringLiteral(".+-:").contains(c))
            return true;
    }
    return false;
}

bool parseGeographic(const QString& text, double& latitude, double& longitude)
{
    QString first;
    QString second;
    if (!splitGeographic(text, first, second))
        return false;
    first = dmsPiece(first);
    second = dmsPiece(second);
    if (first.isEmpty() || second.isEmpty() || hasUnreadableColons(first) || hasUnreadableColons(second))
        return false;
    double lat = 0;
    double lon = 0;
    try {
        GeographicLib::DMS::DecodeLatLon(toStd(first), toStd(second), lat, lon);
    } catch (const std::exception&) {
        return false;
    }
    if (!CoordText::IsValidPosition(lat, lon))
        return false;
    latitude = lat;
    longitude = lon;
    return true;
}

const QLatin1String bandLetters("CDEFGHJKLMNPQRSTUVWX");

// The latitude band of a UTM position: 8° from 80° S, the last one (X) reaching to 84° N.
int bandIndex(double latitude)
{
    return qBound(0, int(std::floor((latitude + 80.0) / 8.0)), int(bandLetters.size()) - 1);
}

bool reverseUtm(int zone, bool northp, double easting, double northing, double& latitude, double& longitude)
{
    try {
        double lat = 0;
        double lon = 0;
        GeographicLib::UTMUPS::Reverse(zone, northp, easting, northing, lat, lon);
        if (!CoordText::IsValidPosition(lat, lon))
            return false;
        latitude = lat;
        longitude = lon;
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

bool parseUtm(const QString& text, double& latitude, double& longitude)
{
    static const QRegularExpression utm(
        QStringLiteral("^(?:(\\d{1,2})\\s*(NORTH|SOUTH|[A-Z])|([ABYZ]))\\s+(?:E\\s*[:=]?\\s*)?%1(?:\\s*M?E)?"
                       "\\s+(?:N\\s*[:=]?\\s*)?%1(?:\\s*M?N)?$")
            .arg(numberPattern()));
    static const QRegularExpression separator(QStringLiteral("[,;]"));
    QString normalized = text.trimmed().toUpper();
    normalized.replace(separator, QStringLiteral(" "));
    const QRegularExpressionMatch match = utm.match(normalized);
    if (!match.hasMatch())
        return false;
    const double easting = match.captured(4).toDouble();
    const double northing = match.captured(5).toDouble();

    if (match.capturedLength(3) > 0) { // UPS: the letter tells the hemisphere
        const QChar letter = match.captured(3).front();
        return reverseUtm(GeographicLib::UTMUPS::UPS, letter == QLatin1Char('Y') || letter == QLatin1Char('Z'), easting,
                          northing, latitude, longitude);
    }

    const int zone = match.captured(1).toInt();
    if (zone < GeographicLib::UTMUPS::MINUTMZONE || zone > GeographicLib::UTMUPS::MAXUTMZONE)
        return false;
    const QString designator = match.captured(2);
    if (designator == QLatin1String("NORTH") || designator == QLatin1String("SOUTH"))
        return reverseUtm(zone, designator == QLatin1String("NORTH"), easting, northing, latitude, longitude);

    const int band = bandLetters.indexOf(designator);
    double lat = 0;
    double lon = 0;
    // A band letter: the position must lie in that band, or beside it (band edges are not straight in
    // the grid). Failing that, N and S may be the hemisphere letters of the short UTM notation.
    if (band >= 0 && reverseUtm(zone, designator >= QLatin1String("N"), easting, northing, lat, lon)
        && std::abs(bandIndex(lat) - band) <= 1) {
        latitude = lat;
        longitude = lon;
        return true;
    }
    if (designator == QLatin1String("N") || designator == QLatin1String("S"))
        return reverseUtm(zone, designator == QLatin1String("N"), easting, northing, latitude, longitude);
    return false;
}

bool parseMgrs(const QString& text, double& latitude, double& longitude)
{
    static const QRegularExpression space(QStringLiteral("\\s"));
    QString compact = text.toUpper();
    compact.remove(space);
    // A bare grid zone designation ("33V") names a region, not a position.
    static const QRegularExpression withSquare(QStringLiteral("^\\d{0,2}[A-Z]{3}\\d*$"));
    if (!withSquare.match(compact).hasMatch())
        return false;
    try {
        int zone = 0;
        bool northp = false;
        double x = 0;
        double y = 0;
        int precision = 0;
        GeographicLib::MGRS::Reverse(toStd(compact), zone, northp, x, y, precision);
        if (precision < 0)
            return false;
        return reverseUtm(zone, northp, x, y, latitude, longitude);
    } catch (const std::exception&) {
        return false;
    }
}

bool parseGrid(const QString& text, const Grid& grid, double& latitude, double& longitude)
{
    static const QRegularExpression prefixed(
        QStringLiteral("^([XYNE])\\s*[:=]?\\s*%1\\s*[,;]?\\s*([XYNE])\\s*[:=]?\\s*%1$").arg(numberPattern()));
    static const QRegularExpression suffixed(
        QStringLiteral("^%1\\s*([XYNE])\\s*[,;]?\\s*%1\\s*([XYNE])$").arg(numberPattern()));
    static const QRegularExpression bare(QStringLiteral("^%1(?:\\s*[,;]\\s*|\\s+)%1$").arg(numberPattern()));
    const QString normalized = text.trimmed().toUpper();

    QString labels[2];
    QString values[2];
    QRegularExpressionMatch match = prefixed.match(normalized);
    if (match.hasMatch()) {
        labels[0] = match.captured(1);
        values[0] = match.captured(2);
        labels[1] = match.captured(3);
        values[1] = match.captured(4);
    } else if ((match = suffixed.match(normalized)).hasMatch()) {
        values[0] = match.captured(1);
        labels[0] = match.captured(2);
        values[1] = match.captured(3);
        labels[1] = match.captured(4);
    } else if ((match = bare.match(normalized)).hasMatch()) {
        labels[0] = QStringLiteral("N");
        values[0] = match.captured(1);
        labels[1] = QStringLiteral("E");
        values[1] = match.captured(2);
    } else {
        return false;
    }
    const auto isNorthing = [](const QString& label) {
        return label == QLatin1String("X") || label == QLatin1String("N");
    };
    if (isNorthing(labels[0]) == isNorthing(labels[1]))
        return false;
    const int north = isNorthing(labels[0]) ? 0 : 1;
    const double northing = values[north].toDouble();
    const double easting = values[1 - north].toDouble();

    double lat = 0;
    double lon = 0;
    double backNorthing = 0;
    double backEasting = 0;
    grid.Reverse(northing, easting, lat, lon);
    // Far outside its zone the projection no longer maps back; such numbers name no position.
    grid.Forward(lat, lon, backNorthing, backEasting);
    if (!CoordText::IsValidPosition(lat, lon) || !(std::abs(backNorthing - northing) < 0.01)
        || !(std::abs(backEasting - easting) < 0.01))
        return false;
    latitude = lat;
    longitude = lon;
    return true;
}

// Six decimals and the hemisphere letter; a value that rounds to zero takes the positive letter.
QString decimalDegrees(double value, QChar positive, QChar negative)
{
    const QString magnitude = QString::number(std::abs(value), 'f', 6);
    const bool zero = magnitude == QLatin1String("0.000000");
    return QStringLiteral("%1\u00b0 %2").arg(magnitude, value < 0 && !zero ? negative : positive);
}

QString degreesMinutesSeconds(double value, bool fraction, QChar positive, QChar negative)
{
    // Rounded once, in the smallest unit shown, so that a carry runs up into minutes and degrees.
    const qint64 perSecond = fraction ? 100 : 1;
    qint64 units = qRound64(std::abs(value) * 3600.0 * double(perSecond));
    const QChar hemisphere = value < 0 && units != 0 ? negative : positive;
    const qint64 hundredths = units % perSecond;
    units /= perSecond;
    const qint64 seconds = units % 60;
    const qint64 minutes = (units / 60) % 60;
    const qint64 degrees = units / 3600;
    QString secondsText = QStringLiteral("%1").arg(seconds, 2, 10, QLatin1Char('0'));
    if (fraction)
        secondsText += QStringLiteral(".%1").arg(hundredths, 2, 10, QLatin1Char('0'));
    return QStringLiteral("%1\u00b0 %2' %3\" %4")
        .arg(degrees)
        .arg(minutes, 2, 10, QLatin1Char('0'))
        .arg(secondsText)
        .arg(hemisphere);
}

QString formatUtm(double latitude, double longitude, bool reference)
{
    try {
        int zone = 0;
        bool northp = false;
        double x = 0;
        double y = 0;
        GeographicLib::UTMUPS::Forward(latitude, longitude, zone, northp, x, y);
        std::string text;
        GeographicLib::MGRS::Forward(zone, northp, x, y, latitude, reference ? 5 : -1, text);
        if (reference)
            return fromStd(text);
        return QStringLiteral("%1 %2 %3").arg(fromStd(text)).arg(qRound64(x)).arg(qRound64(y));
    } catch (const std::exception&) {
        return QString();
    }
}

QString formatGrid(double latitude, double longitude, const Grid& grid, const char* northLabel, const char* eastLabel)
{
    double northing = 0;
    double easting = 0;
    grid.Forward(latitude, longitude, northing, easting);
    // Only on the equator, a quarter of the globe from the central meridian, does the projection run off
    // to infinity.
    if (!(std::abs(northing) < 1e12 && std::abs(easting) < 1e12))
        return QString();
    return QStringLiteral("%1: %2 %3: %4")
        .arg(QLatin1String(northLabel))
        .arg(qRound64(northing))
        .arg(QLatin1String(eastLabel))
        .arg(qRound64(easting));
}

} // namespace

QString CoordText::Format(double latitude, double longitude, CoordFormat format)
{
    if (!IsValidPosition(latitude, longitude))
        return QString();
    switch (format) {
    case GeoDecimal:
        return decimalDegrees(latitude, QLatin1Char('N'), QLatin1Char('S')) + QStringLiteral(", ")
            + decimalDegrees(longitude, QLatin1Char('E'), QLatin1Char('W'));
    case Geo:
    case GeoNoFrac:
        return degreesMinutesSeconds(latitude, format == Geo, QLatin1Char('N'), QLatin1Char('S')) + QStringLiteral(", ")
            + degreesMinutesSeconds(longitude, format == Geo, QLatin1Char('E'), QLatin1Char('W'));
    case Utm:
    case UtmRef:
        return formatUtm(latitude, longitude, format == UtmRef);
    case RT90:
        return formatGrid(latitude, longitude, rt90(), "X", "Y");
    case SweRef99:
        return formatGrid(latitude, longitude, sweref99Tm(), "N", "E");
    }
    return QString();
}

bool CoordText::Parse(const QString& text, CoordFormat format, double& latitude, double& longitude)
{
    switch (format) {
    case GeoDecimal:
    case Geo:
    case GeoNoFrac:
        return parseGeographic(text.trimmed().toUpper(), latitude, longitude);
    case Utm:
        return parseUtm(text, latitude, longitude);
    case UtmRef:
        return parseMgrs(text, latitude, longitude);
    case RT90:
        return parseGrid(text, rt90(), latitude, longitude);
    case SweRef99:
        return parseGrid(text, sweref99Tm(), latitude, longitude);
    }
    return false;
}

bool CoordText::IsValidPosition(double latitude, double longitude)
{
    // Written so that NaN fails every comparison.
    return latitude >= -90.0 && latitude <= 90.0 && longitude >= -180.0 && longitude <= 180.0;
}

bool CoordText::IsValidFormat(long number)
{
    return number >= GeoDecimal && number <= SweRef99;
}

const char* CoordText::FormatName(CoordFormat format)
{
    return IsValidFormat(format) ? formatNames[format] : nullptr;
}

QString CoordText::TranslatedFormatName(CoordFormat format)
{
    const char* name = FormatName(format);
    return name ? TranslationCenter::Instance().translate("Plinthor", QString::fromUtf8(name)) : QString();
}

} // namespace basecontrols
