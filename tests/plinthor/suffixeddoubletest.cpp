#include <plinthor/suffixeddouble.h>
#include <values/values.h>

#include <QtTest>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

values::ValueSelection* addUnits(const QString& path, const QStringList& names)
{
    auto* selection = new values::ValueSelection;
    for (int i = 0; i < names.size(); ++i)
        selection->AddItem(names.at(i), i, i, nullptr);
    tree().Add(path, selection);
    return selection;
}

} // namespace

class SuffixedDoubleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { tree().Clear(); }

    void format_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<bool>("plain");
        QTest::addColumn<int>("mode");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("display");
        QTest::addColumn<QString>("shortest");

        const QString micro = QString(QChar(0x00B5));
        QTest::newRow("MHz") << "Hz" << false << 0 << 100.5e6 << "100.500 MHz" << "100.5 MHz";
        QTest::newRow("GHz") << "Hz" << false << 0 << 2e9 << "2 GHz" << "2 GHz";
        QTest::newRow("hertz resolution") << "Hz" << false << 0 << 100500123.0 << "100.500123 MHz" << "100.500123 MHz";
        QTest::newRow("below one hertz") << "Hz" << false << 0 << 0.5 << "0.500 Hz" << "0.5 Hz";
        QTest::newRow("zero") << "Hz" << false << 0 << 0.0 << "0 Hz" << "0 Hz";
        QTest::newRow("negative") << "Hz" << false << 0 << -1500.0 << "-1.500 kHz" << "-1.5 kHz";
        QTest::newRow("rounding moves the prefix") << "Hz" << false << 0 << 999999.9999999 << "1 MHz" << "999.9999999999 kHz";
        QTest::newRow("fixed kHz") << "Hz" << false << 2 << 2e9 << "2000000 kHz" << "2 GHz";
        QTest::newRow("fixed MHz") << "Hz" << false << 3 << 1500.0 << "0.001500 MHz" << "1.5 kHz";
        QTest::newRow("frequency has no milli") << "Hz" << false << 6 << 0.25 << "0.250 Hz" << "0.25 Hz";
        QTest::newRow("beyond giga") << "Hz" << false << 0 << 1.5e12 << "1500 GHz" << "1500 GHz";
        QTest::newRow("fixed tera is giga") << "Hz" << false << 5 << 2e9 << "2 GHz" << "2 GHz";
        QTest::newRow("exponent") << "Hz" << false << 0 << 1e30 << "1e+21 GHz" << "1e+21 GHz";
        QTest::newRow("nan") << "Hz" << false << 0 << qQNaN() << "nan Hz" << "nan Hz";
        QTest::newRow("plain kilo") << "" << true << 0 << 4700.0 << "4.7k" << "4.7k";
        QTest::newRow("plain base") << "" << true << 0 << 12.0 << "12" << "12";
        QTest::newRow("plain tera") << "" << true << 0 << 2.5e12 << "2.5T" << "2.5T";
        QTest::newRow("plain micro") << "" << true << 0 << 1.5e-6 << "1.5" + micro << "1.5" + micro;
        QTest::newRow("plain with unit") << "V" << true << 0 << 0.25 << "250 mV" << "250 mV";
        QTest::newRow("plain fixed milli") << "V" << true << 6 << 2.0 << "2000 mV" << "2 V";
        QTest::newRow("plain pico floor") << "F" << true << 0 << 3e-15 << "0.003 pF" << "0.003 pF";
    }
    void format()
    {
        QFETCH(QString, suffix);
        QFETCH(bool, plain);
        QFETCH(int, mode);
        QFETCH(double, value);

        SuffixedDouble number(suffix, 1000, plain);
        number.SetSuffix(static_cast<SuffixedDouble::ESuffix>(mode));
        QTEST(number.GetString(value), "display");
        QTEST(number.GetShortestString(value), "shortest");
        // The held number is formatted through the sentinel, and formatting does not change it.
        number.SetValue(value);
        QTEST(number.GetString(SuffixedDouble::HeldValue), "display");
        QTEST(number.GetShortestString(SuffixedDouble::HeldValue), "shortest");
        QCOMPARE(number.GetSuffix(), static_cast<SuffixedDouble::ESuffix>(mode));
    }

    void parse_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<bool>("plain");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("modeAfter");

        // Refused text leaves the held 42 and the mode alone.
        QTest::newRow("100.5M") << "Hz" << false << 0 << "100.5M" << true << 100.5e6 << 0;
        QTest::newRow("comma, lower case") << "Hz" << false << 0 << "100,5 mhz" << true << 100.5e6 << 0;
        QTest::newRow("2 GHz") << "Hz" << false << 0 << "2 GHz" << true << 2e9 << 0;
        QTest::newRow("12k") << "Hz" << false << 0 << "12k" << true << 12e3 << 0;
        QTest::newRow("exponent and prefix") << "Hz" << false << 0 << "1.5e3 kHz" << true << 1.5e6 << 0;
        QTest::newRow("sign") << "Hz" << false << 0 << "-3 k" << true << -3e3 << 0;
        QTest::newRow("no leading digit") << "Hz" << false << 0 << ".5k" << true << 500.0 << 0;
        QTest::newRow("exact decimal shift") << "Hz" << false << 0 << "1.1k" << true << 1100.0 << 0;
        QTest::newRow("hz with other suffix") << "dBm" << false << 0 << "2 khz" << true << 2e3 << 0;
        QTest::newRow("bare in fixed kHz") << "Hz" << false << 2 << "12" << true << 12e3 << 2;
        QTest::newRow("typed prefix becomes fixed") << "Hz" << false << 2 << "3 MHz" << true << 3e6 << 3;
        QTest::newRow("typed unit becomes fixed") << "Hz" << false << 2 << "3 Hz" << true << 3.0 << 1;
        QTest::newRow("automatic stays") << "Hz" << false << 0 << "3 MHz" << true << 3e6 << 0;
        QTest::newRow("plain milli") << "" << true << 0 << "5m" << true << 0.005 << 0;
        QTest::newRow("plain mega") << "" << true << 0 << "5M" << true << 5e6 << 0;
        QTest::newRow("plain u") << "" << true << 0 << "3u" << true << 3e-6 << 0;
        QTest::newRow("plain mu") << "" << true << 0 << QString("3") + QChar(0x03BC) << true << 3e-6 << 0;
        QTest::newRow("metre, not milli") << "m" << true << 0 << "5 m" << true << 5.0 << 0;
        QTest::newRow("millimetre") << "m" << true << 0 << "5 mm" << true << 0.005 << 0;
        QTest::newRow("unit with e") << "eV" << true << 0 << "5eV" << true << 5.0 << 0;
        QTest::newRow("empty") << "Hz" << false << 0 << "" << false << 42.0 << 0;
        QTest::newRow("blanks") << "Hz" << false << 2 << "   " << false << 42.0 << 2;
        QTest::newRow("two points") << "Hz" << false << 0 << "1.2.3" << false << 42.0 << 0;
        QTest::newRow("unknown unit") << "Hz" << false << 0 << "12 x" << false << 42.0 << 0;
        QTest::newRow("dangling exponent") << "Hz" << false << 0 << "1e" << false << 42.0 << 0;
        QTest::newRow("two prefixes") << "Hz" << false << 2 << "5 kk" << false << 42.0 << 2;
        QTest::newRow("blank inside unit") << "Hz" << false << 0 << "5 k Hz" << false << 42.0 << 0;
        QTest::newRow("overflow") << "Hz" << false << 0 << "1e999" << false << 42.0 << 0;
        QTest::newRow("overflow by prefix") << "Hz" << false << 0 << "1e305 T" << false << 42.0 << 0;
        QTest::newRow("frequency has no micro") << "Hz" << false << 0 << "3u" << false << 42.0 << 0;
        QTest::newRow("frequency has no tera") << "Hz" << false << 0 << "3 THz" << false << 42.0 << 0;
        QTest::newRow("plain has no Hz") << "" << true << 0 << "3 Hz" << false << 42.0 << 0;
    }
    void parse()
    {
        QFETCH(QString, suffix);
        QFETCH(bool, plain);
        QFETCH(int, mode);
        QFETCH(QString, text);
        QFETCH(bool, accepted);
        QFETCH(double, value);

        SuffixedDouble number(suffix, 1000, plain);
        number.SetSuffix(static_cast<SuffixedDouble::ESuffix>(mode));
        number.SetValue(42.0);
        QCOMPARE(number.SetFrequencyString(text), accepted);
        QCOMPARE(number.GetValue(), value);
        QTEST(int(number.GetSuffix()), "modeAfter");
    }

    void factor()
    {
        SuffixedDouble bytes(QStringLiteral("B"), 1024, true);
        QCOMPARE(bytes.GetFactor(), 1024);
        QCOMPARE(bytes.GetString(2048), QStringLiteral("2 kB"));
        QCOMPARE(bytes.GetShortestString(1536.0 * 1024), QStringLiteral("1.5 MB"));
        QVERIFY(bytes.SetFrequencyString(QStringLiteral("1.5 MB")));
        QCOMPARE(bytes.GetValue(), 1.5 * 1024 * 1024);
        bytes.SetFactor(1); // no step between prefixes: refused
        QCOMPARE(bytes.GetFactor(), 1024);
        bytes.SetFactor(1000);
        QCOMPARE(bytes.GetString(2048), QStringLiteral("2.048 kB"));

        SuffixedDouble hertz;
        hertz.SetStringSuffix(QStringLiteral("rpm"));
        QCOMPARE(hertz.GetString(3000), QStringLiteral("3 krpm"));
    }

    void followsUnitValue()
    {
        values::ValueSelection* units = addUnits(QStringLiteral("/units"), {"Hz", "kHz", "MHz", "auto", "4", "bogus"});
        auto* text = new values::StringValue(QStringLiteral("3"));
        tree().Add(QStringLiteral("/unitText"), text);

        SuffixedDouble number;
        QVERIFY(!number.SetSuffix_ValuePath(QStringLiteral("/nowhere")));
        QVERIFY(number.SetSuffix_ValuePath(QStringLiteral("/units")));
        QCOMPARE(number.GetString(2e6), QStringLiteral("2000000 Hz"));
        units->SelectKey(1, nullptr);
        QCOMPARE(number.GetString(2e6), QStringLiteral("2000 kHz"));
        units->SelectKey(2, nullptr);
        QCOMPARE(number.GetSuffix(), SuffixedDouble::SuffixMega);
        units->SelectKey(4, nullptr); // an ESuffix number as name
        QCOMPARE(number.GetSuffix(), SuffixedDouble::SuffixGiga);
        units->SelectKey(5, nullptr); // unreadable: the prefix stays
        QCOMPARE(number.GetSuffix(), SuffixedDouble::SuffixGiga);
        units->SelectKey(3, nullptr);
        QCOMPARE(number.GetSuffix(), SuffixedDouble::SuffixAuto);

        // A new binding lets go of the former value.
        QVERIFY(number.SetSuffix_ValuePath(QStringLiteral("/unitText")));
        QCOMPARE(number.GetSuffix(), SuffixedDouble::SuffixMega);
        units->SelectKey(1, nullptr);
        QCOMPARE(number.GetSuffix(), SuffixedDouble::SuffixMega);
        text->SetValue(QStringLiteral("kHz"), nullptr);
        QCOMPARE(number.GetSuffix(), SuffixedDouble::SuffixKilo);

        // Removed from the tree: no longer followed, and nothing dangles.
        QVERIFY(tree().Remove(QStringLiteral("/unitText")));
        number.SetSuffix(SuffixedDouble::SuffixGiga);
        QCOMPARE(number.GetString(2e9), QStringLiteral("2 GHz"));
        QVERIFY(!number.SetSuffix_ValuePath(QString()));
        QCOMPARE(units->ObserverCount(), 0);
    }

    void defaultUnitPath()
    {
        values::ValueSelection* units = addUnits(SuffixedDouble::DefaultUnitPath(), {"kHz", "GHz"});
        {
            SuffixedDouble frequency;
            SuffixedDouble plain(QString(), 1000, true);
            QCOMPARE(frequency.GetSuffix(), SuffixedDouble::SuffixKilo);
            QCOMPARE(plain.GetSuffix(), SuffixedDouble::SuffixAuto);
            units->SelectKey(1, nullptr);
            QCOMPARE(frequency.GetSuffix(), SuffixedDouble::SuffixGiga);

            // An empty path lets go: the application's unit no longer reaches this one.
            QVERIFY(!frequency.SetSuffix_ValuePath(QString()));
            units->SelectKey(0, nullptr);
            QCOMPARE(frequency.GetSuffix(), SuffixedDouble::SuffixGiga);
            QCOMPARE(units->ObserverCount(), 0);

            SuffixedDouble following;
            QCOMPARE(units->ObserverCount(), 1);
        }
        QCOMPARE(units->ObserverCount(), 0);
    }
};

QTEST_MAIN(SuffixedDoubleTest)
#include "suffixeddoubletest.moc"
