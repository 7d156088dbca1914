#include <plinthor/coordedit.h>
#include <plinthor/plinthorapp.h>

#include <values/tree.h>

#include <QtTest>

#include <QClipboard>
#include <QElapsedTimer>
#include <QMenu>
#include <QRandomGenerator>

#include <cmath>

using basecontrols::CoordEdit;
using basecontrols::CoordText;

namespace {

double dms(double degrees, double minutes, double seconds)
{
    return degrees + minutes / 60.0 + seconds / 3600.0;
}

// Published control points A to D (see referencePoints_data), and the position of the header's examples.
const double latA = dms(67, 5, 26.452769), lonA = dms(21, 2, 5.101575);
const double latB = dms(63, 32, 14.761735), lonB = dms(16, 14, 59.594626);
const double latC = dms(60, 9, 33.882413), lonC = dms(14, 45, 28.167152);
const double latD = dms(56, 21, 17.199245), lonD = dms(13, 52, 23.754022);
const double latDoc = 59.330231, lonDoc = 18.059196;

// Metres on the ground between two nearby positions (a local flat approximation is plenty here).
double metresBetween(double lat1, double lon1, double lat2, double lon2)
{
    const double metresPerDegree = 111195.0;
    const double dLat = (lat2 - lat1) * metresPerDegree;
    double dLon = std::remainder(lon2 - lon1, 360.0) * metresPerDegree * std::cos((lat1 + lat2) / 2.0 * M_PI / 180.0);
    return std::hypot(dLat, dLon);
}

// The right-click menu the user sees, found as the active popup after a context menu event.
QMenu* openContextMenu(QWidget* edit)
{
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), edit->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(edit, &event);
    return qobject_cast<QMenu*>(QApplication::activePopupWidget());
}

// Chooses an entry as the user does, with a click; the menu closes.
void clickAction(QMenu* menu, QAction* action)
{
    QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(action).center());
}

QAction* findAction(QMenu* menu, const QString& text)
{
    for (QAction* action : menu->actions()) {
        if (action->text() == text)
            return action;
    }
    return nullptr;
}

} // namespace

class CoordEditTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        if (QWidget* popup = QApplication::activePopupWidget())
            popup->close();
        values::Tree::Instance()->Clear();
    }

    // Published coordinates, each formatted to the metre. A to D: Lantmäteriet, "Kontrollpunkter RT90 <->
    // SWEREF 99" (2006-05-03), in SWEREF 99, RT 90 2.5 gon V and SWEREF 99 TM; B, C and D lie in UTM zone 33,
    // the projection of SWEREF 99 TM (on WGS 84, a millimetre off), so those figures are their UTM ones too.
    // "55 12.75", "67 24", "69 21": Lantmäteriet, "Kontrollpunkter för SWEREF 99 TM" (2007-11-20). Baghdad
    // and Antarctic: GeographicLib's GeoConvert manual. The "doc" rows keep the header's examples true.
    void referencePoints_data()
    {
        QTest::addColumn<double>("latitude");
        QTest::addColumn<double>("longitude");
        QTest::addColumn<int>("format");
        QTest::addColumn<QString>("text");

        QTest::newRow("A RT90") << latA << lonA << int(RT90) << "X: 7453390 Y: 1727061";
        QTest::newRow("A SWEREF 99 TM") << latA << lonA << int(SweRef99) << "N: 7454205 E: 761811";
        QTest::newRow("B RT90") << latB << lonB << int(RT90) << "X: 7047738 Y: 1522129";
        QTest::newRow("B SWEREF 99 TM") << latB << lonB << int(SweRef99) << "N: 7046078 E: 562140";
        QTest::newRow("B UTM") << latB << lonB << int(Utm) << "33V 562140 7046078";
        QTest::newRow("B whole seconds") << latB << lonB << int(GeoNoFrac) << "63° 32' 15\" N, 16° 15' 00\" E";
        QTest::newRow("C RT90") << latC << lonC << int(RT90) << "X: 6671665 Y: 1441843";
        QTest::newRow("C SWEREF 99 TM") << latC << lonC << int(SweRef99) << "N: 6669189 E: 486557";
        QTest::newRow("C UTM") << latC << lonC << int(Utm) << "33V 486557 6669189";
        QTest::newRow("C MGRS") << latC << lonC << int(UtmRef) << "33VVG8655769189";
        QTest::newRow("D RT90") << latD << lonD << int(RT90) << "X: 6249111 Y: 1380573";
        QTest::newRow("D SWEREF 99 TM") << latD << lonD << int(SweRef99) << "N: 6246136 E: 430375";
        QTest::newRow("D UTM") << latD << lonD << int(Utm) << "33V 430375 6246136";
        QTest::newRow("55 12.75") << 55.0 << 12.75 << int(SweRef99) << "N: 6097107 E: 356083";
        QTest::newRow("67 24") << 67.0 << 24.0 << int(SweRef99) << "N: 7459746 E: 891298";
        QTest::newRow("69 21") << 69.0 << 21.0 << int(SweRef99) << "N: 7666090 E: 739639";
        QTest::newRow("Baghdad UTM") << 33.3 << 44.4 << int(Utm) << "38S 444141 3684706";
        QTest::newRow("Baghdad MGRS") << 33.3 << 44.4 << int(UtmRef) << "38SMB4414084706";
        QTest::newRow("Antarctic MGRS") << -79.9 << 6.1 << int(UtmRef) << "32CMS4324728161";
        QTest::newRow("Antarctic west") << -79.9 << -6.1 << int(GeoDecimal) << "79.900000° S, 6.100000° W";
        QTest::newRow("doc GeoDecimal") << latDoc << lonDoc << int(GeoDecimal) << "59.330231° N, 18.059196° E";
        QTest::newRow("doc Geo") << latDoc << lonDoc << int(Geo) << "59° 19' 48.83\" N, 18° 03' 33.11\" E";
        QTest::newRow("doc GeoNoFrac") << latDoc << lonDoc << int(GeoNoFrac) << "59° 19' 49\" N, 18° 03' 33\" E";
        QTest::newRow("doc Utm") << latDoc << lonDoc << int(Utm) << "34V 332700 6580519";
        QTest::newRow("doc UtmRef") << latDoc << lonDoc << int(UtmRef) << "34VCL3269980518";
        QTest::newRow("doc RT90") << latDoc << lonDoc << int(RT90) << "X: 6580994 Y: 1628294";
        QTest::newRow("doc SweRef99") << latDoc << lonDoc << int(SweRef99) << "N: 6580822 E: 674032";
        QTest::newRow("doc UPS") << 85.0 << 30.0 << int(Utm) << "Z 2277729 1518960";
    }
    void referencePoints()
    {
        QFETCH(double, latitude);
        QFETCH(double, longitude);
        QFETCH(int, format);
        QTEST(CoordText::Format(latitude, longitude, CoordFormat(format)), "text");
    }

    // Published grid figures to the millimetre read back to the published positions (same sources),
    // then the other ways a user may type a position.
    void parses_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("latitude");
        QTest::addColumn<double>("longitude");
        QTest::addColumn<double>("toleranceMetres");

        QTest::newRow("A RT90") << int(RT90) << "X: 7453389.762 Y: 1727060.905" << latA << lonA << 0.002;
        QTest::newRow("A SWEREF") << int(SweRef99) << "N: 7454204.638 E: 761811.242" << latA << lonA << 0.002;
        QTest::newRow("B RT90") << int(RT90) << "X: 7047738.415 Y: 1522128.637" << latB << lonB << 0.002;
        QTest::newRow("C SWEREF") << int(SweRef99) << "N: 6669189.376 E: 486557.055" << latC << lonC << 0.002;
        QTest::newRow("D RT90") << int(RT90) << "X: 6249111.351 Y: 1380573.079" << latD << lonD << 0.002;
        QTest::newRow("D UTM") << int(Utm) << "33V 430374.835 6246136.458" << latD << lonD << 0.002;
        QTest::newRow("55 12.75") << int(SweRef99) << "N: 6097106.672 E: 356083.438" << 55.0 << 12.75 << 0.002;
        QTest::newRow("Baghdad UTM") << int(Utm) << "38n 444140.54 3684706.36" << 33.3 << 44.4 << 0.01;
        // An MGRS square stands for its centre: 38n 444500 3688500, given there as 33.33424 44.40363.
        QTest::newRow("Baghdad 1 km square") << int(UtmRef) << "38SMB4488" << 33.33424 << 44.40363 << 1.0;
        QTest::newRow("Antarctic MGRS") << int(UtmRef) << "32CMS4324728161" << -79.9 << 6.1 << 1.0;
        // GeographicLib's short notation: the letter is the hemisphere, here 31s = south.
        QTest::newRow("hemisphere letter") << int(Utm) << "31s 500000 9889470" << -1.0 << 3.0 << 1.0;
        QTest::newRow("plain decimal") << int(GeoDecimal) << "59.330231 18.059196" << latDoc << lonDoc << 0.01;
        QTest::newRow("letters after") << int(GeoDecimal) << "59.330231N 18.059196E" << latDoc << lonDoc << 0.01;
        QTest::newRow("letters before") << int(GeoDecimal) << "N 59.330231 E 18.059196" << latDoc << lonDoc << 0.01;
        QTest::newRow("longitude first") << int(GeoDecimal) << "18.059196° E, 59.330231° N" << latDoc << lonDoc << 0.01;
        QTest::newRow("decimal commas") << int(GeoDecimal) << "59,330231 18,059196" << latDoc << lonDoc << 0.01;
        QTest::newRow("signed south west") << int(GeoDecimal) << "-33.9249 -18.4241" << -33.9249 << -18.4241 << 0.01;
        QTest::newRow("colons") << int(Geo) << "59:19:48.83 18:03:33.11" << latDoc << lonDoc << 0.2;
        QTest::newRow("spaces") << int(Geo) << "59 19 48.83 N 18 3 33.11 E" << latDoc << lonDoc << 0.2;
        QTest::newRow("decimal minutes") << int(Geo) << "59°19.81386'N 18°3.55176'E" << latDoc << lonDoc << 0.01;
        QTest::newRow("d and quotes") << int(GeoNoFrac) << "59d19'48.83\" 18d03'33.11\"" << latDoc << lonDoc << 0.2;
        QTest::newRow("primes") << int(Geo) << "59°19′48.83″N 18°03′33.11″E" << latDoc << lonDoc << 0.2;
        QTest::newRow("UTM labels") << int(Utm) << "34V 332700E 6580519N" << latDoc << lonDoc << 1.0;
        QTest::newRow("UTM other zone") << int(Utm) << "33n 674032 6580822" << latDoc << lonDoc << 1.0;
        QTest::newRow("UTM north word") << int(Utm) << "38 north 444140.54 3684706.36" << 33.3 << 44.4 << 0.01;
        QTest::newRow("UTM band S north") << int(Utm) << "38S 444141 3684706" << 33.3 << 44.4 << 1.0;
        QTest::newRow("UPS") << int(Utm) << "Z 2277729 1518960" << 85.0 << 30.0 << 1.0;
        QTest::newRow("MGRS spaced") << int(UtmRef) << "34V CL 32699 80518" << latDoc << lonDoc << 1.0;
        QTest::newRow("MGRS 10 m") << int(UtmRef) << "34VCL32698051" << latDoc << lonDoc << 10.0;
        QTest::newRow("RT90 bare") << int(RT90) << "6580994 1628294" << latDoc << lonDoc << 1.0;
        QTest::newRow("RT90 swapped labels") << int(RT90) << "Y=1628294, X=6580994" << latDoc << lonDoc << 1.0;
        QTest::newRow("RT90 suffixes") << int(RT90) << "6580994X 1628294Y" << latDoc << lonDoc << 1.0;
        QTest::newRow("SWEREF easting first") << int(SweRef99) << "E 674032 N 6580822" << latDoc << lonDoc << 1.0;
        QTest::newRow("SWEREF comma") << int(SweRef99) << "6580822, 674032" << latDoc << lonDoc << 1.0;
    }
    void parses()
    {
        QFETCH(int, format);
        QFETCH(QString, text);
        QFETCH(double, latitude);
        QFETCH(double, longitude);
        QFETCH(double, toleranceMetres);
        double lat = 0;
        double lon = 0;
        QVERIFY(CoordText::Parse(text, CoordFormat(format), lat, lon));
        const double off = metresBetween(lat, lon, latitude, longitude);
        QVERIFY2(off < toleranceMetres,
                 qPrintable(QStringLiteral("%1 %2 is %3 m off").arg(lat, 0, 'f', 9).arg(lon, 0, 'f', 9).arg(off)));
    }

    void roundTrips_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<double>("toleranceMetres");
        QTest::addColumn<bool>("nordicOnly");
        QTest::newRow("decimal") << int(GeoDecimal) << 0.1 << false;
        QTest::newRow("seconds") << int(Geo) << 0.25 << false;
        QTest::newRow("whole seconds") << int(GeoNoFrac) << 22.0 << false;
        QTest::newRow("UTM") << int(Utm) << 0.8 << false;
        QTest::newRow("MGRS") << int(UtmRef) << 1.5 << false;
        QTest::newRow("RT90") << int(RT90) << 0.8 << true;
        QTest::newRow("SWEREF 99 TM") << int(SweRef99) << 0.8 << true;
    }
    void roundTrips()
    {
        QFETCH(int, format);
        QFETCH(double, toleranceMetres);
        QFETCH(bool, nordicOnly);
        QVector<QPair<double, double>> positions = {
            {59.330231, 18.059196}, {0.0, 0.0},      {-33.9249, 18.4241},   {40.7128, -74.0060},  {-0.0000001, -0.0000001},
            {85.0, 30.0},           {-85.0, -30.0},  {89.999, 179.9},       {-79.5, -179.999999}, {64.0, 6.0},
            {72.5, 20.0},           {55.0, 180.0},   {-45.0, -180.0},       {59.999999, 17.999999}};
        // The Swedish grids are only used in and around Sweden.
        if (nordicOnly)
            positions = {{59.330231, 18.059196}, {55.33, 10.0}, {69.06, 20.55}, {63.5, 24.2}, {57.7, 11.97}};
        QRandomGenerator random(20240611);
        for (int i = 0; i < 300; ++i) {
            if (nordicOnly)
                positions << qMakePair(54.0 + random.generateDouble() * 16.0, 8.0 + random.generateDouble() * 18.0);
            else
                positions << qMakePair(-90.0 + random.generateDouble() * 180.0, -180.0 + random.generateDouble() * 360.0);
        }
        for (const auto& position : qAsConst(positions)) {
            const QString text = CoordText::Format(position.first, position.second, CoordFormat(format));
            QVERIFY2(!text.isEmpty(), qPrintable(QStringLiteral("%1 %2").arg(position.first).arg(position.second)));
            double lat = 1000;
            double lon = 1000;
            QVERIFY2(CoordText::Parse(text, CoordFormat(format), lat, lon), qPrintable(text));
            // On a zone edge the rounded figures may name a point just across it, in the next zone.
            const bool onZoneEdge = std::abs(std::remainder(position.second, 6.0)) < 1e-4;
            if (!(onZoneEdge && (format == Utm || format == UtmRef)))
                QCOMPARE(CoordText::Format(lat, lon, CoordFormat(format)), text);
            // Beside the poles any longitude is the same place.
            if (std::abs(position.first) < 89.9)
                QVERIFY2(metresBetween(lat, lon, position.first, position.second) < toleranceMetres, qPrintable(text));
        }
    }

    void refusals_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << int(GeoDecimal) << "";
        QTest::newRow("one number") << int(GeoDecimal) << "59.5";
        QTest::newRow("latitude beyond pole") << int(GeoDecimal) << "91 18";
        QTest::newRow("longitude beyond 180") << int(GeoDecimal) << "59 181";
        QTest::newRow("two latitudes") << int(GeoDecimal) << "59N 60N";
        QTest::newRow("exponent") << int(GeoDecimal) << "1e1 18";
        QTest::newRow("sixty minutes") << int(Geo) << "59°60' 18°";
        QTest::newRow("seconds mark before colons") << int(Geo) << "1\"2:3:4 N, 18 E";
        QTest::newRow("six colon parts") << int(Geo) << "59:19:48 1:2:3:4:5:6";
        QTest::newRow("UTM no northing") << int(Utm) << "34V 332700";
        QTest::newRow("UTM zone 61") << int(Utm) << "61V 500000 6580519";
        QTest::newRow("UTM band I") << int(Utm) << "34I 332700 6580519";
        QTest::newRow("UTM band far off") << int(Utm) << "34C 332700 6580519";
        QTest::newRow("UTM easting off") << int(Utm) << "34V 5000000 6580519";
        QTest::newRow("UTM as decimal degrees") << int(Utm) << "59.33 18.05";
        QTest::newRow("MGRS zone only") << int(UtmRef) << "34V";
        QTest::newRow("MGRS odd digits") << int(UtmRef) << "34VCL326998051";
        QTest::newRow("MGRS letter I") << int(UtmRef) << "34VIL3269980518";
        QTest::newRow("RT90 one number") << int(RT90) << "X: 6580994";
        QTest::newRow("RT90 two northings") << int(RT90) << "X: 6580994 N: 1628294";
        QTest::newRow("RT90 far away") << int(RT90) << "X: 6580994 Y: 99999999999";
    }
    void refusals()
    {
        QFETCH(int, format);
        QFETCH(QString, text);
        double lat = 12.5;
        double lon = -7.25;
        QVERIFY(!CoordText::Parse(text, CoordFormat(format), lat, lon));
        QCOMPARE(lat, 12.5);
        QCOMPARE(lon, -7.25);
    }

    void formatEdges()
    {
        // Rounding carries up through seconds and minutes; a value rounding to zero is N or E.
        QCOMPARE(CoordText::Format(59.9999999, -0.0000001, Geo), QStringLiteral("60° 00' 00.00\" N, 0° 00' 00.00\" E"));
        QCOMPARE(CoordText::Format(-0.0000001, 179.99999, GeoNoFrac), QStringLiteral("0° 00' 00\" N, 180° 00' 00\" E"));
        QCOMPARE(CoordText::Format(-0.0000001, -0.0000004, GeoDecimal), QStringLiteral("0.000000° N, 0.000000° E"));
        // Positions that are none show nothing.
        QVERIFY(CoordText::Format(91, 0, GeoDecimal).isEmpty());
        QVERIFY(CoordText::Format(0, -180.5, Utm).isEmpty());
        QVERIFY(CoordText::Format(qQNaN(), 0, SweRef99).isEmpty());
        QVERIFY(CoordText::Format(0, qInf(), RT90).isEmpty());
        QVERIFY(!CoordText::IsValidFormat(7));
        QVERIFY(!CoordText::IsValidFormat(-1));
    }

    // Random and mangled text in every format: each answer is a clean parse or a clean refusal.
    void fuzz()
    {
        const QString alphabet = QStringLiteral("0123456789.,;:+- \t'\"°′″dDNSEWnsewXYxyZCVLMK=mI\u00a0\u2212\u00ba\u00b4%");
        QStringList seeds;
        const CoordFormat formats[] = {GeoDecimal, Geo, GeoNoFrac, Utm, UtmRef, RT90, SweRef99};
        for (CoordFormat format : formats) {
            seeds << CoordText::Format(59.330231, 18.059196, format) << CoordText::Format(-33.9249, -70.6, format)
                  << CoordText::Format(86.5, 12.0, format);
        }
        QRandomGenerator random(7);
        QElapsedTimer clock;
        clock.start();
        int attempts = 0;
        int parsed = 0;
        while (attempts < 150000 && clock.elapsed() < 3000) {
            QString text;
            if (random.bounded(3) == 0) {
                const int length = random.bounded(40);
                for (int i = 0; i < length; ++i)
                    text += alphabet[random.bounded(alphabet.size())];
            } else {
                text = seeds[random.bounded(seeds.size())];
                for (int edits = random.bounded(1, 4); edits > 0; --edits) {
                    const int at = random.bounded(text.size() + 1);
                    switch (random.bounded(4)) {
                    case 0:
                        text.remove(at, random.bounded(1, 4));
                        break;
                    case 1:
                        text.insert(at, alphabet[random.bounded(alphabet.size())]);
                        break;
                    case 2:
                        if (at < text.size())
                            text[at] = alphabet[random.bounded(alphabet.size())];
                        break;
                    default:
                        text.insert(at, text.mid(random.bounded(text.size() + 1), random.bounded(12)));
                        break;
                    }
                }
            }
            for (CoordFormat format : formats) {
                ++attempts;
                double lat = 1234.5;
                double lon = -1234.5;
                if (CoordText::Parse(text, format, lat, lon)) {
                    ++parsed;
                    QVERIFY2(CoordText::IsValidPosition(lat, lon), qPrintable(text));
                    // What was read can be written and read again.
                    const QString canonical = CoordText::Format(lat, lon, format);
                    double again = 0;
                    QVERIFY2(!canonical.isEmpty() && CoordText::Parse(canonical, format, again, again), qPrintable(text));
                } else {
                    QVERIFY2(lat == 1234.5 && lon == -1234.5, qPrintable(text));
                }
            }
        }
        QVERIFY(attempts > 1000);
        // Mangled but still well-formed text must keep parsing, or the test fed only rubbish.
        QVERIFY(parsed > attempts / 200);
    }

    void typingAndReturn()
    {
        CoordEdit edit;
        QSignalSpy edited(&edit, &CoordEdit::positionEdited);
        QCOMPARE(edit.text(), QStringLiteral("0.000000° N, 0.000000° E"));
        edit.clear();
        QTest::keyClicks(&edit, QStringLiteral("59.330231n 18.059196e"));
        QTest::keyClick(&edit, Qt::Key_Return);
        QCOMPARE(edit.getLatitude(), 59.330231);
        QCOMPARE(edit.getLongitude(), 18.059196);
        QCOMPARE(edit.text(), QStringLiteral("59.330231° N, 18.059196° E"));
        QVERIFY(!edit.isModified());
        QCOMPARE(edited.count(), 1);
        QCOMPARE(edited.at(0).at(0).toDouble(), 59.330231);

        // Refused text is dropped and the held position comes back.
        edit.selectAll();
        QTest::keyClicks(&edit, QStringLiteral("somewhere"));
        QTest::keyClick(&edit, Qt::Key_Enter);
        QCOMPARE(edit.text(), QStringLiteral("59.330231° N, 18.059196° E"));
        QCOMPARE(edit.getLatitude(), 59.330231);
        QCOMPARE(edited.count(), 1);

        // Escape drops the typing.
        QTest::keyClicks(&edit, QStringLiteral("xyz"));
        QTest::keyClick(&edit, Qt::Key_Escape);
        QCOMPARE(edit.text(), QStringLiteral("59.330231° N, 18.059196° E"));
        QVERIFY(!edit.isModified());
    }

    void focusOutTakesTheText()
    {
        QWidget window;
        auto* edit = new CoordEdit(&window);
        auto* other = new QLineEdit(&window);
        other->move(0, 40);
        edit->setFormat(SweRef99);
        window.show();
        QApplication::setActiveWindow(&window);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        edit->setFocus();
        QTRY_VERIFY(edit->hasFocus());
        edit->selectAll();
        QTest::keyClicks(edit, QStringLiteral("6580822 674032"));
        // While the user types, a position from the program waits.
        edit->setLongitude(1.0);
        QCOMPARE(edit->text(), QStringLiteral("6580822 674032"));
        other->setFocus();
        QTRY_VERIFY(!edit->hasFocus());
        QCOMPARE(edit->text(), QStringLiteral("N: 6580822 E: 674032"));
        QVERIFY(std::abs(edit->getLatitude() - 59.330231) < 1e-5);
        QVERIFY(std::abs(edit->getLongitude() - 18.059196) < 1e-5);
        // Without typing the program's position shows at once.
        edit->setLatitude(0.0);
        edit->setLongitude(15.0);
        QCOMPARE(edit->text(), QStringLiteral("N: 0 E: 500000"));
    }

    void warningColourWhileTyping()
    {
        CoordEdit edit;
        const auto colour = [&edit] { return edit.palette().color(QPalette::Active, QPalette::Text); };
        const QColor normal = colour();
        edit.clear();
        QTest::keyClicks(&edit, QStringLiteral("59.3 18"));
        QCOMPARE(colour(), normal);
        QTest::keyClicks(&edit, QStringLiteral("x"));
        QVERIFY(colour() != normal);
        QTest::keyClick(&edit, Qt::Key_Backspace);
        QCOMPARE(colour(), normal);
        QTest::keyClicks(&edit, QStringLiteral("x"));
        QTest::keyClick(&edit, Qt::Key_Return); // refused: the held position shows, in the usual colour
        QCOMPARE(colour(), normal);
    }

    void contextMenu()
    {
        QWidget window;
        auto* edit = new CoordEdit(&window);
        edit->resize(300, 30);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        edit->setLatitude(33.3);
        edit->setLongitude(44.4);

        QMenu* menu = openContextMenu(edit);
        QVERIFY(menu);
        const QList<QAction*> actions = menu->actions();
        QCOMPARE(actions.size(), 10);
        for (int i = 0; i < 7; ++i) {
            QCOMPARE(actions[i]->data().toInt(), i);
            QCOMPARE(actions[i]->isChecked(), i == GeoDecimal);
        }
        QVERIFY(actions[7]->isSeparator());
        clickAction(menu, actions[Utm]);
        QTRY_VERIFY(!QApplication::activePopupWidget());
        QCOMPARE(edit->getFormat(), Utm);
        QCOMPARE(edit->text(), QStringLiteral("38S 444141 3684706"));

        menu = openContextMenu(edit);
        QVERIFY(menu);
        QVERIFY(menu->actions()[Utm]->isChecked());
        QAction* copy = findAction(menu, CoordEdit::tr("&Copy"));
        QVERIFY(copy);
        QGuiApplication::clipboard()->clear();
        clickAction(menu, copy);
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("38S 444141 3684706"));

        // Paste reads the clipboard in the current format, as if typed.
        QSignalSpy edited(edit, &CoordEdit::positionEdited);
        QGuiApplication::clipboard()->setText(QStringLiteral("  33V 674032\n6580822 "));
        menu = openContextMenu(edit);
        QAction* paste = findAction(menu, CoordEdit::tr("&Paste"));
        QVERIFY(paste && paste->isEnabled());
        clickAction(menu, paste);
        QCOMPARE(edited.count(), 1);
        QCOMPARE(edit->text(), QStringLiteral("34V 332700 6580519"));
        // Refused clipboard text changes nothing.
        QGuiApplication::clipboard()->setText(QStringLiteral("59.33 18.06"));
        edit->pasteClipboard();
        QCOMPARE(edit->text(), QStringLiteral("34V 332700 6580519"));
        QCOMPARE(edited.count(), 1);

        edit->setContextMenuEnabled(false);
        QVERIFY(!openContextMenu(edit));
    }

    void actAsLabel()
    {
        QWidget window;
        QPalette windowPalette = window.palette();
        windowPalette.setColor(QPalette::Window, QColor(10, 200, 30));
        windowPalette.setColor(QPalette::WindowText, QColor(1, 2, 3));
        window.setPalette(windowPalette);
        auto* edit = new CoordEdit(&window);
        edit->setFocusPolicy(Qt::StrongFocus);
        edit->setActAsLabel(true);
        QVERIFY(edit->isActingAsLabel());
        QVERIFY(edit->isReadOnly());
        QVERIFY(!edit->hasFrame());
        QCOMPARE(edit->focusPolicy(), Qt::NoFocus);
        QCOMPARE(edit->palette().color(QPalette::Base), QColor(10, 200, 30));
        QCOMPARE(edit->palette().color(QPalette::Text), QColor(1, 2, 3));

        // Typing does nothing; the menu still offers the formats and Copy, but not Paste.
        const QString shown = edit->text();
        QTest::keyClicks(edit, QStringLiteral("12"));
        QCOMPARE(edit->text(), shown);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QMenu* menu = openContextMenu(edit);
        QVERIFY(menu);
        QVERIFY(!findAction(menu, CoordEdit::tr("&Paste"))->isEnabled());
        QVERIFY(findAction(menu, CoordEdit::tr("&Copy"))->isEnabled());
        menu->close();

        // The window's colours change: taken up on request.
        windowPalette.setColor(QPalette::Window, QColor(90, 90, 200));
        window.setPalette(windowPalette);
        edit->acceptColorChanges();
        QCOMPARE(edit->palette().color(QPalette::Base), QColor(90, 90, 200));

        edit->setActAsLabel(false);
        QVERIFY(!edit->isReadOnly());
        QVERIFY(edit->hasFrame());
        QCOMPARE(edit->focusPolicy(), Qt::StrongFocus);
        QCOMPARE(edit->palette().color(QPalette::Base), window.palette().color(QPalette::Base));
    }
};

QTEST_MAIN(CoordEditTest)
#include "coordedittest.moc"
