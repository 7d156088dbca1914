#pragma once

#include <plinthor/plinthor_export.h>

#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTreeWidget>
#include <QTreeWidgetItem>

class QCheckBox;
class QContextMenuEvent;
class QKeyEvent;
class QShowEvent;
class SortListViewItem;

/**
 * \brief A QTreeWidget that sorts its rows by a clicked header column.
 *
 * \b Sorting. A new view sorts by its first column, ascending. A click on a header section sorts by
 * that column, ascending, and a further click on the same section turns the order round; the header
 * shows the sort indicator. While sorting is on, rows that are added or whose texts change are put in
 * place again when control returns to the event loop, and at the latest when the view is shown.
 * setSorting() with a negative column switches sorting off: rows stay in the order in which they were
 * made, the header takes no clicks and shows no indicator. The order of two rows is
 * SortListViewItem::operator<(): numbers by value, other texts in natural order (see there).
 *
 * \b Reactions. The view connects its own signals to the virtual slots below, which a derived class
 * may override: a double click on a row, or Return on the current row, activates it
 * (SortListViewItem::activate()); a context menu on the rows reaches slotContextMenuRequested(),
 * which emits contextMenuRequested(); a context menu on the header offers the columns to show or hide
 * (the first column always stays); opening a branch widens the first column to its contents.
 */
class PLINTHOR_EXPORT SortListView : public QTreeWidget
{
    Q_OBJECT

public:
    /// An empty view with one untitled column; \a name, when not null, becomes the object name.
    explicit SortListView(QWidget* parent = nullptr, const char* name = nullptr);
    ~SortListView() override;

    /**
     * \brief Adds a column titled \a title and returns its number.
     *
     * The first call titles the column that a new view already has, so it returns 0.
     */
    int addColumn(const QString& title);
    /**
     * \brief Sets the sort column and order and sorts now; a negative \a column switches sorting off
     * (see the class description).
     */
    void setSorting(int column, Qt::SortOrder order = Qt::AscendingOrder);
    /// The sort column, -1 while sorting is off.
    int sortingColumn() const { return m_nSortColumn; }
    /// The sort order.
    Qt::SortOrder sortingOrder() const { return m_eSortOrder; }

    /**
     * \brief Sorts the rows, and the children of every row, by \a column in \a order now.
     *
     * While sorting is on, \a column and \a order become the sort column and order. While it is off
     * the rows are sorted once and sorting stays off. A column that the view does not have is ignored.
     */
    virtual void sortByColumn(int column, Qt::SortOrder order);

public Q_SLOTS:
    /// A click on a row; nothing happens here. Connected to itemClicked().
    virtual void slotClicked(QTreeWidgetItem* item, int column);
    /// Activates \a item when it is a SortListViewItem. Connected to itemDoubleClicked() and Return.
    virtual void slotDoubleClicked(QTreeWidgetItem* item, int column);
    /**
     * \brief A context menu asked for over \a item (null over empty space) and \a column, at the
     * global position \a pos; emits contextMenuRequested().
     */
    virtual void slotContextMenuRequested(SortListViewItem* item, const QPoint& pos, int column);
    /// Widens the first column when the opened branch needs more room. Connected to itemExpanded().
    virtual void slotExpanded(QTreeWidgetItem* item);
    /// A branch was closed; nothing happens here. Connected to itemCollapsed().
    virtual void slotCollapsed(QTreeWidgetItem* item);
    /**
     * \brief Sorts by \a section: ascending for a new column, the other way round for the present
     * one. Does nothing while sorting is off. Connected to the header's sectionClicked().
     */
    virtual void slotHeaderClicked(int section);
    /**
     * \brief Pops up a menu of the column titles, at \a pos in the header's coordinates, in which
     * columns are shown and hidden. The first column cannot be hidden; a view of one column has no menu.
     */
    virtual void slotHeaderContextMenuRequested(const QPoint& pos);
    /// The selection changed; nothing happens here. Connected to itemSelectionChanged().
    virtual void slotSelectionChanged();

Q_SIGNALS:
    /// Emitted by slotContextMenuRequested() with its arguments.
    void contextMenuRequested(SortListViewItem* item, const QPoint& pos, int column);

protected:
    /// Finds the row and column under the event and calls slotContextMenuRequested().
    void contextMenuEvent(QContextMenuEvent* event) override;
    /// Sorts rows that came while the view was hidden before it appears.
    void showEvent(QShowEvent* event) override;
    /// Reimplemented to activate the current row on Return or Enter, unless a cell is being edited.
    void keyPressEvent(QKeyEvent* event) override;

private Q_SLOTS:
    void scheduleSort();
    void sortIfPending();

private:
    int m_nColumns = 0;
    int m_nSortColumn = 0;
    Qt::SortOrder m_eSortOrder = Qt::AscendingOrder;
    bool m_bSortPending = false;
};

/**
 * \brief A row of a QTreeWidget that orders itself naturally and can be activated.
 *
 * A new item goes to the top of its list, or of its parent's children, as rows of the classic list
 * views did: a list built from its last element to its first shows the elements in their order.
 *
 * Order (operator<) by the texts of the view's sort column. Texts that read as finite numbers (in the
 * C locale or the application's) come first, by value; the other texts follow in natural order,
 * ignoring case, with runs of digits compared as numbers ("item 9" before "item 10"). Texts that still
 * tie are ordered by their exact characters, so that the order is total.
 */
class PLINTHOR_EXPORT SortListViewItem : public QTreeWidgetItem
{
public:
    /// A row at the top of \a parent (which may be null), showing \a texts from the first column on.
    explicit SortListViewItem(QTreeWidget* parent, const QStringList& texts = QStringList());
    /// A child at the top of the children of \a parent, showing \a texts.
    explicit SortListViewItem(QTreeWidgetItem* parent, const QStringList& texts = QStringList());
    ~SortListViewItem() override;

    /// Reimplemented to order rows as the class description says.
    bool operator<(const QTreeWidgetItem& other) const override;
    /// Called when the user activates the row (double click, Return); a plain row does nothing.
    virtual void activate();
    /// Expands or collapses the row.
    virtual void setOpen(bool open);
    /// Sorts the children of this row, and theirs, by \a column.
    virtual void sortChildItems(int column, bool ascending);
};

/**
 * \brief A row with up to eight column texts and a QCheckBox.
 *
 * The check box is the item widget of column 0 and shows the first text as its label, so a click on
 * the text toggles it as well; the item keeps that text as text(0) too, for sorting, and keeps the box's
 * label in step when text(0) changes. Activating the row (double click, Return) clicks the box, as the
 * user would, when the box is enabled. The view owns the box; it goes with the row.
 */
class PLINTHOR_EXPORT CheckSortListViewItem : public SortListViewItem
{
public:
    /// A row at the top of \a parent, unchecked, whose box is labelled \a text0, with \a text1 to \a text7
    /// in columns 1 to 7.
    CheckSortListViewItem(QTreeWidget* parent, QString text0, QString text1 = QString(), QString text2 = QString(),
                          QString text3 = QString(), QString text4 = QString(), QString text5 = QString(),
                          QString text6 = QString(), QString text7 = QString());
    ~CheckSortListViewItem() override;

    /// Sets the check mark; the box emits its signals as for any change.
    virtual void setOn(bool on);
    /// True when the box is checked.
    bool isOn() const;
    /// The check box of the row; null once the view has let it go.
    QCheckBox* GetCheckBox() const;

    void activate() override;
    /// Reimplemented to keep the box's label in step with the text of column 0.
    void setData(int column, int role, const QVariant& value) override;

private:
    QPointer<QCheckBox> m_pCheckBox;
};
