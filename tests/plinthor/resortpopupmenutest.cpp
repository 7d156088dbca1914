#include <plinthor/resortpopupmenu.h>

#include <QtTest>

namespace {

// Records the ids that reach it through the menu's routing.
class Receiver : public QObject
{
    Q_OBJECT
public:
    QList<int> ids;
    int bareCalls = 0;
public Q_SLOTS:
    void picked(int id) { ids << id; }
    void bare() { ++bareCalls; }
Q_SIGNALS:
    void forwarded(int id);
};

QStringList texts(const QMenu& menu)
{
    QStringList result;
    const QList<QAction*> actions = menu.actions();
    for (const QAction* action : actions)
        result << (action->isSeparator() ? QStringLiteral("|") : action->text());
    return result;
}

void showAndHide(QMenu& menu)
{
    menu.popup(QPoint(0, 0));
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    menu.hide();
}

} // namespace

class ResortPopupMenuTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entries()
    {
        ResortPopupMenu menu(nullptr, "menu");
        QCOMPARE(menu.objectName(), QStringLiteral("menu"));
        QPointer<QAction> a = menu.insertItem(QStringLiteral("a"), 7, -1);
        QAction* none = menu.insertItem(QStringLiteral("none"), -1, -1);
        QAction* front = menu.insertItem(QStringLiteral("front"), 3, 0);
        QAction* far = menu.insertItem(QStringLiteral("far"), 9, 50);
        QCOMPARE(none->data().toInt(), -1);
        QCOMPARE(texts(menu), QStringList({"front", "a", "none", "far"}));
        QCOMPARE(menu.findItem(7), a.data());
        QCOMPARE(menu.findItem(-1), none);
        QCOMPARE(menu.findItem(3), front);
        QCOMPARE(menu.findItem(9), far);
        QVERIFY(!menu.findItem(8));
        // Actions added the QMenu way have no id; a separator's empty data is not id 0.
        menu.addSeparator();
        menu.addAction(QStringLiteral("plain"));
        QVERIFY(!menu.findItem(0));

        menu.setItemChecked(5, true); // unknown: nothing changes
        for (const QAction* action : menu.actions())
            QVERIFY(!action->isCheckable() && !action->isChecked());
        menu.setItemChecked(9, true);
        QVERIFY(far->isCheckable() && far->isChecked());
        menu.setItemChecked(9, false);
        QVERIFY(!far->isChecked());

        // The id lookup follows what happens to the entries after it was last asked.
        far->setData(8);
        QCOMPARE(menu.findItem(8), far);
        QVERIFY(!menu.findItem(9));
        QAction* twin = menu.insertItem(QStringLiteral("twin"), 3, 0); // the same id, now first
        QCOMPARE(menu.findItem(3), twin);
        menu.removeAction(twin);
        QCOMPARE(menu.findItem(3), front);
        front->setSeparator(true);
        QVERIFY(!menu.findItem(3));
        front->setSeparator(false);
        delete twin;

        menu.EnableAllEntries(false);
        QVERIFY(!a->isEnabled() && !far->isEnabled());
        menu.EnableEntry(QStringLiteral("far"), true);
        menu.EnableEntry(QStringLiteral("A"), true); // the text must match exactly
        QVERIFY(!a->isEnabled() && far->isEnabled());
        menu.RemoveAllEntries();
        QVERIFY(menu.actions().isEmpty());
        QVERIFY(a.isNull());
    }

    void resortOnShow_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("by index") << int(ResortPopupMenu::SortByIndex)
                                  << QStringList({"bravo", "&zulu", "Alpha", "Mike", "|", "item 10", "item 9", "|", "extra"});
        QTest::newRow("by text") << int(ResortPopupMenu::SortByText)
                                 << QStringList({"Alpha", "bravo", "Mike", "&zulu", "|", "item 9", "item 10", "|", "extra"});
        QTest::newRow("off") << int(ResortPopupMenu::NoSorting)
                             << QStringList({"Alpha", "bravo", "&zulu", "Mike", "|", "item 9", "item 10", "|", "extra"});
    }
    void resortOnShow()
    {
        QFETCH(int, mode);
        ResortPopupMenu menu;
        menu.setSortMode(static_cast<ResortPopupMenu::SortMode>(mode));
        QCOMPARE(int(menu.sortMode()), mode);
        // Indexes beyond the end append at first; only the show puts them in order.
        menu.insertItem(QStringLiteral("Alpha"), 5, 5);
        menu.insertItem(QStringLiteral("&zulu"), 2, 2);
        menu.insertItem(QStringLiteral("Mike"), -1, -1);
        menu.insertItem(QStringLiteral("bravo"), 1, 1);
        menu.addSeparator();
        menu.insertItem(QStringLiteral("item 9"), 10040, 40);
        menu.insertItem(QStringLiteral("item 10"), 10030, 30);
        menu.addSeparator();
        menu.addAction(QStringLiteral("extra"));
        QCOMPARE(texts(menu), QStringList({"Alpha", "bravo", "&zulu", "Mike", "|", "item 9", "item 10", "|", "extra"}));
        showAndHide(menu);
        QTEST(texts(menu), "after");
        // Ids survive the move.
        QCOMPARE(menu.findItem(10030)->text(), QStringLiteral("item 10"));
        QCOMPARE(menu.findItem(-1)->text(), QStringLiteral("Mike"));
    }

    void routing()
    {
        Receiver receiver;
        QSignalSpy forwarded(&receiver, &Receiver::forwarded);
        ResortPopupMenu menu;
        menu.insertItem(QStringLiteral("b"), &receiver, SLOT(picked(int)), QKeySequence(), 20, 1);
        menu.insertItem(QStringLiteral("a"), &receiver, "1picked( int )", QKeySequence(0, 0, 0, 0), 10, 0);
        menu.insertItem(QStringLiteral("c"), &receiver, SLOT(bare()), QKeySequence(Qt::CTRL + Qt::Key_B), 30, 2);
        menu.insertItem(QStringLiteral("d"), &receiver, SIGNAL(forwarded(int)), QKeySequence(), 40, 3);
        menu.insertItem(QStringLiteral("e"), &receiver, SLOT(missing(int)), QKeySequence(), 50, 4);
        menu.insertItem(QStringLiteral("f"), nullptr, nullptr, QKeySequence(), 60, 5);
        QCOMPARE(menu.findItem(30)->shortcut(), QKeySequence(Qt::CTRL + Qt::Key_B));
        QSignalSpy triggered(&menu, &QMenu::triggered);

        // By keyboard through the shown menu: the first entry is "a".
        menu.popup(QPoint(0, 0));
        QVERIFY(QTest::qWaitForWindowExposed(&menu));
        QTest::keyClick(&menu, Qt::Key_Down);
        QTest::keyClick(&menu, Qt::Key_Return);
        QTRY_COMPARE(receiver.ids, QList<int>({10}));
        QCOMPARE(triggered.count(), 1);

        // Programmatic triggers take the same road, also for a menu never shown.
        menu.findItem(20)->trigger();
        menu.findItem(30)->activate(QAction::Trigger);
        menu.findItem(40)->trigger();
        menu.findItem(50)->trigger();
        menu.findItem(60)->trigger();
        QCOMPARE(receiver.ids, QList<int>({10, 20}));
        QCOMPARE(receiver.bareCalls, 1);
        QCOMPARE(forwarded.count(), 1);
        QCOMPARE(forwarded.at(0).at(0).toInt(), 40);
        QCOMPARE(triggered.count(), 6);
    }

    void routingEndsWithReceiverOrEntry()
    {
        auto* receiver = new Receiver;
        ResortPopupMenu menu;
        QAction* gone = menu.insertItem(QStringLiteral("x"), receiver, SLOT(picked(int)), QKeySequence(), 1, -1);
        delete receiver;
        gone->trigger(); // nothing to call, nothing crashes

        Receiver kept;
        ResortPopupMenu store; // a store of commands that is never shown, as a popup keeps its extras
        QAction* removed = store.insertItem(QStringLiteral("y"), &kept, SLOT(picked(int)), QKeySequence(), 2, -1);
        store.removeAction(removed);
        removed->trigger();
        QVERIFY(kept.ids.isEmpty());
        store.RemoveAllEntries();
        QAction* fresh = store.insertItem(QStringLiteral("z"), &kept, SLOT(picked(int)), QKeySequence(), 3, -1);
        fresh->activate(QAction::Trigger);
        QCOMPARE(kept.ids, QList<int>({3}));
        delete removed;
    }
};

QTEST_MAIN(ResortPopupMenuTest)
#include "resortpopupmenutest.moc"
