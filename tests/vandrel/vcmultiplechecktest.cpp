#include <vandrel/vcmultiplecheck.h>

#include <QCheckBox>
#include <QHeaderView>
#include <QStyleOptionButton>
#include <QTranslator>
#include <QtTest>

namespace {

const QString kRoot = QStringLiteral("/panel");
const QString kVector = QStringLiteral("/panel/vector");
const QString kMulti = QStringLiteral("/panel/multi");

values::Tree& tree() { return *values::Tree::Instance(); }

int recordings() { return values::UndoRecorder::Instance().Count(); }
bool undo(unsigned count) { return values::UndoRecordingsToValueClient(kRoot).ExecuteUndo(count); }

// Counts what reaches the value, so that a test sees writes that change nothing and the cost of a change.
struct CountingMulti : values::StringMultiSelection
{
    CountingMulti() : values::StringMultiSelection(0) {}
    bool SetItemChecked(int key, bool checked, IObserver* originator) override
    {
        ++writes;
        return values::StringMultiSelection::SetItemChecked(key, checked, originator);
    }
    void GetKeys(std::vector<unsigned int>& keys) const override
    {
        ++keyFetches;
        values::StringMultiSelection::GetKeys(keys);
    }
    int writes = 0;
    mutable int keyFetches = 0;
};

// Opens the list's protected steps to the test.
struct Probe : VCMultipleCheck
{
    using VCMultipleCheck::VCMultipleCheck;
    using VCMultipleCheck::ApplyChange;
    using VCMultipleCheck::Key2Index;
};

CountingMulti* addMulti(std::initializer_list<unsigned> keys)
{
    auto* multi = new CountingMulti;
    for (unsigned key : keys)
        multi->AddItem(key, QStringLiteral("k%1").arg(key), key == 20);
    tree().Add(kMulti, multi);
    return multi;
}

QCheckBox* box(const QTreeWidget& list, int row)
{
    auto* item = dynamic_cast<CheckSortListViewItem*>(list.topLevelItem(row));
    return item ? item->GetCheckBox() : nullptr;
}

QString row(const QString& text, bool checked, bool enabled)
{
    return QStringLiteral("%1:%2%3").arg(text).arg(int(checked)).arg(enabled ? "" : "-");
}

// Each row as "text:mark", top to bottom; a disabled box adds "-".
QStringList rows(const QTreeWidget& list)
{
    QStringList out;
    for (int i = 0; i < list.topLevelItemCount(); ++i)
        out << row(box(list, i)->text(), box(list, i)->isChecked(), box(list, i)->isEnabled());
    return out;
}

// The same of the items of \a multi, by ascending key.
QStringList rowsOf(values::MultiSelectionValueBase* multi)
{
    std::vector<unsigned> keys;
    multi->GetKeys(keys);
    std::sort(keys.begin(), keys.end());
    QStringList out;
    for (unsigned key : keys)
        out << row(multi->GetItemByKey(int(key))->GetName(), multi->IsItemChecked(int(key)), multi->IsItemEnabled(int(key)));
    return out;
}

// A click on the row's box, where a user aims.
void clickRow(QTreeWidget& list, int row)
{
    QCheckBox* b = box(list, row);
    QVERIFY(b);
    QStyleOptionButton option;
    option.initFrom(b);
    QTest::mouseClick(b, Qt::LeftButton, Qt::NoModifier,
                      b->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, b).center());
}

void show(QWidget& w)
{
    w.resize(240, 400);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
}

// German item names of the namespace "Receiver".
struct GermanNames : QTranslator
{
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        if (qstrcmp(context, "Receiver") == 0 && qstrcmp(source, "k30") == 0)
            return QStringLiteral("Überwachung");
        return QString();
    }
};

} // namespace

class VCMultipleCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
        QLocale::setDefault(QLocale::c());
    }

    // Every row also runs under a German default locale: texts that read as numbers keep the value's order.
    void vectorBinding_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::newRow("C") << QLocale::c();
        QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany);
    }
    void vectorBinding()
    {
        QFETCH(QLocale, locale);
        QLocale::setDefault(locale);
        using values::CheckedString;
        auto* vector = new values::CheckedStringVector(
            {CheckedString(QStringLiteral("2,5"), true), CheckedString(QStringLiteral("Überlauf"), false),
             CheckedString(QStringLiteral("10"), true)});
        tree().Add(kVector, vector);

        VCMultipleCheck list(nullptr, "list");
        QVERIFY(!list.isEnabled());
        QCOMPARE(list.headerItem()->text(0), QStringLiteral("Name"));
        QVERIFY(list.header()->isHidden());
        show(list);
        QSignalSpy inserted(list.model(), &QAbstractItemModel::rowsInserted);
        QVERIFY(list.SetCheckedStringVector_ValuePath(kVector));
        QVERIFY(list.isEnabled());
        QCOMPARE(inserted.count(), 2); // one rebuild for the limits, one for the value
        QCOMPARE(rows(list), QStringList({"2,5:1", "Überlauf:0", "10:1"}));

        // A click writes the whole vector as one recording; the list is not told of it.
        inserted.clear();
        clickRow(list, 1);
        clickRow(list, 0);
        QCOMPARE(vector->GetValueString(), QStringLiteral("0:2,5;1:Überlauf;1:10;"));
        QCOMPARE(inserted.count(), 0);
        QCOMPARE(recordings(), 2);

        // Undo puts every mark back at once.
        QVERIFY(undo(2));
        QCOMPARE(rows(list), QStringList({"2,5:1", "Überlauf:0", "10:1"}));

        // A direct call reads every row; an empty vector empties the list.
        {
            const QSignalBlocker quiet(box(list, 2));
            box(list, 2)->setChecked(false);
        }
        list.slotStateChanged(0);
        QCOMPARE(vector->GetValueString(), QStringLiteral("1:2,5;0:Überlauf;0:10;"));
        vector->SetValue({}, nullptr);
        QCOMPARE(list.topLevelItemCount(), 0);
    }

    void multiSelection_data() { vectorBinding_data(); }
    void multiSelection()
    {
        QFETCH(QLocale, locale);
        QLocale::setDefault(locale);
        GermanNames german;
        QCoreApplication::installTranslator(&german);
        auto* multi = addMulti({30, 10, 20});
        multi->SetTranslationNamespace("Receiver");
        multi->SetItemEnabled(20, false);

        VCMultipleCheck list(nullptr, "list");
        show(list);
        QVERIFY(list.SetCheckedStringVector_ValuePath(kMulti));
        QVERIFY(list.isEnabled());
        QCOMPARE(rows(list), QStringList({"k10:0", "k20:1-", "Überwachung:0"}));
        QCOMPARE(multi->writes, 0);

        // A click writes that item only, as one recording; a disabled item takes no click.
        clickRow(list, 2);
        clickRow(list, 1);
        QCOMPARE(multi->writes, 1);
        QCOMPARE(multi->GetCheckedKeys(), std::vector<unsigned>({20, 30}));
        QCOMPARE(recordings(), 1);
        QVERIFY(undo(1));
        QCOMPARE(multi->GetCheckedKeys(), std::vector<unsigned>({20}));
        QVERIFY(!box(list, 2)->isChecked());
        QCoreApplication::removeTranslator(&german);

        // A single choice belongs to a combo box: refused, and the list lets go of the former value.
        auto* single = new values::StringMultiSelection(1);
        single->AddItem(1, QStringLiteral("one"));
        tree().Add(QStringLiteral("/panel/single"), single);
        QVERIFY(!list.SetCheckedStringVector_ValuePath(QStringLiteral("/panel/single")));
        multi->SetItemChecked(10, true, nullptr);
        QVERIFY(!box(list, 0)->isChecked());

        // Rows come from the journal only: a value with none has none, its first item brings them.
        auto* empty = new values::StringMultiSelection(0);
        tree().Add(QStringLiteral("/panel/empty"), empty);
        QVERIFY(list.SetCheckedStringVector_ValuePath(QStringLiteral("/panel/empty")));
        QCOMPARE(list.topLevelItemCount(), 3); // the former rows stay until then, and write nothing
        delete list.topLevelItem(0);
        list.slotStateChanged(0);
        QCOMPARE(multi->writes, 2); // the application's two
        empty->AddItem(5, QStringLiteral("five"), true);
        QCOMPARE(rows(list), QStringList({"five:1"}));
    }

    // A check mark or enabled flag from the value touches only its row, costs no key fetch, writes nothing.
    void markChangesStayCheap()
    {
        auto* multi = new CountingMulti;
        for (unsigned key = 0; key < 500; ++key)
            multi->AddItem(key * 7 % 500, QStringLiteral("c%1").arg(key));
        tree().Add(kMulti, multi);
        Probe list(nullptr, "list");
        QVERIFY(list.SetCheckedStringVector_ValuePath(kMulti));
        QCOMPARE(list.topLevelItemCount(), 500);
        QCOMPARE(list.Key2Index(499), 499);
        QCOMPARE(list.Key2Index(500), -1);
        std::vector<QTreeWidgetItem*> before;
        for (int row = 0; row < 500; ++row)
            before.push_back(list.topLevelItem(row));
        QSignalSpy inserted(list.model(), &QAbstractItemModel::rowsInserted);
        const int fetches = multi->keyFetches;

        multi->SetItemChecked(250, true, nullptr);
        multi->SetItemEnabled(251, false);
        QVERIFY(box(list, 250)->isChecked());
        QVERIFY(!box(list, 251)->isEnabled());
        QCOMPARE(multi->writes, 1); // the application's own
        QCOMPARE(multi->keyFetches, fetches);
        QCOMPARE(inserted.count(), 0);
        for (int row = 0; row < 500; ++row)
            QCOMPARE(list.topLevelItem(row), before[size_t(row)]);
        QCOMPARE(rows(list), rowsOf(multi));

        // Clicks of the list's own do not come back through the journal, however many there are.
        for (int i = 0; i < 70; ++i)
            box(list, i)->click(); // most rows lie below the window's edge
        QCOMPARE(multi->writes, 71);
        multi->SetItemChecked(499, true, nullptr);
        QCOMPARE(inserted.count(), 0);
        QCOMPARE(rows(list), rowsOf(multi));
    }

    void journal()
    {
        auto* multi = addMulti({30, 10, 20});
        multi->SetChangeLogCapacity(4);
        Probe list(nullptr, "list");
        QSignalSpy rebuilt(list.model(), &QAbstractItemModel::modelReset);
        // Three items added: one rebuild reads them all.
        QVERIFY(list.SetCheckedStringVector_ValuePath(kMulti));
        QCOMPARE(rebuilt.count(), 1);
        {
            values::ValueTransaction batch = multi->CreateTransaction(ItemAdded, nullptr);
            multi->AddItem(5, QStringLiteral("k5"));
            multi->AddItem(6, QStringLiteral("k6"));
            multi->SetItemChecked(5, true, nullptr);
        }
        QCOMPARE(rebuilt.count(), 2);
        QCOMPARE(rows(list), QStringList({"k5:1", "k6:0", "k10:0", "k20:1", "k30:0"}));
        rebuilt.clear();

        // More changes than the journal keeps, told at once: exactly one rebuild, and the rows match.
        {
            values::ValueTransaction batch = multi->CreateTransaction(ValueChanged, nullptr);
            for (unsigned key : {10u, 20u, 30u, 10u, 20u})
                multi->SetItemChecked(int(key), !multi->IsItemChecked(int(key)), nullptr);
            multi->AddItem(40, QStringLiteral("k40"));
        }
        QCOMPARE(rebuilt.count(), 1);
        QCOMPARE(rows(list), rowsOf(multi));

        // A clear takes the rows away, and entries for their keys find nothing until a rebuild.
        multi->ClearItems();
        QCOMPARE(list.topLevelItemCount(), 0);
        QCOMPARE(list.Key2Index(20), 3);
        rebuilt.clear();
        list.ApplyChange(6, 20);
        list.ApplyChange(5, 20);
        QCOMPARE(list.topLevelItemCount(), 0);
        QCOMPARE(rebuilt.count(), 0);
        multi->AddItem(20, QStringLiteral("back"), true);
        QCOMPARE(rows(list), QStringList({"back:1"}));

        // The application's own hand on the rows leaves empty places too, never freed rows.
        multi->AddItem(7, QStringLiteral("seven"));
        delete list.topLevelItem(0);
        multi->SetItemChecked(7, true, nullptr);
        QCOMPARE(rows(list), QStringList({"back:1"}));
        list.clear();
        list.ApplyChange(6, 20);
        list.ApplyChange(9, 7);
        QCOMPARE(list.topLevelItemCount(), 0);
        // An entry for a key the rows lack rebuilds them.
        list.ApplyChange(6, 99);
        QCOMPARE(rows(list), QStringList({"seven:1", "back:1"}));
    }

    void rebindingAndLosingTheValue()
    {
        auto* vector = new values::CheckedStringVector({values::CheckedString(QStringLiteral("v"), true)});
        tree().Add(kVector, vector);
        auto* multi = addMulti({1, 2});
        VCMultipleCheck list(nullptr, "list");
        show(list);
        QVERIFY(list.SetCheckedStringVector_ValuePath(kVector));
        QVERIFY(list.SetCheckedStringVector_ValuePath(kMulti));
        QCOMPARE(rows(list), QStringList({"k1:0", "k2:0"}));
        vector->SetValue({}, nullptr);
        QCOMPARE(list.topLevelItemCount(), 2); // the vector no longer reaches it

        // An unknown path drops both; the rows stay and write nothing.
        QVERIFY(!list.SetCheckedStringVector_ValuePath(QStringLiteral("/panel/none")));
        multi->SetItemChecked(1, true, nullptr);
        clickRow(list, 1);
        QCOMPARE(rows(list), QStringList({"k1:0", "k2:1"}));
        QCOMPARE(multi->writes, 1);

        // Removed, disabled, destroyed: the list lets go, keeps its rows and never writes.
        QVERIFY(list.SetCheckedStringVector_ValuePath(kVector));
        QVERIFY(list.SetCheckedStringVector_ValuePath(kMulti));
        multi->SetState(Disabled);
        QVERIFY(!list.isEnabled());
        multi->SetState(Enabled);
        multi->SetState(Removed);
        list.slotStateChanged(0);
        QCOMPARE(multi->writes, 1);
        QVERIFY(list.SetCheckedStringVector_ValuePath(kVector));
        tree().Remove(kVector);
        list.slotStateChanged(0);
        QVERIFY(list.isEnabled());

        // A new value at the same path binds afresh.
        tree().Add(kVector, new values::CheckedStringVector({values::CheckedString(QStringLiteral("new"), false)}));
        QVERIFY(list.SetCheckedStringVector_ValuePath(kVector));
        QCOMPARE(rows(list), QStringList({"new:0"}));
    }
};

QTEST_MAIN(VCMultipleCheckTest)
#include "vcmultiplechecktest.moc"
