#include "valuetreeview.h"

#include <values/values.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QAbstractItemView>
#include <QItemSelectionModel>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace {

Observable* observableOf(values::ValueBase* value)
{
    return static_cast<Observable*>(value);
}

QString number(double v)
{
    return QString::number(v, 'g', 10);
}

QString typeText(values::ValueBase* value)
{
    if (auto* numeric = dynamic_cast<values::NumericValueBase*>(value)) {
        const bool integral = dynamic_cast<values::IntNumeric*>(value) != nullptr;
        return QStringLiteral("%1 %2…%3")
            .arg(integral ? QStringLiteral("int") : QStringLiteral("double"), number(numeric->GetMinimum()),
                 number(numeric->GetMaximum()));
    }
    if (dynamic_cast<values::BoolValue*>(value))
        return QStringLiteral("bool");
    if (dynamic_cast<values::IntValue*>(value) || dynamic_cast<values::Int64Value*>(value))
        return QStringLiteral("int");
    if (dynamic_cast<values::StringValue*>(value))
        return QStringLiteral("text");
    if (auto* selection = dynamic_cast<values::ValueSelection*>(value))
        return ValueTreeModel::tr("choice of %1").arg(selection->GetItemCount());
    if (auto* set = dynamic_cast<values::MultiSelectionValueBase*>(value))
        return ValueTreeModel::tr("set of %1").arg(set->GetKeyCount());
    return QStringLiteral("value");
}

QString detailText(values::ValueBase* value)
{
    if (auto* numeric = dynamic_cast<values::NumericValueBase*>(value)) {
        return ValueTreeModel::tr("limits %1 … %2, step %3")
            .arg(number(numeric->GetMinimum()), number(numeric->GetMaximum()), number(numeric->GetStep()));
    }
    if (auto* selection = dynamic_cast<values::ValueSelection*>(value)) {
        QStringList names;
        for (int i = 0; i < selection->GetItemCount(); ++i)
            names << selection->GetItemAt(i)->GetName();
        return ValueTreeModel::tr("items: %1").arg(names.join(QStringLiteral(", ")));
    }
    if (auto* set = dynamic_cast<values::MultiSelectionValueBase*>(value)) {
        std::vector<unsigned int> keys;
        set->GetKeys(keys);
        std::sort(keys.begin(), keys.end());
        QStringList names;
        for (unsigned int key : keys)
            names << set->GetItemByKey(int(key))->GetName();
        return ValueTreeModel::tr("items: %1").arg(names.join(QStringLiteral(", ")));
    }
    return QString();
}

QIcon stateIcon(int state)
{
    const QColor color = state == Enabled ? QColor(0x2e, 0xa0, 0x43) : state == Disabled ? QColor(0x9a, 0xa0, 0xa6)
                                                                                          : QColor(0xd0, 0x3b, 0x2f);
    QPixmap pixmap(12, 12);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(QRectF(1.5, 1.5, 9, 9));
    return QIcon(pixmap);
}

/// Cuts a path at its beginning, which every row shares, instead of at its leaf.
class PathDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->textElideMode = Qt::ElideLeft;
    }
};

} // namespace

// ---------------------------------------------------------------------------------------------------

ValueTreeModel::ValueTreeModel(const QString& root, QObject* parent)
    : QAbstractTableModel(parent)
    , m_strRoot(root)
{
    for (int state : {int(Enabled), int(Disabled), int(Removed)})
        m_stateIcons[state] = stateIcon(state);
    m_wallClock.start();
    m_clock = [this] { return m_wallClock.elapsed(); };
    // Coarse is smooth enough for a glow and lets the system batch the wake-ups.
    m_fadeTimer.setTimerType(Qt::CoarseTimer);
    m_fadeTimer.setInterval(40);
    connect(&m_fadeTimer, &QTimer::timeout, this, &ValueTreeModel::fadeTick);
    rescan();
}

ValueTreeModel::~ValueTreeModel()
{
    for (const Row& row : m_rows) {
        if (row.value)
            observableOf(row.value)->Detach(this);
    }
}

