#include <plinthor/sortlistview.h>

#include <QCheckBox>
#include <QHeaderView>
#include <QMenu>
#include <QtTest>

Q_DECLARE_METATYPE(SortListViewItem*)

namespace {

// The texts of column \a c of the rows under \a parent, in the order shown.
QStringList column(const QTreeWidgetItem* parent, int c = 0)
{
    QStringList result;
    for (int row = 0; row < parent->childCount(); ++row)
        result << parent->child(row)->text(c);
    return result;
}

QStringList column(const QTreeWidget& view, int c)
{
    return column(view.invisibleRootItem(), c);
}

void clickHeader(SortListView& view, int section)
{
    QHeaderView* header = view.header();
    const QPoint centre(header->sectionViewportPosition(section) + header->sectionSize(section) / 2,
                        header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, centre);
}

// Two columns, and rows made from \a names and \a numbers.
void fill(SortListView& view, const QStringList& names, const QStringList& numbers)
{
    QCOMPARE(view.addColumn(QStringLiteral("Name")), 0); // titles the column a new view has
    QCOMPARE(view.addColumn(QStringLiteral("Number")), 1);
    QCOMPARE(view.columnCount(), 2);
    for (int i = 0; i < names.size(); ++i)
        new SortListViewItem(&view, {names.at(i), numbers.at(i)});
}

} // namespace

class SortListViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qRegisterMetaType<SortListViewItem*>(); }

    // Real clicks on the header: a new column sorts ascending, the same column again turns round.
    void headerClicks_data()
    {
        QTest::addColumn<int>("section");
        QTest::addColumn<QStringList>("ascending");
        QTest::addColumn<QStringList>("descending");
        QTest::newRow("natural text") << 0 << QStringList({"item 2", "Item 9", "item 10", "zeta"})
                                      << QStringList({"zeta", "item 10", "Item 9", "item 2"});
        QTest::newRow("numbers") << 1 << QStringList({"-2", "1.5", "9", "10"})
                                 << QStringList({"10", "9", "1.5", "-2"});
    }
    void headerClicks()
    {
        QFETCH(int, section);
        SortListView view(nullptr, "list");
        QCOMPARE(view.objectName(), QStringLiteral("list"));
        fill(view, {"item 10", "zeta", "Item 9", "item 2"}, {"10", "9", "-2", "1.5"});
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        if (section == 0) {
            clickHeader(view, 1); // away from the default column first
            QCOMPARE(view.sortingColumn(), 1);
        }
        clickHeader(view, section);
        QCOMPARE(view.sortingColumn(), section);
        QCOMPARE(view.sortingOrder(), Qt::AscendingOrder);
        QTEST(column(view, section), "ascending");
        QCOMPARE(view.header()->sortIndicatorSection(), section);
        clickHeader(view, section);
        QCOMPARE(view.sortingOrder(), Qt::DescendingOrder);
        QTEST(column(view, section), "descending");
        QCOMPARE(view.header()->sortIndicatorOrder(), Qt::DescendingOrder);
    }

    void rowsKeepSorted()
    {
        SortListView view;
        fill(view, {"b", "d"}, {"1", "2"});
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QCOMPARE(column(view, 0), QStringList({"b", "d"}));
        new SortListViewItem(&view, {"c", "3"});
        new SortListViewItem(&view, {"a", "4"});
        QTRY_COMPARE(column(view, 0), QStringList({"a", "b", "c", "d"}));
        view.topLevelItem(0)->setText(0, QStringLiteral("e"));
        QTRY_COMPARE(column(view, 0), QStringList({"b", "c", "d", "e"}));
    }

    // Sorting off: rows stay as made, each new one on top, and header clicks change nothing.
    void sortingOff()
    {
        SortListView view;
        view.addColumn(QStringLiteral("Name"));
        view.setSorting(-1, Qt::AscendingOrder);
        QCOMPARE(view.sortingColumn(), -1);
        const QStringList values({"beta", "alpha", "gamma"});
        for (int i = values.size() - 1; i >= 0; --i)
            new SortListViewItem(&view, {values.at(i)});
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        clickHeader(view, 0);
        QCoreApplication::processEvents();
        QCOMPARE(column(view, 0), values);
        QVERIFY(!view.header()->isSortIndicatorShown());

        // An explicit sort still sorts once, and sorting stays off.
        view.sortByColumn(0, Qt::DescendingOrder);
        QCOMPARE(column(view, 0), QStringList({"gamma", "beta", "alpha"}));
        QCOMPARE(view.sortingColumn(), -1);
        view.sortByColumn(5, Qt::AscendingOrder); // no such column
        QCOMPARE(column(view, 0), QStringList({"gamma", "beta", "alpha"}));
        view.setSorting(0, Qt::AscendingOrder);
        QCOMPARE(column(view, 0), QStringList({"alpha", "beta", "gamma"}));
    }

    void childItems()
    {
        SortListView view;
        fill(view, {"root"}, {"0"});
        auto* root = static_cast<SortListViewItem*>(view.topLevelItem(0));
        new SortListViewItem(root, {"a", "3"});
        new SortListViewItem(root, {"b", "1"});
        new SortListViewItem(root, {"c", "2"});
        // The view sorts by names; the children can be sorted by another column of their own.
        root->sortChildItems(1, true);
        QCOMPARE(column(root), QStringList({"b", "c", "a"}));
        root->sortChildItems(0, false);
        QCOMPARE(column(root), QStringList({"c", "b", "a"}));
        root->setOpen(true);
        QVERIFY(root->isExpanded());
        root->setOpen(false);
        QVERIFY(!root->isExpanded());
    }

    void checkItems()
    {
        SortListView view;
        view.addColumn(QStringLiteral("Name"));
        view.addColumn(QStringLiteral("Note"));
        view.setSorting(-1);
        auto* second = new CheckSortListViewItem(&view, QStringLiteral("second"), QStringLiteral("n2"));
        auto* first = new CheckSortListViewItem(&view, QStringLiteral("first"), QStringLiteral("n1"));
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));

        QCheckBox* box = first->GetCheckBox();
        QVERIFY(box);
        QCOMPARE(view.itemWidget(first, 0), box);
        QCOMPARE(box->text(), QStringLiteral("first"));
        QCOMPARE(first->text(1), QStringLiteral("n1"));
        QSignalSpy toggled(box, &QCheckBox::stateChanged);

        first->setOn(true);
        QVERIFY(box->isChecked() && first->isOn());
        QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(box->height() / 2, box->height() / 2));
        QVERIFY(!first->isOn());

        // Activating the row, by a double click beside the box or by Return, clicks the box.
        const QRect noteCell = view.visualItemRect(first).adjusted(view.columnWidth(0), 0, 0, 0);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, noteCell.center());
        QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, noteCell.center());
        QVERIFY(first->isOn());
        view.setCurrentItem(second, 1);
        QTest::keyClick(&view, Qt::Key_Return);
        QVERIFY(second->isOn());
        second->GetCheckBox()->setEnabled(false);
        QTest::keyClick(&view, Qt::Key_Return);
        QVERIFY(second->isOn());
        QCOMPARE(toggled.count(), 3);

        first->setText(0, QStringLiteral("renamed"));
        QCOMPARE(box->text(), QStringLiteral("renamed"));

        QPointer<QCheckBox> guard(box);
        view.clear();
        QTRY_VERIFY(guard.isNull());
    }

    void contextMenus()
    {
        SortListView view;
        fill(view, {"a", "b"}, {"1", "2"});
        view.addColumn(QStringLiteral("Third"));
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QSignalSpy requested(&view, &SortListView::contextMenuRequested);

        QTreeWidgetItem* row = view.topLevelItem(1);
        const QPoint inRow(view.columnViewportPosition(1) + 2, view.visualItemRect(row).center().y());
        QContextMenuEvent overRow(QContextMenuEvent::Mouse, inRow, view.viewport()->mapToGlobal(inRow));
        QApplication::sendEvent(view.viewport(), &overRow);
        QCOMPARE(requested.count(), 1);
        QCOMPARE(requested.at(0).at(0).value<SortListViewItem*>(), static_cast<SortListViewItem*>(row));
        QCOMPARE(requested.at(0).at(2).toInt(), 1);

        const QPoint below(5, view.viewport()->height() - 2);
        QContextMenuEvent overNothing(QContextMenuEvent::Mouse, below, view.viewport()->mapToGlobal(below));
        QApplication::sendEvent(view.viewport(), &overNothing);
        QCOMPARE(requested.count(), 2);
        QVERIFY(!requested.at(1).at(0).value<SortListViewItem*>());

        // The header's menu shows and hides columns; the first one stays.
        view.slotHeaderContextMenuRequested(QPoint(2, 2));
        auto* menu = view.findChild<QMenu*>(QStringLiteral("columnsMenu"));
        QVERIFY(menu);
        const QList<QAction*> actions = menu->actions();
        QCOMPARE(actions.size(), 3);
        QVERIFY(!actions.at(0)->isEnabled());
        actions.at(2)->trigger();
        QVERIFY(view.isColumnHidden(2));
        menu->close();
        QTRY_VERIFY(!view.findChild<QMenu*>(QStringLiteral("columnsMenu")));
    }
};

QTEST_MAIN(SortListViewTest)
#include "sortlistviewtest.moc"
