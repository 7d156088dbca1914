// CoordText::Parse in each CoordFormat, on any text: a refusal leaves the outputs alone, an accepted
// text gives a valid position, and that position's own text in the format reads back to a point
// within the format's precision, whose text reads back in turn. The editor's path (CoordEdit taking
// the typed text on Return) is driven too, so its handling of the parse result is covered.
//
// Input: byte 0 the format (0 to 6), byte 1 whether the editor path runs, then the text.

#include "fuzzcheck.h"

#include <plinthor/coordedit.h>
#include <plinthor/coordinates.h>

#include <QKeyEvent>

#include <cmath>

using basecontrols::CoordEdit;
using basecontrols::CoordText;

namespace {

const double kStartLatitude = 12.5;
const double kStartLongitude = -45.25;

// Metres between two points, flat-earth: good to well under a percent over the few metres compared.
double distance(double latitude1, double longitude1, double latitude2, double longitude2)
{
    const double metresPerDegree = 111320.0;
    double dLongitude = std::fabs(longitude1 - longitude2);
    if (dLongitude > 180.0)
        dLongitude = 360.0 - dLongitude;
    const double east = dLongitude * metresPerDegree * std::cos((latitude1 + latitude2) / 2.0 * M_PI / 180.0);
    const double north = (latitude1 - latitude2) * metresPerDegree;
    return std::hypot(east, north);
}

// How far a position may move by being written and read back: the rounding of the written text.
double tolerance(CoordFormat format)
{
    switch (format) {
    case GeoDecimal:
        return 0.1; // 1e-6 degree
    case Geo:
        return 0.3; // 0.01 second
    case GeoNoFrac:
        return 25.0; // 1 second
    default:
        return 2.0; // the metre, and the square's centre for MGRS
    }
}

// The Swedish grids are transverse Mercator projections, exact only near their central meridian;
// far from it they still write a text, which need not lead back to the point.
bool withinGrid(CoordFormat format, double latitude, double longitude)
{
    if (format != RT90 && format != SweRef99)
        return true;
    return std::fabs(longitude - 15.8) < 30.0 && std::fabs(latitude) < 84.0;
}

void checkRoundTrip(CoordFormat format, double latitude, double longitude, const QString& context)
{
    const QString written = CoordText::Format(latitude, longitude, format);
    FUZZ_CHECK(!written.isEmpty(), context);
    double latitude1 = 1000.0;
    double longitude1 = 1000.0;
    const QString writtenContext = context + QStringLiteral(" written '%1'").arg(written);
    FUZZ_CHECK(CoordText::Parse(written, format, latitude1, longitude1), writtenContext);
    FUZZ_CHECK(CoordText::IsValidPosition(latitude1, longitude1), writtenContext);
    if (!withinGrid(format, latitude, longitude))
        return;
    const double moved = distance(latitude, longitude, latitude1, longitude1);
    FUZZ_CHECK(moved <= tolerance(format) || std::fabs(latitude) > 89.99,
               writtenContext + QStringLiteral(" read back as %1, %2, %3 m away")
                                    .arg(latitude1, 0, 'g', 17)
                                    .arg(longitude1, 0, 'g', 17)
                                    .arg(moved));

    const QString rewritten = CoordText::Format(latitude1, longitude1, format);
    double latitude2 = 1000.0;
    double longitude2 = 1000.0;
    FUZZ_CHECK(CoordText::Parse(rewritten, format, latitude2, longitude2), writtenContext + " then '" + rewritten + "'");
}

void typeIntoEditor(CoordFormat format, const QString& text, const QString& context)
{
    // One editor for the whole run, set anew for each input: building one costs more than the input.
    static CoordEdit& edit = *new CoordEdit;
    static bool edited = false;
    static const auto connection = QObject::connect(&edit, &CoordEdit::positionEdited, [] { edited = true; });
    Q_UNUSED(connection)
    edit.setModified(false);
    edit.setFormat(format);
    edit.setLatitude(kStartLatitude);
    edit.setLongitude(kStartLongitude);
    const QString before = edit.text();
    edited = false;
    edit.setText(text);
    edit.setModified(true);
    // What the field holds, which a long text has been cut to.
    double latitude = kStartLatitude;
    double longitude = kStartLongitude;
    const bool accepted = CoordText::Parse(edit.text(), format, latitude, longitude);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(&edit, &press);

    FUZZ_CHECK(edited == accepted, context);
    if (accepted) {
        FUZZ_CHECK(fuzz::sameNumber(edit.getLatitude(), latitude), context);
        FUZZ_CHECK(fuzz::sameNumber(edit.getLongitude(), longitude), context);
        FUZZ_CHECK(edit.text() == CoordText::Format(latitude, longitude, format), context + " shows " + edit.text());
    } else {
        FUZZ_CHECK(fuzz::sameNumber(edit.getLatitude(), kStartLatitude), context);
        FUZZ_CHECK(edit.text() == before, context + " shows " + edit.text());
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::makeApplication(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const auto format = static_cast<CoordFormat>(fuzz::choice(data[0], 7));
    const bool editor = fuzz::choice(data[1], 2) == 1;
    const QString text = fuzz::text(data + 2, size - 2);
    const QString context = QStringLiteral("format %1, text '%2'").arg(int(format)).arg(text);

    double latitude = kStartLatitude;
    double longitude = kStartLongitude;
    const bool accepted = CoordText::Parse(text, format, latitude, longitude);
    if (!accepted) {
        FUZZ_CHECK(latitude == kStartLatitude && longitude == kStartLongitude, context);
    } else {
        FUZZ_CHECK(CoordText::IsValidPosition(latitude, longitude),
                   context + QStringLiteral(" gave %1, %2").arg(latitude, 0, 'g', 17).arg(longitude, 0, 'g', 17));
        checkRoundTrip(format, latitude, longitude, context);
    }
    if (editor)
        typeIntoEditor(format, text, context);
    return 0;
}