int ValueTreeModel::rescan()
{
    values::Tree* tree = values::Tree::Instance();
    int added = 0;
    const QStringList paths = tree->PathsUnder(m_strRoot);
    for (const QString& path : paths) {
        values::ValueBase* value = tree->Find(path);
        if (!value || m_index.contains(observableOf(value)))
            continue;
        const int removed = rowOfPath(path);
        if (removed >= 0 && !m_rows[size_t(removed)].value) {
            // Back at the path of a removed row: the row takes it on.
            m_rows[size_t(removed)].value = value;
            m_rows[size_t(removed)].changedAt = now();
            reindex();
            observableOf(value)->Attach(this);
            Q_EMIT dataChanged(index(removed, 0), index(removed, ColumnCount - 1));
            if (m_nFadeMs > 0 && !m_fadeTimer.isActive())
                m_fadeTimer.start();
        } else {
            insertRow(path, value);
        }
        ++added;
    }
    return added;
}

void ValueTreeModel::insertRow(const QString& path, values::ValueBase* value)
{
    const auto at = std::lower_bound(m_rows.begin(), m_rows.end(), path,
                                     [](const Row& row, const QString& p) { return row.path < p; });
    const int row = int(at - m_rows.begin());
    beginInsertRows(QModelIndex(), row, row);
    m_rows.insert(at, Row{path, value, -1});
    reindex();
    observableOf(value)->Attach(this);
    endInsertRows();
}

void ValueTreeModel::markRemoved(const Observable* source)
{
    const int row = m_index.value(source, -1);
    if (row < 0)
        return;
    m_rows[size_t(row)].value = nullptr;
    m_rows[size_t(row)].changedAt = now();
    reindex();
    const QString path = m_rows[size_t(row)].path;
    Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
    if (m_nFadeMs > 0 && !m_fadeTimer.isActive())
        m_fadeTimer.start();
    Q_EMIT changeArrived(path, int(ValueDestroyed));
}

void ValueTreeModel::reindex()
{
    m_index.clear();
    for (int i = 0; i < int(m_rows.size()); ++i) {
        if (m_rows[size_t(i)].value)
            m_index.insert(observableOf(m_rows[size_t(i)].value), i);
    }
}

int ValueTreeModel::rowOfPath(const QString& path) const
{
    const auto at = std::lower_bound(m_rows.begin(), m_rows.end(), path,
                                     [](const Row& row, const QString& p) { return row.path < p; });
    return at != m_rows.end() && at->path == path ? int(at - m_rows.begin()) : -1;
}

QString ValueTreeModel::pathAt(int row) const
{
    return row >= 0 && row < int(m_rows.size()) ? m_rows[size_t(row)].path : QString();
}

values::ValueBase* ValueTreeModel::valueAt(int row) const
{
    return row >= 0 && row < int(m_rows.size()) ? m_rows[size_t(row)].value : nullptr;
}

bool ValueTreeModel::isRemovedRow(int row) const
{
    return row >= 0 && row < int(m_rows.size()) && !m_rows[size_t(row)].value;
}

QStringList ValueTreeModel::removedPaths() const
{
    QStringList paths;
    for (const Row& row : m_rows) {
        if (!row.value)
            paths << row.path;
    }
    return paths;
}

void ValueTreeModel::addRemovedRow(const QString& path)
{
    if (rowOfPath(path) >= 0 || values::Tree::Instance()->Find(path))
        return;
    const auto at = std::lower_bound(m_rows.begin(), m_rows.end(), path,
                                     [](const Row& row, const QString& p) { return row.path < p; });
    const int row = int(at - m_rows.begin());
    beginInsertRows(QModelIndex(), row, row);
    m_rows.insert(at, Row{path, nullptr, -1});
    reindex();
    endInsertRows();
}

