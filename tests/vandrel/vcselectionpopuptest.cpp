#include <vandrel/vcselectionpopup.h>

#include <QPointer>
#include <QtTest>

#include <functional>

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }
int recordings() { return values::UndoRecorder::Instance().Count(); }

values::ValueSelection* addSelection(const QString& path, int count, int current = 0, const QString& stem = QStringLiteral("i"))
{
    auto* s = new values::ValueSelection;
    for (int i = 0; i < count; ++i)
        s->AddItem(stem + QString::number(i), i, 50 + i, nullptr); // keys unlike places: items go by place
    if (count)
        s->SelectIndex(current, nullptr);
    tree().Add(path, s);
    return s;
}

// The entries as "text=id" ("-" for a separator, "*" after a checked one).
QStringList entries(QMenu& menu)
{
    QStringList out;
    for (QAction* a : menu.actions())
        out << (a->isSeparator() ? QStringLiteral("-") : a->text() + QLatin1Char('=') + a->data().toString() + (a->isChecked() ? "*" : ""));
    return out;
}

struct Popup : VCSelectionPopup
{
    Popup() : VCSelectionPopup(nullptr, "popup") {}
    using VCSelectionPopup::m_additionalItems;
    using VCSelectionPopup::m_nAdditionalOffset;
    using VCSelectionPopup::m_nFirstSelectionOffset;
    using VCSelectionPopup::m_nSecondSelectionOffset;
    QList<int> offsets() const { return {m_nFirstSelectionOffset, m_nSecondSelectionOffset, m_nAdditionalOffset}; }
};

} // namespace

class VCSelectionPopupTest : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void command(int id) { commands << id; }
    void closeAll() { ++closes; }

private:
    QList<int> commands;
    int closes = 0;

