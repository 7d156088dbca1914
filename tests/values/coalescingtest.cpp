#include <values/values.h>
#include <vandrel/vcslider.h>

#include <QtTest>

#include <functional>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

// Records each notification with the number the value held when the observer read it.
class Watcher : public IObserver
{
public:
    explicit Watcher(values::IntNumeric* value = nullptr)
        : m_pValue(value)
    {
        if (value)
            value->Attach(this);
    }
    ~Watcher() override
    {
        if (m_pValue)
            m_pValue->Detach(this);
    }
    void Update(Observable*, TChangeCode code) override
    {
        if (code == ValueDestroyed) {
            m_pValue = nullptr;
        } else if (code == ValueChanged) {
            ++changes;
            seen.append(m_pValue->GetTypedValue());
        }
        codes.append(code);
        if (onUpdate)
            onUpdate(code);
    }
    values::IntNumeric* m_pValue;
    int changes = 0;
    QVector<int> seen;
    QVector<int> codes;
    std::function<void(TChangeCode)> onUpdate;
};

values::IntNumeric* addNumber(const QString& path, int start = 0)
{
    auto* value = new values::IntNumeric(start, 0, 1000000, 1);
    tree().Add(path, value);
    return value;
}

using Change = std::function<void(values::IntNumeric*)>;

} // namespace

Q_DECLARE_METATYPE(Change)

class CoalescingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        tree().SetUpdateInterval(0);
        tree().Clear();
    }

    void intervalSetting()
    {
        QCOMPARE(tree().UpdateInterval(), 0);
        tree().SetUpdateInterval(-5);
        QCOMPARE(tree().UpdateInterval(), 0);
        tree().SetUpdateInterval(20);
        QCOMPARE(tree().UpdateInterval(), 20);

        // Off, every write is its own notification, as before.
        tree().SetUpdateInterval(0);
        values::IntNumeric* value = addNumber(QStringLiteral("/n"));
        Watcher watcher(value);
        for (int i = 1; i <= 50; ++i)
            value->SetValue(i, nullptr);
        QCOMPARE(watcher.changes, 50);
    }

    // A burst reaches the observer at once (its first write) and once more with the newest number;
    // a slow value after it is not delayed.
    void lastValueArrives()
    {
        tree().SetUpdateInterval(20);
        values::IntNumeric* value = addNumber(QStringLiteral("/n"));
        Watcher watcher(value);
        for (int i = 1; i <= 1000; ++i)
            value->SetValue(i, nullptr);
        QCOMPARE(watcher.seen, QVector<int>{1});
        QTRY_COMPARE(watcher.seen.value(watcher.seen.size() - 1), 1000);
        QCOMPARE(watcher.changes, 2);

        QTest::qWait(60); // the window closes with nothing waiting
        QCOMPARE(watcher.changes, 2);
        value->SetValue(2000, nullptr);
        QCOMPARE(watcher.seen.last(), 2000);
    }

    // Writes spread over time: the count of deliveries follows the interval, not the writes.
    void deliveriesFollowTheInterval()
    {
        const int interval = 20;
        tree().SetUpdateInterval(interval);
        values::IntNumeric* value = addNumber(QStringLiteral("/n"));
        Watcher watcher(value);
        QElapsedTimer clock;
        clock.start();
        int written = 0;
        while (clock.elapsed() < 200) {
            value->SetValue(++written, nullptr);
            QCoreApplication::processEvents();
        }
        const qint64 elapsed = clock.elapsed();
        QTRY_COMPARE(watcher.seen.last(), written);
        QVERIFY2(watcher.changes <= elapsed / interval + 3,
                 qPrintable(QStringLiteral("%1 deliveries in %2 ms").arg(watcher.changes).arg(elapsed)));
        QVERIFY(watcher.changes >= 2);
        // Never an older number after a newer one.
        QVERIFY(std::is_sorted(watcher.seen.begin(), watcher.seen.end()));
    }

    void otherNotificationsAreImmediateAndOrdered_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<Change>("change");
        QTest::newRow("range") << int(RangeChanged)
                               << Change(
                                      [](values::IntNumeric* v) { v->SetRange(0, 500, 1); });
        QTest::newRow("state") << int(StateChanged)
                               << Change(
                                      [](values::IntNumeric* v) { v->SetState(Disabled); });
        QTest::newRow("pending") << int(PendingValueChanged)
                                 << Change(
                                        [](values::IntNumeric* v) { v->SetPendingValue(7, nullptr); });
    }

    void otherNotificationsAreImmediateAndOrdered()
    {
        QFETCH(int, code);
        QFETCH(Change, change);
        tree().SetUpdateInterval(10000); // only the other notification can bring the merged one out
        values::IntNumeric* value = addNumber(QStringLiteral("/n"));
        Watcher watcher(value);
        value->SetValue(1, nullptr);
        value->SetValue(2, nullptr);
        value->SetValue(3, nullptr);
        change(value);
        QCOMPARE(watcher.codes, (QVector<int>{ValueChanged, ValueChanged, code}));
        QCOMPARE(watcher.seen, (QVector<int>{1, 3}));
        // Nothing is left waiting: the next change goes out alone.
        value->SetRange(0, 400, 1);
        QCOMPARE(watcher.codes.mid(3), (QVector<int>{RangeChanged}));
    }

    void originatorRule_data()
    {
        QTest::addColumn<QString>("writers");
        QTest::addColumn<int>("aHears");
        QTest::addColumn<int>("bHears");
        // The first write goes out at once and skips its originator; the rest are merged.
        QTest::newRow("a alone") << "aaa" << 0 << 2;
        QTest::newRow("a then b") << "aab" << 1 << 2;
        QTest::newRow("b then a") << "bba" << 2 << 1;
        QTest::newRow("nobody then a") << "-aa" << 1 << 2;
        QTest::newRow("a then nobody") << "a-a" << 1 << 2;
    }

    void originatorRule()
    {
        QFETCH(QString, writers);
        tree().SetUpdateInterval(10000);
        values::IntNumeric* value = addNumber(QStringLiteral("/n"));
        Watcher a(value), b(value);
        int number = 0;
        for (QChar w : writers)
            value->SetValue(++number, w == QLatin1Char('a') ? &a : w == QLatin1Char('b') ? &b : nullptr);
        const int aBefore = a.changes, bBefore = b.changes;
        tree().SetUpdateInterval(0); // turning it off delivers what waits
        QTEST(a.changes, "aHears");
        QTEST(b.changes, "bHears");
        // Whoever hears the merged change reads the newest number.
        if (a.changes > aBefore)
            QCOMPARE(a.seen.last(), number);
        if (b.changes > bBefore)
            QCOMPARE(b.seen.last(), number);
    }

    void shorterIntervalDeliversAtOnce()
    {
        tree().SetUpdateInterval(10000);
        values::IntNumeric* value = addNumber(QStringLiteral("/n"));
        Watcher watcher(value);
        value->SetValue(1, nullptr);
        value->SetValue(2, nullptr);
        tree().SetUpdateInterval(15000); // longer: keeps waiting
        QCOMPARE(watcher.changes, 1);
        tree().SetUpdateInterval(10);
        QCOMPARE(watcher.seen, (QVector<int>{1, 2}));
        // The new interval applies: the next write goes out at once.
        value->SetValue(3, nullptr);
        QCOMPARE(watcher.seen.last(), 3);
    }

    void transactionIsOneWrite()
    {
        tree().SetUpdateInterval(10000);
        values::IntNumeric* value = addNumber(QStringLiteral("/n"));
        Watcher watcher(value);
        {
            values::ValueTransaction t = value->CreateTransaction(ValueChanged, nullptr);
            value->SetValue(1, nullptr);
            value->SetValue(2, nullptr);
        }
        QCOMPARE(watcher.seen, QVector<int>{2});
        {
            values::ValueTransaction t = value->CreateTransaction(ValueChanged, nullptr);
            value->SetValue(3, nullptr);
        }
        QCOMPARE(watcher.changes, 1);
        tree().SetUpdateInterval(0);
        QCOMPARE(watcher.seen, (QVector<int>{2, 3}));
    }

    // A value leaving while its change waits drops it: after ValueDestroyed nothing, and nothing
    // touches the freed value when its window would have ended (run under ASan).
    void goneWhileWaiting_data()
    {
        QTest::addColumn<int>("how");
        QTest::newRow("Remove") << 0;
        QTest::newRow("Clear") << 1;
        QTest::newRow("removed by an observer of another value") << 2;
        QTest::newRow("removed by its own merged delivery") << 3;
    }

    void goneWhileWaiting()
    {
        QFETCH(int, how);
        tree().SetUpdateInterval(20);
        values::IntNumeric* value = addNumber(QStringLiteral("/n"));
        values::IntNumeric* other = addNumber(QStringLiteral("/other"));
        Watcher watcher(value);
        Watcher otherWatcher(other);
        value->SetValue(1, nullptr);
        value->SetValue(2, nullptr);
        other->SetValue(1, nullptr);
        other->SetValue(2, nullptr);
        if (how == 0) {
            tree().Remove(QStringLiteral("/n"));
        } else if (how == 1) {
            tree().Clear();
        } else if (how == 2) {
            // Both deliveries are due in the same pass; /other comes second and must not be reached
            // through a freed entry.
            otherWatcher.onUpdate = [](TChangeCode) { tree().Remove(QStringLiteral("/n")); };
            watcher.onUpdate = [](TChangeCode code) {
                if (code == ValueChanged)
                    tree().Remove(QStringLiteral("/other"));
            };
        } else {
            watcher.onUpdate = [value](TChangeCode code) {
                if (code == ValueChanged) {
                    value->SetValue(99, nullptr); // waits in the window the delivery opened
                    tree().Remove(QStringLiteral("/n"));
                }
            };
        }
        QTRY_VERIFY(!watcher.m_pValue);
        QTest::qWait(60);
        QCOMPARE(watcher.codes.last(), int(ValueDestroyed));
        if (how < 2)
            QCOMPARE(watcher.codes, (QVector<int>{ValueChanged, StateChanged, ValueDestroyed}));
        else if (how == 3)
            QCOMPARE(watcher.codes, (QVector<int>{ValueChanged, ValueChanged, StateChanged, ValueDestroyed}));
    }

    void detachedWhileWaitingHearsNothing()
    {
        tree().SetUpdateInterval(20);
        values::IntNumeric* value = addNumber(QStringLiteral("/n"));
        Watcher stays(value);
        Watcher leaves(value);
        value->SetValue(1, nullptr);
        value->SetValue(2, nullptr);
        value->Detach(&leaves);
        QTRY_COMPARE(stays.changes, 2);
        QCOMPARE(leaves.changes, 1);
    }

    // The user drags a slider while another writer feeds the number fast: what the slider shows never
    // goes back, and in the end both value and slider hold the user's position.
    void userEditIsNotOverwritten()
    {
        tree().SetUpdateInterval(20);
        values::IntNumeric* value = addNumber(QStringLiteral("/n"));
        value->SetRange(0, 1000, 1);
        VCSlider slider(nullptr, "s");
        QVERIFY(slider.SetNumeric_ValuePath(QStringLiteral("/n")));
        slider.show();
        QVERIFY(QTest::qWaitForWindowExposed(&slider));
        QVector<int> shown;
        connect(&slider, &QSlider::valueChanged, this, [&shown](int v) { shown.append(v); });

        int written = 0;
        bool userDone = false;
        QTimer writer;
        writer.setInterval(1);
        connect(&writer, &QTimer::timeout, this, [&] {
            if (!userDone && written < 500)
                value->SetValue(++written, nullptr);
        });
        writer.start();
        QTRY_VERIFY(written >= 30);
        // A change from the writer waits in its window when the user acts.
        value->SetValue(++written, nullptr);
        QTest::keyClick(&slider, Qt::Key_End);
        userDone = true;
        const int shownAtEdit = int(shown.size());
        QCOMPARE(slider.value(), 1000);
        QCOMPARE(value->GetTypedValue(), 1000);

        QTest::qWait(80); // past the window, the merged change has gone out
        writer.stop();
        QCOMPARE(value->GetTypedValue(), 1000);
        QCOMPARE(slider.value(), 1000);
        QVERIFY2(shown.size() > 2, "the slider followed the writer");
        QVERIFY2(std::is_sorted(shown.begin(), shown.begin() + shownAtEdit), "the slider went back");
        for (int i = shownAtEdit; i < shown.size(); ++i)
            QCOMPARE(shown.at(i), 1000);
    }
};

QTEST_MAIN(CoalescingTest)
#include "coalescingtest.moc"
