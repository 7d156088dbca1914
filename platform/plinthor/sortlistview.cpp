#include <plinthor/sortlistview.h>

#include "naturalorder_p.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLocale>
#include <QMenu>
#include <QShowEvent>

#include <cmath>

namespace {

// The column that sortChildItems() asks for; QTreeWidgetItem's sorting only passes the view's one.
int g_nChildSortColumn = -1;

bool readNumber(const QString& text, double& number)
{
    bool ok = false;
    const QString trimmed = text.trimmed();
    number = trimmed.toDouble(&ok);
    if (!ok)
        number = QLocale().toDouble(trimmed, &ok);
    return ok && std::isfinite(number);
}

} // namespace

// ---------------------------------------------------------------------------------------------------

SortListView::SortListView(QWidget* parent, const char* name)
    : QTreeWidget(parent)
{
    if (name)
        setObjectName(QString::fromUtf8(name));
    setRootIsDecorated(false);
    headerItem()->setText(0, QString());

    QHeaderView* head = header();
    head->setSectionsClickable(true);
    head->setSortIndicatorShown(true);
    head->setSortIndicator(0, Qt::AscendingOrder);
    head->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(head, SIGNAL(sectionClicked(int)), this, SLOT(slotHeaderClicked(int)));
    connect(head, SIGNAL(customContextMenuRequested(QPoint)), this, SLOT(slotHeaderContextMenuRequested(QPoint)));

    connect(this, SIGNAL(itemClicked(QTreeWidgetItem*, int)), this, SLOT(slotClicked(QTreeWidgetItem*, int)));
    connect(this, SIGNAL(itemDoubleClicked(QTreeWidgetItem*, int)), this,
            SLOT(slotDoubleClicked(QTreeWidgetItem*, int)));
    connect(this, SIGNAL(itemExpanded(QTreeWidgetItem*)), this, SLOT(slotExpanded(QTreeWidgetItem*)));
    connect(this, SIGNAL(itemCollapsed(QTreeWidgetItem*)), this, SLOT(slotCollapsed(QTreeWidgetItem*)));
    connect(this, SIGNAL(itemSelectionChanged()), this, SLOT(slotSelectionChanged()));

    connect(model(), SIGNAL(rowsInserted(QModelIndex, int, int)), this, SLOT(scheduleSort()));
    connect(model(), SIGNAL(dataChanged(QModelIndex, QModelIndex, QVector<int>)), this, SLOT(scheduleSort()));
}

SortListView::~SortListView() = default;

int SortListView::addColumn(const QString& title)
{
    const int column = m_nColumns++;
    if (columnCount() < m_nColumns)
        setColumnCount(m_nColumns);
    headerItem()->setText(column, title);
    return column;
}

void SortListView::setSorting(int column, Qt::SortOrder order)
{
    QHeaderView* head = header();
    if (column < 0) {
        m_nSortColumn = -1;
        m_bSortPending = false;
        head->setSortIndicatorShown(false);
        head->setSectionsClickable(false);
        return;
    }
    m_nSortColumn = column;
    m_eSortOrder = order;
    head->setSortIndicatorShown(true);
    head->setSectionsClickable(true);
    sortByColumn(column, order);
}

void SortListView::sortByColumn(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= columnCount())
        return;
    if (m_nSortColumn >= 0) {
        m_nSortColumn = column;
        m_eSortOrder = order;
    }
    m_bSortPending = false;
    // The items read the column to compare from the header's indicator.
    header()->setSortIndicator(column, order);
    sortItems(column, order);
}

void SortListView::slotClicked(QTreeWidgetItem*, int)
{
}

void SortListView::slotDoubleClicked(QTreeWidgetItem* item, int)
{
    if (auto* row = dynamic_cast<SortListViewItem*>(item))
        row->activate();
}

void SortListView::slotContextMenuRequested(SortListViewItem* item, const QPoint& pos, int column)
{
    emit contextMenuRequested(item, pos, column);
}

void SortListView::slotExpanded(QTreeWidgetItem*)
{
    if (columnWidth(0) < sizeHintForColumn(0))
        resizeColumnToContents(0);
}

void SortListView::slotCollapsed(QTreeWidgetItem*)
{
}

void SortListView::slotHeaderClicked(int section)
{
    if (m_nSortColumn < 0 || section < 0 || section >= columnCount())
        return;
    Qt::SortOrder order = Qt::AscendingOrder;
    if (section == m_nSortColumn)
        order = m_eSortOrder == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    sortByColumn(section, order);
}

void SortListView::slotHeaderContextMenuRequested(const QPoint& pos)
{
    if (columnCount() < 2)
        return;
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("columnsMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QTreeWidgetItem* titles = headerItem();
    for (int column = 0; column < columnCount(); ++column) {
        QAction* action = menu->addAction(titles->text(column));
        action->setCheckable(true);
        action->setChecked(!isColumnHidden(column));
        action->setEnabled(column > 0);
        connect(action, &QAction::toggled, this, [this, column](bool shown) { setColumnHidden(column, !shown); });
    }
    menu->popup(header()->mapToGlobal(pos));
}

void SortListView::slotSelectionChanged()
{
}

void SortListView::contextMenuEvent(QContextMenuEvent* event)
{
    QTreeWidgetItem* item = nullptr;
    int column = -1;
    QPoint globalPos = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        item = currentItem();
        column = currentColumn();
        if (item) {
            const QRect rect = visualItemRect(item);
            globalPos = viewport()->mapToGlobal(rect.center());
        }
    } else {
        // The event comes from the viewport, in its coordinates.
        item = itemAt(event->pos());
        column = columnAt(event->pos().x());
    }
    slotContextMenuRequested(dynamic_cast<SortListViewItem*>(item), globalPos, column);
    event->accept();
}

