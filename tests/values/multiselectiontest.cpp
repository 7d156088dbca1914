#include <values/values.h>

#include <QtTest>

#include "observercounter.h"

namespace {

QList<int> kinds(const values::MultiSelectionChangeLog& log)
{
    QList<int> out;
    for (int i = 0; i < log.GetCount(); ++i)
        out << log.GetAt(i).kind;
    return out;
}
} // namespace

class MultiSelectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void modesAndCheckMarks()
    {
        values::StringMultiSelection multi(0);
        Counter c;
        c.watch(&multi);
        QVERIFY(multi.AddItem(30, QStringLiteral("thirty")));
        QVERIFY(multi.AddItem(10, QStringLiteral("ten"), true));
        QVERIFY(multi.AddItem(20, QStringLiteral("twenty"), false, false));
        QVERIFY(!multi.AddItem(20, QStringLiteral("again"))); // taken key
        QCOMPARE(multi.GetKeyCount(), 3);
        std::vector<unsigned> keys;
        multi.GetKeys(keys);
        QCOMPARE(keys, (std::vector<unsigned>{30, 10, 20})); // the framework's order; callers sort
        QVERIFY(multi.IsItemChecked(10));
        QVERIFY(!multi.IsItemEnabled(20));
        QVERIFY(!multi.GetItemByKey(99));
        QCOMPARE(multi.GetItemByKey(30)->GetName(), QStringLiteral("thirty"));

        c.codes.clear();
        QVERIFY(multi.SetItemChecked(30, true, nullptr));
        QVERIFY(multi.IsItemChecked(10)); // mode 0: any number
        QVERIFY(multi.SetItemChecked(30, true, nullptr)); // no change: silent
        QVERIFY(!multi.SetItemChecked(99, true, nullptr));
        QCOMPARE(c.codes, QList<TChangeCode>{ValueChanged});
        QCOMPARE(multi.GetValueString(), QStringLiteral("ten, thirty"));

        multi.UncheckAll(nullptr);
        QVERIFY(!multi.IsItemChecked(10) && !multi.IsItemChecked(30));
        QCOMPARE(c.codes.count(ValueChanged), 2);
        multi.UncheckAll(nullptr); // nothing checked: silent
        QCOMPARE(c.codes.count(ValueChanged), 2);

        values::StringMultiSelection single(1);
        QCOMPARE(single.GetSelectionMode(), 1);
        single.AddItem(1, QStringLiteral("a"), true);
        single.AddItem(2, QStringLiteral("b"));
        QVERIFY(single.SetItemChecked(2, true, nullptr));
        QVERIFY(!single.IsItemChecked(1)); // single choice
        QVERIFY(!single.SetCheckedKeys({1, 2}, nullptr));
        QVERIFY(single.IsItemChecked(2));
    }

    void noneAndSeveralEntries()
    {
        values::StringMultiSelection multi(0);
        QVERIFY(!multi.HasNoneEntry());
        multi.SetNoneEntry(true, QStringLiteral("none"));
        multi.SetSeveralEntryText(QStringLiteral("several"));
        QVERIFY(multi.HasNoneEntry());
        QCOMPARE(multi.GetNoneEntryText(), QStringLiteral("none"));
        QCOMPARE(multi.GetSeveralEntryText(), QStringLiteral("several"));
        multi.AddItem(1, QStringLiteral("a"));
        multi.AddItem(2, QStringLiteral("b"));
        QCOMPARE(multi.GetValueString(), QStringLiteral("none"));
        QVERIFY(multi.SetValueFromText(QStringLiteral("b, a"), nullptr));
        QCOMPARE(multi.GetCheckedKeys(), (std::vector<unsigned>{1, 2}));
        QVERIFY(multi.SetValueFromText(QStringLiteral("none"), nullptr));
        QVERIFY(multi.GetCheckedKeys().empty());
        QVERIFY(!multi.SetValueFromText(QStringLiteral("a, zz"), nullptr));
    }

    void changeLogKinds()
    {
        values::StringMultiSelection multi(0);
        const auto* log = multi.GetChangeLog();
        QCOMPARE(log->GetCount(), 0);
        QCOMPARE(log->GetNextSequence(), quint64(0));
        multi.AddItem(5, QStringLiteral("five"));
        multi.AddItem(6, QStringLiteral("six"));
        multi.SetItemEnabled(6, false);
        multi.SetItemEnabled(6, false); // unchanged: no entry
        multi.SetItemChecked(5, true, nullptr);
        multi.ClearItems();
        multi.SetNoneEntry(true, QStringLiteral("none"));
        multi.SetNoneEntry(true, QStringLiteral("none")); // unchanged: no entry
        multi.SetSeveralEntryText(QStringLiteral("several"));
        QCOMPARE(kinds(*log), (QList<int>{2, 2, 5, 6, 3, 1, 1}));
        QCOMPARE(log->GetAt(2).key, quint32(6));
        QCOMPARE(log->GetAt(3).key, quint32(5));
        for (int i = 0; i < log->GetCount(); ++i)
            QCOMPARE(log->GetAt(i).sequence, quint64(i));
        QCOMPARE(log->GetNextSequence(), quint64(7));

        // Single choice: checking one item writes an entry for each mark that moved.
        values::StringMultiSelection single(1);
        single.AddItem(1, QStringLiteral("a"), true);
        single.AddItem(2, QStringLiteral("b"));
        single.SetItemChecked(2, true, nullptr);
        const auto* slog = single.GetChangeLog();
        QCOMPARE(kinds(*slog), (QList<int>{2, 2, 6, 6}));
        QCOMPARE(slog->GetAt(2).key, quint32(1));
        QCOMPARE(slog->GetAt(3).key, quint32(2));

        // Items cleared and added again under the same keys start unchecked, whatever they were.
        single.ClearItems();
        QVERIFY(!single.GetItemByKey(2) && !single.IsItemChecked(2));
        QVERIFY(single.AddItem(2, QStringLiteral("b again")));
        QVERIFY(single.AddItem(7, QStringLiteral("c"), true));
        QCOMPARE(single.GetItemByKey(2)->GetName(), QStringLiteral("b again"));
        QCOMPARE(single.GetCheckedKeys(), (std::vector<unsigned>{7}));
        QVERIFY(single.SetItemChecked(2, true, nullptr));
        QCOMPARE(single.GetValueString(), QStringLiteral("b again"));
    }

    void changeLogWrapsAround_data()
    {
        QTest::addColumn<int>("capacity");
        QTest::addColumn<int>("changes");
        QTest::newRow("not full") << 8 << 5;
        QTest::newRow("exactly full") << 8 << 8;
        QTest::newRow("one over") << 8 << 9;
        QTest::newRow("many laps") << 8 << 8 * 7 + 3;
        QTest::newRow("capacity one") << 1 << 4;
    }
    void changeLogWrapsAround()
    {
        QFETCH(int, capacity);
        QFETCH(int, changes);
        values::MultiSelectionChangeLog log(capacity);
        for (int i = 0; i < changes; ++i)
            log.Add(i % 2 ? 6 : 5, quint32(i));
        const int retained = qMin(capacity, changes);
        QCOMPARE(log.GetCount(), retained);
        QCOMPARE(log.GetNextSequence(), quint64(changes));
        for (int i = 0; i < retained; ++i) {
            const quint64 expected = quint64(changes - retained + i);
            QCOMPARE(log.GetAt(i).sequence, expected);
            QCOMPARE(log.GetAt(i).key, quint32(expected));
            QCOMPARE(int(log.GetAt(i).kind), expected % 2 ? 6 : 5);
        }
    }

    void changeLogCapacityChangeKeepsNewest()
    {
        values::MultiSelectionChangeLog log(4);
        for (int i = 0; i < 6; ++i)
            log.Add(6, quint32(i));
        log.SetCapacity(2);
        QCOMPARE(log.GetCount(), 2);
        QCOMPARE(log.GetAt(0).sequence, quint64(4));
        log.SetCapacity(10);
        log.Add(6, 99);
        QCOMPARE(log.GetCount(), 3);
        QCOMPARE(log.GetAt(2).sequence, quint64(6));
        log.SetCapacity(0); // at least one entry stays
        QCOMPARE(log.GetCapacity(), 1);
        QCOMPARE(log.GetAt(0).key, quint32(99));
    }
};

QTEST_GUILESS_MAIN(MultiSelectionTest)
#include "multiselectiontest.moc"