bool ValueTreeModel::switchState(int row, int state)
{
    if (row < 0 || row >= int(m_rows.size()) || (state != Enabled && state != Disabled && state != Removed))
        return false;
    const QString path = m_rows[size_t(row)].path;
    if (isRemovedRow(row)) {
        if (state == Removed || !m_restorer || !m_restorer(path))
            return false;
        rescan();
        values::ValueBase* back = valueAt(rowOfPath(path));
        if (!back)
            return false;
        if (state == Disabled)
            back->SetState(Disabled, nullptr);
        Q_EMIT stateSwitched(path, state);
        return true;
    }
    values::ValueBase* value = valueAt(row);
    if (state == Removed) {
        Q_EMIT aboutToRemove(value, path);
        // The tree announces Removed and destroys the value; ValueDestroyed then marks the row.
        if (!values::Tree::Instance()->Remove(path))
            value->SetState(Removed, nullptr); // not in the tree (any more): the state is all there is
    } else {
        value->SetState(state, nullptr);
    }
    Q_EMIT stateSwitched(path, state);
    return true;
}

qreal ValueTreeModel::heat(int row) const
{
    if (row < 0 || row >= int(m_rows.size()) || m_rows[size_t(row)].changedAt < 0 || m_nFadeMs <= 0)
        return 0.0;
    const qint64 age = now() - m_rows[size_t(row)].changedAt;
    return qBound(0.0, 1.0 - qreal(age) / m_nFadeMs, 1.0);
}

void ValueTreeModel::setFadeDuration(int ms)
{
    m_nFadeMs = qMax(0, ms);
}

void ValueTreeModel::setClock(std::function<qint64()> clock)
{
    m_clock = clock ? std::move(clock) : std::function<qint64()>([this] { return m_wallClock.elapsed(); });
    // Times taken from the old clock mean nothing to the new one.
    for (Row& row : m_rows)
        row.changedAt = -1;
}

QString ValueTreeModel::stateName(int state)
{
    switch (state) {
    case Enabled:
        return tr("Enabled");
    case Disabled:
        return tr("Disabled");
    case Removed:
        return tr("Removed");
    default:
        return QString::number(state);
    }
}

int ValueTreeModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ValueTreeModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ValueTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= int(m_rows.size()))
        return QVariant();
    const Row& row = m_rows[size_t(index.row())];
    if (!row.value)
        return removedData(row, index.column(), role);
    const int state = row.value->GetState();

    switch (role) {
    case Qt::DisplayRole:
        switch (index.column()) {
        case PathColumn:
            return row.path;
        case ValueColumn:
            return row.value->GetValueString();
        case TypeColumn:
            return typeText(row.value);
        case StateColumn:
            return stateName(state);
        }
        break;
    case Qt::EditRole:
        if (index.column() == ValueColumn)
            return row.value->GetValueString();
        if (index.column() == StateColumn)
            return state;
        break;
    case Qt::ToolTipRole: {
        const QString detail = detailText(row.value);
        return detail.isEmpty() ? row.path : row.path + QLatin1Char('\n') + detail;
    }
    case Qt::DecorationRole:
        if (index.column() == StateColumn && state >= 0 && state < 3)
            return m_stateIcons[state];
        break;
    case Qt::ForegroundRole:
        if (state == Disabled)
            return QApplication::palette().color(QPalette::Disabled, QPalette::Text);
        if (state == Removed)
            return QColor(0xb0, 0x30, 0x25);
        break;
    case Qt::BackgroundRole: {
        const qreal h = heat(index.row());
        if (h > 0.0)
            return QColor(255, 196, 40, int(170 * h));
        break;
    }
    case StateRole:
        return state;
    case HeatRole:
        return heat(index.row());
    case PathRole:
        return row.path;
    }
    return QVariant();
}

QVariant ValueTreeModel::removedData(const Row& row, int column, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        if (column == PathColumn)
            return row.path;
        if (column == StateColumn)
            return stateName(Removed);
        return QString();
    case Qt::EditRole:
        return column == StateColumn ? QVariant(int(Removed)) : QVariant();
    case Qt::ToolTipRole:
        return tr("%1\nRemoved from the tree: Restore brings it back as the instrument makes it").arg(row.path);
    case Qt::DecorationRole:
        return column == StateColumn ? QVariant(m_stateIcons[Removed]) : QVariant();
    case Qt::ForegroundRole:
        return QColor(0xb0, 0x30, 0x25);
    case Qt::BackgroundRole: {
        const qreal h = heat(rowOfPath(row.path));
        return h > 0.0 ? QVariant(QColor(255, 196, 40, int(170 * h))) : QVariant();
    }
    case StateRole:
        return int(Removed);
    case HeatRole:
        return heat(rowOfPath(row.path));
    case PathRole:
        return row.path;
    }
    return QVariant();
}