void SortListView::showEvent(QShowEvent* event)
{
    sortIfPending();
    QTreeWidget::showEvent(event);
}

void SortListView::keyPressEvent(QKeyEvent* event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && state() != EditingState &&
        currentItem()) {
        slotDoubleClicked(currentItem(), currentColumn());
    }
    QTreeWidget::keyPressEvent(event);
}

void SortListView::scheduleSort()
{
    if (m_nSortColumn < 0 || m_bSortPending)
        return;
    m_bSortPending = true;
    QMetaObject::invokeMethod(this, "sortIfPending", Qt::QueuedConnection);
}

void SortListView::sortIfPending()
{
    if (m_bSortPending && m_nSortColumn >= 0)
        sortByColumn(m_nSortColumn, m_eSortOrder);
    m_bSortPending = false;
}

// ---------------------------------------------------------------------------------------------------

SortListViewItem::SortListViewItem(QTreeWidget* parent, const QStringList& texts)
    : QTreeWidgetItem(texts, UserType)
{
    if (parent)
        parent->insertTopLevelItem(0, this);
}

SortListViewItem::SortListViewItem(QTreeWidgetItem* parent, const QStringList& texts)
    : QTreeWidgetItem(texts, UserType)
{
    if (parent)
        parent->insertChild(0, this);
}

SortListViewItem::~SortListViewItem() = default;

bool SortListViewItem::operator<(const QTreeWidgetItem& other) const
{
    int column = g_nChildSortColumn;
    if (column < 0)
        column = treeWidget() ? treeWidget()->sortColumn() : 0;
    const QString mine = text(column);
    const QString theirs = other.text(column);

    // Numbers come before words, so that the order stays transitive across the two kinds.
    double a = 0;
    double b = 0;
    const bool mineIsNumber = readNumber(mine, a);
    const bool theirsIsNumber = readNumber(theirs, b);
    if (mineIsNumber != theirsIsNumber)
        return mineIsNumber;
    if (mineIsNumber && a != b)
        return a < b;
    const int natural = plinthor::naturalCompare(mine, theirs);
    if (natural != 0)
        return natural < 0;
    return mine < theirs;
}

void SortListViewItem::activate()
{
}

void SortListViewItem::setOpen(bool open)
{
    setExpanded(open);
}

void SortListViewItem::sortChildItems(int column, bool ascending)
{
    const int previous = g_nChildSortColumn;
    g_nChildSortColumn = column;
    sortChildren(column, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
    g_nChildSortColumn = previous;
}

// ---------------------------------------------------------------------------------------------------

CheckSortListViewItem::CheckSortListViewItem(QTreeWidget* parent, QString text0, QString text1, QString text2,
                                             QString text3, QString text4, QString text5, QString text6,
                                             QString text7)
    : SortListViewItem(parent)
{
    const QString texts[] = {text1, text2, text3, text4, text5, text6, text7};
    for (int column = 1; column <= 7; ++column) {
        if (!texts[column - 1].isEmpty())
            setText(column, texts[column - 1]);
    }
    // The box draws the first text as its label; the item's own copy stays for sorting, unpainted.
    setForeground(0, QBrush(Qt::transparent));
    m_pCheckBox = new QCheckBox(text0);
    // Unchecking a button outside a group makes Qt look through every button beside it for an
    // exclusive partner: with thousands of rows in one viewport each mark would cost them all. A group
    // of its own, not exclusive, answers at once and changes nothing else.
    auto* alone = new QButtonGroup(m_pCheckBox);
    alone->setExclusive(false);
    alone->addButton(m_pCheckBox);
    setText(0, text0);
    if (QTreeWidget* view = treeWidget())
        view->setItemWidget(this, 0, m_pCheckBox);
}

CheckSortListViewItem::~CheckSortListViewItem()
{
    // A box that never reached a view has no parent to delete it.
    if (m_pCheckBox && !m_pCheckBox->parent())
        delete m_pCheckBox.data();
}

void CheckSortListViewItem::setOn(bool on)
{
    if (m_pCheckBox)
        m_pCheckBox->setChecked(on);
}

bool CheckSortListViewItem::isOn() const
{
    return m_pCheckBox && m_pCheckBox->isChecked();
}

QCheckBox* CheckSortListViewItem::GetCheckBox() const
{
    return m_pCheckBox.data();
}

void CheckSortListViewItem::activate()
{
    if (m_pCheckBox && m_pCheckBox->isEnabled())
        m_pCheckBox->click();
}

void CheckSortListViewItem::setData(int column, int role, const QVariant& value)
{
    SortListViewItem::setData(column, role, value);
    if (column == 0 && (role == Qt::DisplayRole || role == Qt::EditRole) && m_pCheckBox)
        m_pCheckBox->setText(value.toString());
}