private Q_SLOTS:
    void cleanup()
    {
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
        QLocale::setDefault(QLocale::c());
        commands.clear();
        closes = 0;
    }

    // The parts, their separators and ids, as the bindings and commands make them.
    void layout_data()
    {
        QTest::addColumn<int>("first");   // item count, -1: not bound
        QTest::addColumn<int>("second");
        QTest::addColumn<int>("commands");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<QList<int>>("offsets");
        QTest::newRow("one command") << -1 << -1 << 1 << QStringList{"c0=0"} << QList<int>{-1, -1, 0};
        QTest::newRow("three, two, commands")
            << 3 << 2 << 2 << QStringList{"a0=0*", "a1=1", "a2=2", "-", "b0=3*", "b1=4", "-", "c0=5", "c1=6"}
            << QList<int>{0, 3, 5};
        QTest::newRow("empty first") << 0 << 2 << 0 << QStringList{"-", "b0=0*", "b1=1"} << QList<int>{0, 0, -1};
        QTest::newRow("second alone") << -1 << 2 << 1 << QStringList{"b0=0*", "b1=1", "-", "c0=2"} << QList<int>{-1, 0, 2};
        QTest::newRow("first alone") << 2 << -1 << 0 << QStringList{"a0=0*", "a1=1"} << QList<int>{0, -1, -1};
        QTest::newRow("nothing") << -1 << -1 << 0 << QStringList{} << QList<int>{-1, -1, -1};
    }
    void layout()
    {
        QFETCH(int, first);
        QFETCH(int, second);
        QFETCH(int, commands);
        QFETCH(QStringList, shown);
        QFETCH(QList<int>, offsets);
        Popup popup;
        QCOMPARE(popup.offsets(), (QList<int>{-1, -1, -1}));
        QVERIFY(popup.isEnabled());
        if (first >= 0) {
            addSelection(QStringLiteral("/a"), first, 0, QStringLiteral("a"));
            QVERIFY(popup.SetFirstSelection_ValuePath(QStringLiteral("/a")));
        }
        if (second >= 0) {
            addSelection(QStringLiteral("/b"), second, 0, QStringLiteral("b"));
            QVERIFY(popup.SetSecondSelection_ValuePath(QStringLiteral("/b")));
        }
        for (int i = 0; i < commands; ++i)
            popup.AddAdditionalItem(QStringLiteral("c%1").arg(i), this, SLOT(command(int)));
        QCOMPARE(entries(popup), shown);
        QCOMPARE(popup.offsets(), offsets);
        // The store numbers its commands from 0, whatever their place in the menu.
        QCOMPARE(popup.m_additionalItems.actions().size(), commands);
        if (commands)
            QCOMPARE(popup.m_additionalItems.actions().last()->data(), QVariant(commands - 1));
        // Without commands, the trailing separator goes too.
        popup.ClearAdditionalItems();
        QStringList kept = shown.mid(0, shown.size() - commands);
        if (commands && !kept.isEmpty() && kept.last() == QLatin1String("-"))
            kept.removeLast();
        QCOMPARE(entries(popup), kept);
        QCOMPARE(popup.offsets().at(2), -1);
    }

    void picks_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::newRow("C") << "C";
        QTest::newRow("German") << "de_DE";
    }
    void picks()
    {
        QFETCH(QString, locale);
        QLocale::setDefault(QLocale(locale));
        auto* unit = addSelection(QStringLiteral("/unit"), 3, 1, QStringLiteral("u"));
        auto* range = addSelection(QStringLiteral("/range"), 2, 0, QStringLiteral("r"));
        Popup popup;
        QVERIFY(popup.SetFirstSelection_ValuePath(QStringLiteral("/unit")));
        QVERIFY(popup.SetSecondSelection_ValuePath(QStringLiteral("/range")));
        popup.AddAdditionalItem(QStringLiteral("Close all"), this, SLOT(closeAll()));
        popup.AddAdditionalItem(QStringLiteral("Command"), this, SLOT(command(int)));
        QCOMPARE(entries(popup), (QStringList{"u0=0", "u1=1*", "u2=2", "-", "r0=3*", "r1=4", "-", "Close all=5", "Command=6"}));

        // Keys in the open menu: one undo recording per pick, the marks follow the value.
        popup.popup(QPoint(20, 20));
        QVERIFY(QTest::qWaitForWindowExposed(&popup));
        QTest::keyClick(&popup, Qt::Key_Down);
        QTest::keyClick(&popup, Qt::Key_Return);
        QCOMPARE(unit->GetCurrentIndex(), 0L);
        QCOMPARE(recordings(), 1);
        QCOMPARE(entries(popup).mid(0, 3), (QStringList{"u0=0*", "u1=1", "u2=2"}));
        popup.actions().at(5)->trigger();
        QCOMPARE(range->GetCurrentIndex(), 1L);
        QCOMPARE(recordings(), 2);
        QCOMPARE(entries(popup).mid(4, 2), (QStringList{"r0=3", "r1=4*"}));
        // A change from elsewhere moves the mark.
        range->SelectIndex(0, nullptr);
        QCOMPARE(entries(popup).mid(4, 2), (QStringList{"r0=3*", "r1=4"}));
        // Commands reach their receivers, with their number in the store; they are no edits.
        popup.actions().at(8)->trigger();
        popup.actions().at(7)->trigger();
        QCOMPARE(commands, QList<int>{1});
        QCOMPARE(closes, 1);
        QCOMPARE(recordings(), 2);
        // Ids outside a part do nothing: stale ids after a rebuild are the normal case.
        popup.SlotFirstSelectionItemActivated(3);
        popup.SlotSecondSelectionItemActivated(2);
        popup.SlotSecondSelectionItemActivated(5);
        popup.SlotAdditionItemActivated(7);
        popup.SlotAdditionItemActivated(4);
        QCOMPARE(unit->GetCurrentIndex(), 0L);
        QCOMPARE(range->GetCurrentIndex(), 0L);
        QCOMPARE(recordings(), 2);
        QCOMPARE(commands, QList<int>{1});
        // A Disabled value stays selectable here.
        unit->SetState(Disabled);
        QVERIFY(popup.isEnabled());
        popup.SlotFirstSelectionItemActivated(2);
        QCOMPARE(unit->GetCurrentIndex(), 2L);
        // With its switch off the menu still writes, unrecorded.
        popup.SetUndoRecordingEnabled(false);
        popup.SlotFirstSelectionItemActivated(1);
        QCOMPARE(unit->GetCurrentIndex(), 1L);
        QCOMPARE(recordings(), 3);
    }

    void valuesChangeWhileOpen()
    {
        auto* unit = addSelection(QStringLiteral("/unit"), 3, 1, QStringLiteral("u"));
        addSelection(QStringLiteral("/range"), 2, 0, QStringLiteral("r"));
        Popup popup;
        popup.SetFirstSelection_ValuePath(QStringLiteral("/unit"));
        popup.SetSecondSelection_ValuePath(QStringLiteral("/range"));
        popup.popup(QPoint(20, 20));
        QVERIFY(QTest::qWaitForWindowExposed(&popup));
        // Items added and cleared rebuild the open menu and its offsets.
        unit->AddItem(QStringLiteral("u3"), 3, 53, nullptr);
        QCOMPARE(entries(popup), (QStringList{"u0=0", "u1=1*", "u2=2", "u3=3", "-", "r0=4*", "r1=5"}));
        unit->ClearItems(nullptr);
        QCOMPARE(entries(popup), (QStringList{"-", "r0=0*", "r1=1"}));
        QCOMPARE(popup.offsets(), (QList<int>{0, 0, -1}));
        // A value that leaves the tree takes its part; a stale id then writes nowhere.
        QVERIFY(tree().Remove(QStringLiteral("/range")));
        QCOMPARE(entries(popup), (QStringList{}));
        QCOMPARE(popup.offsets(), (QList<int>{0, -1, -1}));
        popup.SlotSecondSelectionItemActivated(0);
        popup.close();

        // A rebuild made by an observer of the menu's own pick, while Qt still triggers the entry.
        auto* grow = addSelection(QStringLiteral("/grow"), 2, 0, QStringLiteral("g"));
        QVERIFY(popup.SetFirstSelection(grow));
        struct Grower : IObserver {
            values::ValueSelection* value;
            void Update(Observable*, TChangeCode code) override
            {
                if (code == ValueChanged && value->GetItemCount() < 3)
                    value->AddItem(QStringLiteral("g2"), 2, 52, nullptr);
            }
        } grower;
        grower.value = grow;
        grow->Attach(&grower);
        QPointer<QAction> picked = popup.actions().at(1);
        picked->trigger();
        QCOMPARE(grow->GetCurrentIndex(), 1L);
        QCOMPARE(entries(popup), (QStringList{"g0=0", "g1=1*", "g2=2"}));
        QVERIFY(!popup.actions().contains(picked));
        QTRY_VERIFY(!picked);
        grow->Detach(&grower);
        QVERIFY(!popup.SetFirstSelection(nullptr));
        QVERIFY(popup.actions().isEmpty());
        QCOMPARE(grow->ObserverCount(), 0);
    }

    // One value as both selections: each role holds it until both let go.
    void oneValueTwice()
    {
        auto* s = addSelection(QStringLiteral("/s"), 2, 0);
        addSelection(QStringLiteral("/t"), 1, 0);
        {
            Popup popup;
            popup.SetFirstSelection_ValuePath(QStringLiteral("/s"));
            popup.SetSecondSelection_ValuePath(QStringLiteral("/s"));
            popup.SetFirstSelection_ValuePath(QStringLiteral("/t"));
            QCOMPARE(s->ObserverCount(), 1);
            s->SelectIndex(1, nullptr);
            QCOMPARE(entries(popup), (QStringList{"i0=0*", "-", "i0=1", "i1=2*"}));
            popup.SetFirstSelection_ValuePath(QStringLiteral("/s"));
            QVERIFY(tree().Remove(QStringLiteral("/s"))); // both roles are told
            QCOMPARE(popup.offsets(), (QList<int>{-1, -1, -1}));
            QVERIFY(popup.actions().isEmpty());
        }
        QCOMPARE(dynamic_cast<values::ValueSelection*>(tree().Find(QStringLiteral("/t")))->ObserverCount(), 0);
    }
};

QTEST_MAIN(VCSelectionPopupTest)
#include "vcselectionpopuptest.moc"