QVariant ValueTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case PathColumn:
        return tr("Path");
    case ValueColumn:
        return tr("Value");
    case TypeColumn:
        return tr("Type");
    case StateColumn:
        return tr("State");
    }
    return QVariant();
}

Qt::ItemFlags ValueTreeModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    if (!index.isValid() || index.row() >= int(m_rows.size()))
        return f;
    if (index.column() == StateColumn)
        f |= Qt::ItemIsEditable;
    // As for a control: a value that is not enabled cannot be edited now.
    const values::ValueBase* value = m_rows[size_t(index.row())].value;
    if (index.column() == ValueColumn && value && value->GetState() == Enabled)
        f |= Qt::ItemIsEditable;
    return f;
}

bool ValueTreeModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || index.row() >= int(m_rows.size()))
        return false;
    if (index.column() == StateColumn) {
        bool ok = false;
        const int state = value.toInt(&ok);
        return ok && switchState(index.row(), state);
    }
    if (index.column() == ValueColumn && (flags(index) & Qt::ItemIsEditable)) {
        // Null originator: the model hears its own write like any other and refreshes the row then.
        return m_rows[size_t(index.row())].value->SetValueFromText(value.toString(), nullptr);
    }
    return false;
}

void ValueTreeModel::Update(Observable* source, TChangeCode code)
{
    const auto it = m_index.constFind(source);
    if (it == m_index.constEnd())
        return;
    if (code == ValueDestroyed) {
        // The value is half gone: no Detach and no reading it; the row stays as Removed.
        markRemoved(source);
        return;
    }
    switch (code) {
    case StateChanged:
    case ValueChanged:
    case RangeChanged:
    case ItemsChanged:
    case ItemsCleared:
    case ItemAdded:
        break;
    default:
        return; // a pending number, or a code this view does not show
    }
    const int row = it.value();
    m_rows[size_t(row)].changedAt = now();
    // A copy: a receiver may remove values, and rows with them.
    const QString path = m_rows[size_t(row)].path;
    Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
    if (m_nFadeMs > 0 && !m_fadeTimer.isActive())
        m_fadeTimer.start();
    Q_EMIT changeArrived(path, int(code));
}

void ValueTreeModel::fadeTick()
{
    const qint64 t = now();
    bool glowing = false;
    for (int i = 0; i < int(m_rows.size()); ++i) {
        Row& row = m_rows[size_t(i)];
        if (row.changedAt < 0)
            continue;
        if (t - row.changedAt >= m_nFadeMs)
            row.changedAt = -1;
        else
            glowing = true;
        Q_EMIT dataChanged(index(i, 0), index(i, ColumnCount - 1), {Qt::BackgroundRole, HeatRole});
    }
    if (!glowing)
        m_fadeTimer.stop();
}

// ---------------------------------------------------------------------------------------------------

QWidget* ValueStateDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const
{
    auto* combo = new QComboBox(parent);
    for (int state : {int(Enabled), int(Disabled), int(Removed)})
        combo->addItem(stateIcon(state), ValueTreeModel::stateName(state), state);
    combo->view()->setMinimumWidth(combo->sizeHint().width());
    // Choosing is the edit: commit at once instead of waiting for the focus to leave.
    auto* self = const_cast<ValueStateDelegate*>(this);
    connect(combo, QOverload<int>::of(&QComboBox::activated), self, [self, combo] {
        Q_EMIT self->commitData(combo);
        Q_EMIT self->closeEditor(combo);
    });
    return combo;
}

void ValueStateDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    auto* combo = static_cast<QComboBox*>(editor);
    combo->setCurrentIndex(combo->findData(index.data(ValueTreeModel::StateRole)));
}

void ValueStateDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    auto* combo = static_cast<QComboBox*>(editor);
    if (combo->currentData().toInt() != index.data(ValueTreeModel::StateRole).toInt())
        model->setData(index, combo->currentData());
}

// ---------------------------------------------------------------------------------------------------

ValueTreeView::ValueTreeView(const QString& root, QWidget* parent)
    : QWidget(parent)
    , m_pModel(new ValueTreeModel(root, this))
    , m_pTable(new QTableView(this))
    , m_pButtons(new QHBoxLayout)
    , m_pEnable(new QPushButton(stateIcon(Enabled), tr("&Enable"), this))
    , m_pDisable(new QPushButton(stateIcon(Disabled), tr("&Disable"), this))
    , m_pRemove(new QPushButton(stateIcon(Removed), tr("&Remove"), this))
{
    m_pTable->setObjectName(QStringLiteral("valueTable"));
    m_pTable->setModel(m_pModel);
    m_pTable->setItemDelegateForColumn(ValueTreeModel::StateColumn, new ValueStateDelegate(m_pTable));
    m_pTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pTable->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_pTable->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked
                              | QAbstractItemView::EditKeyPressed);
    m_pTable->setAlternatingRowColors(true);
    m_pTable->setShowGrid(false);
    m_pTable->setWordWrap(false);
    // A long path keeps its end, where the values differ.
    m_pTable->setItemDelegateForColumn(ValueTreeModel::PathColumn, new PathDelegate(m_pTable));
    m_pTable->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_pTable->setContextMenuPolicy(Qt::CustomContextMenu);
    m_pTable->verticalHeader()->hide();
    m_pTable->verticalHeader()->setDefaultSectionSize(m_pTable->fontMetrics().height() + 10);
    QHeaderView* header = m_pTable->horizontalHeader();
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    // The widths are shared out in fitColumns(): the State column keeps the width of its editor and
    // stays in sight, the others give way.
    header->setSectionResizeMode(ValueTreeModel::PathColumn, QHeaderView::Interactive);
    header->setSectionResizeMode(ValueTreeModel::ValueColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(ValueTreeModel::TypeColumn, QHeaderView::Interactive);
    header->setSectionResizeMode(ValueTreeModel::StateColumn, QHeaderView::Fixed);
    header->setMinimumSectionSize(32);
    QComboBox editor;
    for (int state : {int(Enabled), int(Disabled), int(Removed)})
        editor.addItem(stateIcon(state), ValueTreeModel::stateName(state));
    header->resizeSection(ValueTreeModel::StateColumn, editor.sizeHint().width() + 8);
    m_pTable->viewport()->installEventFilter(this);
    // Room for the state and the least of the other three beside it.
    m_pTable->setMinimumWidth(header->sectionSize(ValueTreeModel::StateColumn) + 3 * header->minimumSectionSize()
                              + m_pTable->style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 2 * m_pTable->frameWidth() + 4);

    m_pEnable->setObjectName(QStringLiteral("enableButton"));
    m_pDisable->setObjectName(QStringLiteral("disableButton"));
    m_pRemove->setObjectName(QStringLiteral("removeButton"));

    m_pEnable->setToolTip(tr("Enable the selected values; removed ones come back as the instrument makes them"));
    m_pDisable->setToolTip(tr("Disable the selected values: their controls grey out"));
    m_pRemove->setToolTip(tr("Remove the selected values from the tree: their controls let go of them"));
    connect(m_pEnable, &QPushButton::clicked, this, [this] { switchSelected(Enabled); });
    connect(m_pDisable, &QPushButton::clicked, this, [this] { switchSelected(Disabled); });
    connect(m_pRemove, &QPushButton::clicked, this, [this] { switchSelected(Removed); });
    m_pButtons->addWidget(m_pEnable);
    m_pButtons->addWidget(m_pDisable);
    m_pButtons->addWidget(m_pRemove);
    m_pButtons->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_pTable, 1);
    layout->addLayout(m_pButtons);

    connect(m_pTable->selectionModel(), &QItemSelectionModel::selectionChanged, this, &ValueTreeView::updateButtons);
    connect(m_pModel, &QAbstractItemModel::rowsRemoved, this, &ValueTreeView::updateButtons);
    connect(m_pModel, &QAbstractItemModel::dataChanged, this, &ValueTreeView::updateButtons);
    connect(m_pTable, &QWidget::customContextMenuRequested, this, &ValueTreeView::showContextMenu);
    updateButtons();
}

