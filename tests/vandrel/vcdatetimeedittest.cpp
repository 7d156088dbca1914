// Runs in the zone of Berlin, so that local time is off UTC and has daylight saving: 1980 is the first
// year with a change there (April 6 and September 28).
#include <vandrel/vandrel.h>

#include <QDateTimeEdit>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QtTest>

#include <algorithm>
#include <ctime>
#include <memory>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

const QString kPath = QStringLiteral("/stamp");
constexpr long long kSecond = 1000000;
constexpr long long kDay = 86400 * kSecond;

long long span(long long days, int h, int m, int s)
{
    return days * kDay + ((h * 60LL + m) * 60 + s) * kSecond;
}

// Every stamp written to a value, in order.
struct Writes : IObserver
{
    explicit Writes(values::Int64Value* value)
        : m_value(value)
    {
        m_value->Attach(this);
    }
    ~Writes() override
    {
        if (m_value)
            m_value->Detach(this);
    }
    void Update(Observable*, TChangeCode code) override
    {
        if (code == ValueChanged)
            stamps << m_value->GetValue();
        else if (code == ValueDestroyed)
            m_value = nullptr;
    }
    QList<long long> stamps;
    values::Int64Value* m_value;
};

// A stamp value that keeps at most its cap, as a value with a limit of its own would.
class CappedStamp : public values::Int64Value
{
public:
    CappedStamp(long long value, long long cap)
        : values::Int64Value(value)
        , m_nCap(cap)
    {
    }
    bool SetValue(long long value, IObserver* originator) override
    {
        return values::Int64Value::SetValue(std::min(value, m_nCap), originator);
    }

private:
    long long m_nCap;
};

struct Subject
{
    Subject(long long stamp, bool differential, values::Int64Value* value = nullptr)
        : value(value ? value : new values::Int64Value(stamp))
    {
        tree().Add(kPath, this->value);
        writes = std::make_unique<Writes>(this->value);
        window.resize(400, 60);
        edit = new VCDateTimeEdit(&window, "when");
        edit->SetDifferential(differential);
        bound = edit->SetDateTime_ValuePath(kPath);
        window.show();
    }
    QString time() const { return edit->GetTimeEdit()->text(); }
    int days() const { return edit->GetDaysEdit()->value(); }
    void focusSection(QDateTimeEdit::Section section)
    {
        edit->GetTimeEdit()->setFocus();
        edit->GetTimeEdit()->setSelectedSection(section); // typing replaces it
    }

    values::Int64Value* value;
    std::unique_ptr<Writes> writes;
    QWidget window;
    VCDateTimeEdit* edit = nullptr;
    bool bound = false;
};

void typeInto(QAbstractSpinBox* box, const QString& text)
{
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, text);
}

} // namespace

class VCDateTimeEditTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("TZ", "Europe/Berlin");
        tzset();
        const QDateTime summer(QDate(2020, 7, 1), QTime(12, 0), Qt::LocalTime);
        QVERIFY2(summer.offsetFromUtc() == 7200, "the time zone data of Berlin is not installed");
    }
    void cleanup() { tree().Clear(); }

    // The edit has no limits and the toolkit's format until a mode is chosen; the mode brings its
    // format, time zone, limits and the days.
    void modes()
    {
        QWidget window;
        VCDateTimeEdit edit(&window, "when");
        const QDateTimeEdit fresh;
        QCOMPARE(edit.GetTimeEdit()->objectName(), QStringLiteral("when_DateTime"));
        QCOMPARE(edit.GetDaysEdit()->objectName(), QStringLiteral("when_Days"));
        auto* label = edit.findChild<QLabel*>(QStringLiteral("VCDateTimeEditDaysLabel"));
        QVERIFY(label);
        QVERIFY(!edit.isEnabled());
        QCOMPARE(edit.GetTimeEdit()->minimumDate(), fresh.minimumDate());
        QCOMPARE(edit.GetTimeEdit()->maximumDate(), fresh.maximumDate());
        QCOMPARE(edit.GetTimeEdit()->displayFormat(), fresh.displayFormat());
        window.show();
        QVERIFY(!edit.GetDaysEdit()->isVisible() && !label->isVisible());

        edit.SetDifferential(true);
        QVERIFY(edit.GetDaysEdit()->isVisible() && label->isVisible());
        QCOMPARE(edit.GetTimeEdit()->displayFormat(), QStringLiteral("hh:mm:ss"));
        QCOMPARE(edit.GetTimeEdit()->timeSpec(), Qt::UTC);
        edit.SetDaysVisible(false);
        QVERIFY(!edit.GetDaysEdit()->isVisible() && edit.GetDifferential());

        edit.SetDifferential(false);
        QVERIFY(!edit.GetDaysEdit()->isVisible() && !label->isVisible());
        QCOMPARE(edit.GetTimeEdit()->displayFormat(), QStringLiteral("yyyy:MM:dd hh:mm:ss"));
        QCOMPARE(edit.GetTimeEdit()->timeSpec(), Qt::LocalTime);
        QCOMPARE(edit.GetTimeEdit()->minimumDateTime(), QDateTime(QDate(1970, 1, 1), QTime(0, 0), Qt::LocalTime));
        QCOMPARE(edit.GetTimeEdit()->maximumDateTime(), QDateTime(QDate(4000, 12, 31), QTime(23, 59, 59), Qt::LocalTime));

        edit.setReadOnly(true);
        QVERIFY(edit.GetTimeEdit()->isReadOnly() && edit.GetDaysEdit()->isReadOnly());
    }

    // What a span shows, and what the control writes back when the day count does not fit the box.
    void differentialDisplay_data()
    {
        QTest::addColumn<long long>("stamp");
        QTest::addColumn<int>("days");
        QTest::addColumn<QString>("time");
        QTest::addColumn<long long>("held"); // afterwards

        QTest::newRow("zero") << 0LL << 0 << "00:00:00" << 0LL;
        QTest::newRow("1 day 01:01:01") << 90061000000LL << 1 << "01:01:01" << 90061000000LL;
        QTest::newRow("fraction dropped") << 1500000LL << 0 << "00:00:01" << 1500000LL;
        QTest::newRow("across the March change") << span(3748, 1, 30, 0) << 3748 << "01:30:00" << span(3748, 1, 30, 0);
        QTest::newRow("across the September change") << span(3923, 2, 30, 0) << 3923 << "02:30:00" << span(3923, 2, 30, 0);
        QTest::newRow("many years") << span(19999, 23, 59, 59) << 19999 << "23:59:59" << span(19999, 23, 59, 59);
        QTest::newRow("2^32 s wraps") << (4294967296LL + 5) * kSecond << 0 << "00:00:05" << (4294967296LL + 5) * kSecond;
        QTest::newRow("beyond the box, cut to 20000 days") << span(30000, 1, 2, 3) << 20000 << "01:02:03" << span(20000, 1, 2, 3);
        // -1 s is 2^32 - 1 s: 2106-02-07 06:28:15, 49710 days, cut to 20000.
        QTest::newRow("negative wraps far ahead") << -kSecond << 20000 << "06:28:15" << span(20000, 6, 28, 15);
    }

    void differentialDisplay()
    {
        QFETCH(long long, stamp);
        QFETCH(int, days);
        QFETCH(QString, time);
        QFETCH(long long, held);
        Subject s(stamp, true);
        QVERIFY(s.bound);
        QCOMPARE(s.days(), days);
        QCOMPARE(s.time(), time);
        QCOMPARE(s.value->GetValue(), held);
        // A change of the box writes the span back in whole seconds; the edit's own display does not.
        QCOMPARE(s.writes->stamps, days ? QList<long long>{held} : QList<long long>{});
        s.value->SetValue(span(2, 3, 4, 5) + 700000, nullptr);
        QCOMPARE(s.days(), 2);
        QCOMPARE(s.time(), QStringLiteral("03:04:05"));
        QCOMPARE(s.value->GetValue(), span(2, 3, 4, 5) + (days == 2 ? 700000 : 0));
        QCOMPARE(s.writes->stamps.size(), (days ? 2 : 1) + (days == 2 ? 0 : 1));
    }

    void absoluteDisplay_data()
    {
        QTest::addColumn<long long>("stamp");
        QTest::addColumn<QString>("text");
        QTest::newRow("epoch") << 0LL << "1970:01:01 01:00:00";
        QTest::newRow("winter") << 1579089600 * kSecond << "2020:01:15 13:00:00";
        QTest::newRow("summer") << 1593604800 * kSecond << "2020:07:01 14:00:00";
        QTest::newRow("fraction dropped") << 1593604800 * kSecond + 999999 << "2020:07:01 14:00:00";
        QTest::newRow("2^32 s wraps") << (4294967296LL + 1593604800) * kSecond << "2020:07:01 14:00:00";
        QTest::newRow("negative wraps far ahead") << -kSecond << "2106:02:07 07:28:15";
    }

    void absoluteDisplay()
    {
        QFETCH(long long, stamp);
        QFETCH(QString, text);
        Subject s(stamp, false);
        QCOMPARE(s.time(), text);
        QCOMPARE(s.edit->text(), text);
        QVERIFY(s.writes->stamps.isEmpty());
        QCOMPARE(s.value->GetValue(), stamp);
    }

    // Typed and stepped input in differential mode: every write is in whole seconds, and a span keeps
    // its length across daylight-saving changes, since it is counted in UTC.
    void differentialInput_data()
    {
        QTest::addColumn<long long>("days");
        QTest::newRow("first day") << 0LL;
        QTest::newRow("day before the March change") << 3747LL;
        QTest::newRow("day of the September change") << 3923LL;
        QTest::newRow("many years") << 15000LL;
    }

    void differentialInput()
    {
        QFETCH(long long, days);
        Subject s(span(days, 1, 1, 1) + 500000, true);
        QApplication::setActiveWindow(&s.window);
        QVERIFY(QTest::qWaitForWindowActive(&s.window));

        s.focusSection(QDateTimeEdit::HourSection);
        QTest::keyClick(s.edit->GetTimeEdit(), Qt::Key_Up);
        QCOMPARE(s.value->GetValue(), span(days, 2, 1, 1));
        s.edit->GetDaysEdit()->setFocus();
        QTest::keyClick(s.edit->GetDaysEdit(), Qt::Key_Up);
        QCOMPARE(s.value->GetValue(), span(days + 1, 2, 1, 1));

        s.focusSection(QDateTimeEdit::MinuteSection);
        QTest::keyClicks(s.edit->GetTimeEdit(), QStringLiteral("4256"));
        QCOMPARE(s.time(), QStringLiteral("02:42:56"));
        QCOMPARE(s.value->GetValue(), span(days + 1, 2, 42, 56));
        typeInto(s.edit->GetDaysEdit(), QString::number(days + 7));
        QCOMPARE(s.value->GetValue(), span(days + 7, 2, 42, 56));
        for (long long stamp : s.writes->stamps)
            QCOMPARE(stamp % kSecond, 0LL);
    }

    // The time edit adds the days the box shows, also in a language whose digits are not 0 to 9.
    void daysInOtherDigits_data()
    {
        QTest::addColumn<QString>("locale");
        for (const char* name : {"C", "de_DE", "ar_EG", "fa_IR", "bn_BD"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void daysInOtherDigits()
    {
        QFETCH(QString, locale);
        Subject s(span(1234, 1, 1, 1), true);
        s.edit->GetDaysEdit()->setLocale(QLocale(locale));
        s.edit->GetTimeEdit()->setLocale(QLocale(locale));
        s.value->SetValue(span(4321, 1, 1, 1), nullptr);
        QCOMPARE(s.days(), 4321);
        QApplication::setActiveWindow(&s.window);
        QVERIFY(QTest::qWaitForWindowActive(&s.window));
        s.focusSection(QDateTimeEdit::HourSection);
        QTest::keyClick(s.edit->GetTimeEdit(), Qt::Key_Up);
        QCOMPARE(s.value->GetValue(), span(4321, 2, 1, 1));
    }

    // A negative day count lies before the epoch: 0 is written and the box keeps its number. A day
    // count typed afterwards takes its time of day from the value, not from the edit.
    void negativeDays()
    {
        Subject s(90061000000LL, true);
        QApplication::setActiveWindow(&s.window);
        QVERIFY(QTest::qWaitForWindowActive(&s.window));
        typeInto(s.edit->GetDaysEdit(), QStringLiteral("-3"));
        QCOMPARE(s.value->GetValue(), 0LL);
        QCOMPARE(s.days(), -3);
        QCOMPARE(s.time(), QStringLiteral("01:01:01"));
        typeInto(s.edit->GetDaysEdit(), QStringLiteral("5"));
        QCOMPARE(s.value->GetValue(), span(5, 0, 0, 0));
        // The edit's time, typed now, is added to the days the box shows.
        s.focusSection(QDateTimeEdit::SecondSection);
        QTest::keyClick(s.edit->GetTimeEdit(), Qt::Key_Up);
        QCOMPARE(s.value->GetValue(), span(5, 1, 1, 2));
    }

    void absoluteInput()
    {
        Subject s(1593604800 * kSecond, false); // 2020-07-01 14:00:00 in Berlin
        QApplication::setActiveWindow(&s.window);
        QVERIFY(QTest::qWaitForWindowActive(&s.window));
        s.focusSection(QDateTimeEdit::MonthSection);
        QTest::keyClick(s.edit->GetTimeEdit(), Qt::Key_Up); // to 2020-08-01 14:00 CEST
        QCOMPARE(s.value->GetValue(), (1593604800LL + 31 * 86400) * kSecond);
        QTest::keyClicks(s.edit->GetTimeEdit(), QStringLiteral("12")); // December: winter time
        QCOMPARE(s.time(), QStringLiteral("2020:12:01 14:00:00"));
        QCOMPARE(s.value->GetValue(), QDateTime(QDate(2020, 12, 1), QTime(13, 0), Qt::UTC).toSecsSinceEpoch() * kSecond);
        // The edit stops at its lower limit, the epoch in local time, whose first day counts from local
        // midnight: 02:00 there is 7200 s.
        s.edit->setDateTime(QDateTime(QDate(1969, 6, 1), QTime(2, 0), Qt::LocalTime));
        QCOMPARE(s.time(), QStringLiteral("1970:01:01 00:00:00"));
        QCOMPARE(s.value->GetValue(), 0LL);
        s.focusSection(QDateTimeEdit::HourSection);
        QTest::keyClick(s.edit->GetTimeEdit(), Qt::Key_Up);
        QTest::keyClick(s.edit->GetTimeEdit(), Qt::Key_Up);
        QCOMPARE(s.value->GetValue(), 7200 * kSecond);
        for (long long stamp : s.writes->stamps)
            QCOMPARE(stamp % kSecond, 0LL);
    }

    // A mode switch writes the moment the edit holds, then shows the value in the new mode.
    void modeSwitch()
    {
        Subject s(span(1, 1, 1, 1) + 1500000, true);
        QCOMPARE(s.days(), 1);
        // Bound, the box changed to 1 day and wrote the span back in whole seconds.
        QCOMPARE(s.writes->stamps, QList<long long>{span(1, 1, 1, 2)});
        s.writes->stamps.clear();
        s.edit->SetDifferential(false);
        // The edit held 01:01:02.5 UTC on day zero, 02:01:02 in Berlin: its first day counts from local
        // midnight, so 7262 s are written and shown from the epoch, an hour later again.
        QCOMPARE(s.writes->stamps, QList<long long>{7262 * kSecond});
        QCOMPARE(s.time(), QStringLiteral("1970:01:01 03:01:02"));
        s.edit->SetDifferential(true);
        // Back in UTC the edit holds 02:01:02 on day zero, and the box still says 1 day.
        QCOMPARE(s.writes->stamps.size(), 2);
        QCOMPARE(s.writes->stamps.last(), span(1, 2, 1, 2));
        QCOMPARE(s.days(), 1);
        QCOMPARE(s.time(), QStringLiteral("02:01:02"));
    }

    // A value that keeps less than it was given is shown again; a number is written without looking.
    void refusedWrite()
    {
        Subject s(0, true, new CappedStamp(span(1, 0, 0, 0), span(2, 5, 0, 0)));
        QApplication::setActiveWindow(&s.window);
        QVERIFY(QTest::qWaitForWindowActive(&s.window));
        s.edit->GetDaysEdit()->setFocus();
        QTest::keyClick(s.edit->GetDaysEdit(), Qt::Key_Up);
        QCOMPARE(s.value->GetValue(), span(2, 0, 0, 0));
        QTest::keyClick(s.edit->GetDaysEdit(), Qt::Key_Up);
        QCOMPARE(s.value->GetValue(), span(2, 5, 0, 0));
        QCOMPARE(s.days(), 2);
        QCOMPARE(s.time(), QStringLiteral("05:00:00"));

        auto* number = new values::DoubleNumeric(90061e6, 0, 1e11, 0);
        tree().Add(QStringLiteral("/n"), number);
        QVERIFY(s.edit->SetDateTime_ValuePath(QStringLiteral("/n")));
        QCOMPARE(s.days(), 1);
        QTest::keyClick(s.edit->GetDaysEdit(), Qt::Key_Up);
        QCOMPARE(number->GetValue(), 1e11);
        QCOMPARE(s.days(), 2);
    }

    void valueGoesUnderIt()
    {
        Subject s(span(3, 4, 5, 6), true);
        QVERIFY(s.edit->isEnabled());
        s.value->SetState(Disabled);
        QVERIFY(!s.edit->isEnabled());
        s.value->SetState(Enabled);
        QVERIFY(s.edit->isEnabled());
        s.writes.reset();
        QVERIFY(tree().Remove(kPath));
        QVERIFY(s.edit->isEnabled());
        QCOMPARE(s.days(), 3);
        s.edit->GetDaysEdit()->setValue(9); // writes to nothing
        s.edit->setTime(QTime(1, 2, 3));
        s.edit->SetDifferential(false);
        s.edit->SetDifferential(true);

        tree().Add(kPath, new values::Int64Value(span(7, 8, 9, 10)));
        QVERIFY(s.edit->SetDateTime_ValuePath(kPath));
        QCOMPARE(s.days(), 7);
        QCOMPARE(s.time(), QStringLiteral("08:09:10"));
        QVERIFY(!s.edit->SetDateTime_ValuePath(QStringLiteral("/none")));
        dynamic_cast<values::Int64Value*>(tree().Find(kPath))->SetValue(0, nullptr);
        QCOMPARE(s.days(), 7);
    }
};

QTEST_MAIN(VCDateTimeEditTest)
#include "vcdatetimeedittest.moc"
