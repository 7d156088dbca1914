#include <plinthor/timetoaxisstring.h>

#include <QtTest>

class TimeToAxisStringTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void texts_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("clock");
        QTest::addColumn<QString>("suffixed");
        const QString us = QString(QChar(0x00B5)) + QLatin1Char('s');
        QTest::newRow("zero") << 0.0 << "0" << "0 s";
        QTest::newRow("negative zero") << -0.0 << "0" << "0 s";
        QTest::newRow("milliseconds") << 0.25 << "0.25" << "250 ms";
        QTest::newRow("microseconds") << 1.5e-6 << "1.5e-06" << "1.5 " + us;
        QTest::newRow("nanoseconds") << 12e-9 << "1.2e-08" << "12 ns";
        QTest::newRow("below a picosecond") << 3e-13 << "3e-13" << "0.3 ps";
        QTest::newRow("six digits") << 0.1234567 << "0.123457" << "123.457 ms";
        QTest::newRow("rounds up to a second") << 0.9999996 << "1" << "1 s";
        QTest::newRow("millisecond resolution") << 1.23456 << "1.235" << "1.235 s";
        QTest::newRow("rounds up to a minute") << 59.9996 << "1:00" << "1 min";
        QTest::newRow("fraction") << 90.5 << "1:30.5" << "1 min 30.5 s";
        QTest::newRow("hours and minutes") << 7500.0 << "2:05:00" << "2 h 5 min";
        QTest::newRow("gap in the parts") << 3601.0 << "1:00:01" << "1 h 1 s";
        QTest::newRow("over a day") << 93600.25 << "26:00:00.25" << "1 d 2 h 0.25 s";
        QTest::newRow("negative") << -90.0 << "-1:30" << "-1 min 30 s";
        QTest::newRow("negative small") << -0.002 << "-0.002" << "-2 ms";
        QTest::newRow("just below huge") << 9.99e14 << "277500000000:00:00" << "11562500000 d";
        QTest::newRow("huge") << 1e15 << "1e+15" << "1e+15 s";
        QTest::newRow("nan") << qQNaN() << "nan" << "nan";
        QTest::newRow("minus infinity") << -qInf() << "-inf" << "-inf";
    }
    void texts()
    {
        QFETCH(double, seconds);
        TimeToAxisString formatter;
        IStringFormatter& asInterface = formatter;
        QTEST(asInterface.convert(seconds), "clock");
        QTEST(asInterface.convertSuffixed(seconds), "suffixed");
    }

    // Callers keep the reference: it is one text of the formatter's, holding the latest result.
    void referenceFollowsLatestCall()
    {
        TimeToAxisString formatter;
        const QString& first = formatter.convertSuffixed(1.0);
        QCOMPARE(&formatter.convert(90.0), &first);
        QCOMPARE(first, QStringLiteral("1:30"));
    }
};

QTEST_MAIN(TimeToAxisStringTest)
#include "timetoaxisstringtest.moc"