void ValueTreeView::addTrailingWidget(QWidget* widget)
{
    m_pButtons->addWidget(widget);
}

void ValueTreeView::rescan()
{
    m_pModel->rescan();
}

void ValueTreeView::switchSelected(int state)
{
    // Paths, not rows: removing a value shifts the rows after it.
    QStringList paths;
    const QModelIndexList rows = m_pTable->selectionModel()->selectedRows();
    for (const QModelIndex& index : rows)
        paths << m_pModel->pathAt(index.row());
    for (const QString& path : qAsConst(paths))
        m_pModel->switchState(m_pModel->rowOfPath(path), state);
}

void ValueTreeView::restoreSelected()
{
    QStringList paths;
    const QModelIndexList rows = m_pTable->selectionModel()->selectedRows();
    for (const QModelIndex& index : rows) {
        if (m_pModel->isRemovedRow(index.row()))
            paths << m_pModel->pathAt(index.row());
    }
    for (const QString& path : qAsConst(paths))
        m_pModel->switchState(m_pModel->rowOfPath(path), Enabled);
}

void ValueTreeView::updateButtons()
{
    const QModelIndexList rows = m_pTable->selectionModel()->selectedRows();
    bool live = false;
    bool removed = false;
    for (const QModelIndex& index : rows)
        (m_pModel->isRemovedRow(index.row()) ? removed : live) = true;
    // Enabling or disabling a removed value restores it first.
    m_pEnable->setEnabled(live || removed);
    m_pDisable->setEnabled(live || removed);
    m_pRemove->setEnabled(live);
}

bool ValueTreeView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_pTable->viewport() && event->type() == QEvent::Resize)
        fitColumns();
    return QWidget::eventFilter(watched, event);
}

void ValueTreeView::fitColumns()
{
    // Path and type take what they need up to a share of the room left beside the state, and the value
    // stretches over the rest, never less than the least section. Nothing scrolls sideways, so the state
    // is always in sight.
    QHeaderView* header = m_pTable->horizontalHeader();
    auto* view = static_cast<QAbstractItemView*>(m_pTable);
    const int least = header->minimumSectionSize();
    const int free = qMax(2 * least, m_pTable->viewport()->width() - header->sectionSize(ValueTreeModel::StateColumn) - least);
    const int type = qBound(least, view->sizeHintForColumn(ValueTreeModel::TypeColumn), free * 25 / 100);
    const int path = qBound(least, view->sizeHintForColumn(ValueTreeModel::PathColumn), free - type);
    header->resizeSection(ValueTreeModel::PathColumn, qMin(path, qMax(least, free * 60 / 100)));
    header->resizeSection(ValueTreeModel::TypeColumn, type);
}

void ValueTreeView::showContextMenu(const QPoint& pos)
{
    const QModelIndex index = m_pTable->indexAt(pos);
    if (!index.isValid())
        return;
    if (!m_pTable->selectionModel()->isRowSelected(index.row(), QModelIndex()))
        m_pTable->selectRow(index.row());
    QMenu menu(this);
    menu.addAction(stateIcon(Enabled), tr("Enable"), this, [this] { switchSelected(Enabled); });
    menu.addAction(stateIcon(Disabled), tr("Disable"), this, [this] { switchSelected(Disabled); });
    menu.addAction(stateIcon(Removed), tr("Remove from the tree"), this, [this] { switchSelected(Removed); });
    if (m_pModel->isRemovedRow(index.row()))
        menu.addAction(tr("Restore as the instrument makes it"), this, &ValueTreeView::restoreSelected);
    menu.addSeparator();
    const QString path = m_pModel->pathAt(index.row());
    menu.addAction(tr("Copy path"), this, [path] { QApplication::clipboard()->setText(path); });
    menu.exec(m_pTable->viewport()->mapToGlobal(pos));
}
