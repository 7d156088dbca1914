#pragma once

#include <plinthor/plinthor_export.h>

#include <QMetaType>
#include <QString>

/**
 * \brief The text forms of a geographic position, numbered 0 to 6.
 *
 * The numbers are also the keys of the application's position format selection
 * (Plinthor::GetPositionFormat()).
 */
enum CoordFormat {
    GeoDecimal, ///< decimal degrees: <tt>59.330231° N, 18.059196° E</tt>
    Geo,        ///< degrees, minutes and seconds to 1/100 s: <tt>59° 19' 48.83" N, 18° 03' 33.11" E</tt>
    GeoNoFrac,  ///< degrees, minutes and whole seconds: <tt>59° 19' 49" N, 18° 03' 33" E</tt>
    Utm,        ///< UTM or UPS to the metre: <tt>34V 332700 6580519</tt>
    UtmRef,     ///< UTM reference (MGRS) to the metre: <tt>34VCL3269980518</tt>
    RT90,       ///< RT 90 2.5 gon V to the metre, northing first: <tt>X: 6580994 Y: 1628294</tt>
    SweRef99,   ///< SWEREF 99 TM to the metre, northing first: <tt>N: 6580822 E: 674032</tt>
};
Q_DECLARE_METATYPE(CoordFormat)

namespace basecontrols {

/**
 * \brief Formats a position as text in each CoordFormat and reads it back.
 *
 * Positions are latitude and longitude in degrees on WGS 84, north and east positive. SWEREF 99 is
 * taken to be the same datum: the two agree within a metre in Sweden, below the precision shown.
 *
 * <b>Text forms</b> (what Format() writes; Parse() reads each of them back):
 * - \c GeoDecimal: latitude, then longitude, each with six decimals (about 0.1 m), a degree sign and
 *   the hemisphere letter N, S, E or W, separated by a comma: <tt>59.330231° N, 18.059196° E</tt>.
 * - \c Geo: degrees, two-digit minutes and seconds with two decimals (about 0.3 m), ASCII ' and ":
 *   <tt>59° 19' 48.83" N, 18° 03' 33.11" E</tt>.
 * - \c GeoNoFrac: as \c Geo with whole seconds: <tt>59° 19' 49" N, 18° 03' 33" E</tt>.
 *   A value that rounds to zero is written with N or E; rounding carries into minutes and degrees.
 * - \c Utm: the standard UTM zone (with the Norway and Svalbard exceptions) and its latitude band
 *   letter, then easting and northing rounded to the metre: <tt>34V 332700 6580519</tt>. North of 84° N
 *   and south of 80° S it is UPS, with the letter alone (Y or Z in the north, A or B in the south):
 *   <tt>Z 2277729 1518960</tt>.
 * - \c UtmRef: the Military Grid Reference System as GeographicLib writes it, five digits per axis
 *   (1 m squares, truncated), no spaces: <tt>34VCL3269980518</tt>.
 * - \c RT90: RT 90 2.5 gon V, computed directly from SWEREF 99 with Lantmäteriet's projection
 *   parameters (Gauss–Krüger on GRS 80, central meridian 15° 48' 22.624306" E, scale 1.00000561024,
 *   false northing -667.711 m, false easting 1500064.274 m), to the metre. X is the northing, Y the
 *   easting, and the northing comes first, as Swedish maps write them: <tt>X: 6580994 Y: 1628294</tt>.
 * - \c SweRef99: SWEREF 99 TM (EPSG:3006: transverse Mercator on GRS 80, central meridian 15° E,
 *   scale 0.9996, false easting 500000 m), northing N first, then easting E, to the metre:
 *   <tt>N: 6580822 E: 674032</tt>.
 *
 * <b>What Parse() accepts besides</b>, always case-insensitive, with any amount of space:
 * - the three geographic formats read the same notations: decimal degrees, degrees and decimal minutes,
 *   degrees, minutes and seconds, with d, °, ', ′, ", ″ or colons (<tt>59:19:48.83</tt>) or plain
 *   spaces (<tt>59 19 48.83 N 18 3 33.11 E</tt>) between the parts. The hemisphere letter may stand
 *   before or after the number, or be left out for a signed number (<tt>-33.9 18.4</tt>); with
 *   letters, the two coordinates may come in either order. Without letters the latitude comes first.
 *   The two are separated by a comma, a semicolon or space; a decimal comma is taken when both
 *   numbers have one and are separated by space only (<tt>59,330231 18,059196</tt>).
 * - \c Utm: the letter after the zone is read as the latitude band. Where the band does not fit the
 *   northing, an N or S is read as the hemisphere, as GeographicLib writes it (<tt>33n 674032 6580822</tt>);
 *   \c north and \c south are read so too. A zone that is not the standard one for the point is
 *   accepted (the numbers are then read in that zone). Easting and northing may carry the letters
 *   E and N, before or after them (<tt>34V 332700E 6580519N</tt>), and a fraction.
 * - \c UtmRef: any precision from 100 km down (an even number of digits), spaces between the parts,
 *   lower case; the position is the centre of the square.
 * - \c RT90 and \c SweRef99: the labels X, N (northing) and Y, E (easting) in either system, before
 *   or after the numbers, with or without colon or equals sign, in either order
 *   (<tt>Y=1628294, X=6580994</tt>); without labels the northing comes first (<tt>6580822 674032</tt>).
 *
 * Everything else is refused: Parse() gives false and leaves its outputs as they were. A parse never
 * gives a latitude outside -90 to 90 or a longitude outside -180 to 180. No call throws.
 */
class PLINTHOR_EXPORT CoordText
{
public:
    /**
     * \brief The text of the position in \a format.
     *
     * Empty for a latitude outside -90 to 90, a longitude outside -180 to 180, NaN or an unknown
     * format.
     */
    static QString Format(double latitude, double longitude, CoordFormat format);
    /**
     * \brief Reads \a text in \a format; true and the position on success.
     *
     * On refusal \a latitude and \a longitude keep their values.
     */
    static bool Parse(const QString& text, CoordFormat format, double& latitude, double& longitude);
    /// True for a finite latitude within -90 to 90 and a finite longitude within -180 to 180.
    static bool IsValidPosition(double latitude, double longitude);
    /// True for the numbers 0 to 6 of CoordFormat.
    static bool IsValidFormat(long number);
    /**
     * \brief The short English name of \a format, as the position format selection and the context
     * menu of CoordEdit use it, untranslated; null for an unknown format.
     */
    static const char* FormatName(CoordFormat format);
    /// FormatName() translated in the namespace "Plinthor", the namespace of the position format selection.
    static QString TranslatedFormatName(CoordFormat format);
};

} // namespace basecontrols
