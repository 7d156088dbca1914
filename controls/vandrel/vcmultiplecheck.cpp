#include <vandrel/vcmultiplecheck.h>

#include <vandrel/binding/binding.h>

#include <QCheckBox>
#include <QHeaderView>
#include <QPointer>

#include <algorithm>

namespace {

// The entry of \a log with \a sequence; the log's sequences run on without gaps, so it is found by
// its distance from the oldest one, else searched for.
const values::MultiSelectionChange* entryAt(const values::MultiSelectionChangeLog* log, unsigned long long sequence)
{
    const int count = log->GetCount();
    const unsigned long long offset = sequence - log->GetAt(0).sequence;
    if (offset < static_cast<unsigned long long>(count) && log->GetAt(int(offset)).sequence == sequence)
        return &log->GetAt(int(offset));
    int lo = 0;
    int hi = count;
    while (lo < hi) {
        const int mid = lo + (hi - lo) / 2;
        if (log->GetAt(mid).sequence < sequence)
            lo = mid + 1;
        else
            hi = mid;
    }
    return lo < count ? &log->GetAt(lo) : nullptr;
}

} // namespace

VCMultipleCheck::VCMultipleCheck(QWidget* parent, const char* name)
    : SortListView(parent, name)
    , m_pCheckedStringVector(nullptr)
    , m_pMultiSelection(nullptr)
    , m_ullChangeLogIndex(0)
    , m_bFollowingValue(false)
{
    addColumn(tr("Name"));
    header()->hide();
    setAllColumnsShowFocus(true);
    // Rows stay in the order they are made, which is the value's.
    setSorting(-1, Qt::AscendingOrder);
    setEnabled(false);
    // A row that leaves the list, by a clear of this list's own or by the application's hand, leaves
    // an empty place behind, never a freed row.
    m_rowsReset = connect(model(), &QAbstractItemModel::modelAboutToBeReset, this, [this] { rowsLeaving(0, -1); });
    m_rowsRemoved = connect(model(), &QAbstractItemModel::rowsAboutToBeRemoved, this,
                            [this](const QModelIndex& parent, int first, int last) {
                                if (!parent.isValid())
                                    rowsLeaving(first, last);
                            });
}

VCMultipleCheck::~VCMultipleCheck()
{
    DetachValue(m_pCheckedStringVector, this);
    DetachValue(m_pMultiSelection, this);
    // The rows and boxes outlive this part of the list; none may call into it from here on.
    disconnect(m_rowsReset);
    disconnect(m_rowsRemoved);
    for (QCheckBox* box : viewport()->findChildren<QCheckBox*>(QString(), Qt::FindDirectChildrenOnly))
        disconnect(box, nullptr, this, nullptr);
}

bool VCMultipleCheck::SetCheckedStringVector_ValuePath(const QString& path)
{
    DetachValue(m_pCheckedStringVector, this);
    DetachValue(m_pMultiSelection, this);
    // The rows stay on screen but belong to no value any more: they write nothing and no journal entry
    // of the next value finds them. The next value's journal is read from its start.
    m_vecRowKeys.clear();
    m_mapKeyRow.clear();
    m_mapBoxRow.clear();
    m_ullChangeLogIndex = 0;

    m_pCheckedStringVector = FindAndAttach<values::CheckedStringVector>(path, nullptr, this);
    if (m_pCheckedStringVector) {
        SyncObserver(m_pCheckedStringVector, this);
        return true;
    }
    m_pMultiSelection = FindAndAttach<values::IValueMultiSelection>(path, nullptr, this);
    if (!m_pMultiSelection)
        return false;
    if (m_pMultiSelection->GetSelectionMode() == 1) {
        // A single choice belongs to a combo box.
        DetachValue(m_pMultiSelection, this);
        return false;
    }
    SyncObserver(m_pMultiSelection, this);
    return true;
}

void VCMultipleCheck::Update(Observable* source, TChangeCode code)
{
    if (code == StateChanged) {
        if (source == ObservableOf(m_pCheckedStringVector)) {
            ApplyValueState(m_pCheckedStringVector, this);
            return;
        }
        if (source == ObservableOf(m_pMultiSelection)) {
            ApplyValueState(m_pMultiSelection, this);
            return;
        }
    }
    if (code == ValueDestroyed) {
        ForgetDestroyedValue(m_pCheckedStringVector, source);
        ForgetDestroyedValue(m_pMultiSelection, source);
        return;
    }

    if (m_pCheckedStringVector && source == ObservableOf(m_pCheckedStringVector)) {
        // Whatever changed, the rows are made anew.
        m_vecCheckedStrings = m_pCheckedStringVector->GetValue();
        SetVector();
        return;
    }
    if (!m_pMultiSelection || source != ObservableOf(m_pMultiSelection))
        return;

    const QPointer<QObject> alive(this);
    // An entry applied may change the value, the journal or the binding: everything is asked anew.
    while (m_pMultiSelection) {
        const values::MultiSelectionChangeLog* log = m_pMultiSelection->GetChangeLog();
        if (!log || log->GetCount() == 0 || m_ullChangeLogIndex >= log->GetNextSequence())
            return;
        if (m_ullChangeLogIndex < log->GetAt(0).sequence) {
            // Entries were lost: only a rebuild shows the value as it is.
            m_ullChangeLogIndex = log->GetNextSequence();
            SetVector();
            return;
        }
        const values::MultiSelectionChange* entry = entryAt(log, m_ullChangeLogIndex);
        if (!entry)
            return;
        const char kind = static_cast<char>(entry->kind);
        const unsigned long key = entry->key;
        ++m_ullChangeLogIndex;
        // A rebuild reads the value as it stands, which already holds what the later entries tell:
        // they are passed over, so that items added in one go rebuild the rows once, not once each.
        if (entry->kind == values::MultiSelectionChange::ItemsRebuilt || entry->kind == values::MultiSelectionChange::ItemAddedKind)
            m_ullChangeLogIndex = log->GetNextSequence();
        ApplyChange(kind, key);
        if (!alive)
            return;
    }
}

void VCMultipleCheck::slotStateChanged(int)
{
    // A box set from the value shows what the value holds already.
    if (m_bFollowingValue || (!m_pCheckedStringVector && !m_pMultiSelection))
        return;
    // A row's box names its row; a call from elsewhere reads them all.
    int row = -1;
    if (const QObject* box = sender()) {
        const auto it = m_mapBoxRow.constFind(box);
        if (it != m_mapBoxRow.constEnd())
            row = it.value();
    }
    writeRows(row);
}

void VCMultipleCheck::SetVector()
{
    QTreeWidget::clear();
    m_vecItems.clear();
    m_vecRowKeys.clear();
    m_mapKeyRow.clear();
    const QString none;

    if (m_pCheckedStringVector && !m_vecCheckedStrings.empty()) {
        const int count = int(m_vecCheckedStrings.size());
        m_vecItems.assign(size_t(count), nullptr);
        for (int i = count - 1; i >= 0; --i) {
            auto* row = new CheckSortListViewItem(nullptr, m_vecCheckedStrings[size_t(i)].GetString(), none, none, none,
                                                  none, none, none, none);
            m_vecItems[size_t(i)] = row;
            QCheckBox* box = row->GetCheckBox();
            box->setChecked(m_vecCheckedStrings[size_t(i)].GetChecked());
            // Connected only now, so that showing the mark writes nothing.
            connect(box, SIGNAL(stateChanged(int)), this, SLOT(slotStateChanged(int)));
        }
        showRows();
        return;
    }
    if (!m_pMultiSelection)
        return;

    const int count = m_pMultiSelection->GetKeyCount();
    std::vector<unsigned int> keys;
    keys.reserve(size_t(std::max(count, 0)));
    m_pMultiSelection->GetKeys(keys);
    std::sort(keys.begin(), keys.end());
    m_vecItems.assign(keys.size(), nullptr);
    m_vecRowKeys = keys;
    m_mapKeyRow.reserve(int(keys.size()));
    const values::ValueBase* base = m_pMultiSelection->GetValueBase();
    for (int i = int(keys.size()) - 1; i >= 0; --i) {
        m_mapKeyRow.insert(keys[size_t(i)], i);
        values::IMultiSelectionItem* item = m_pMultiSelection->GetItemByKey(int(keys[size_t(i)]));
        if (!item)
            continue;
        auto* row = new CheckSortListViewItem(nullptr, TranslateItemName(base, item->GetName()), none, none, none, none,
                                              none, none, none);
        m_vecItems[size_t(i)] = row;
        QCheckBox* box = row->GetCheckBox();
        box->setChecked(item->IsChecked());
        box->setEnabled(item->IsEnabled());
        connect(box, SIGNAL(stateChanged(int)), this, SLOT(slotStateChanged(int)));
    }
    showRows();
}

// Puts the rows made into the list in one insertion, in their order, each with its box. Made one by
// one at the top, every row would move the places of all the boxes below it: quadratic in the rows.
void VCMultipleCheck::showRows()
{
    QList<QTreeWidgetItem*> rows;
    rows.reserve(int(m_vecItems.size()));
    for (CheckSortListViewItem* row : m_vecItems) {
        if (row)
            rows << row;
    }
    insertTopLevelItems(0, rows);
    m_mapBoxRow.reserve(rows.size());
    m_mapItemRow.reserve(rows.size());
    for (int i = 0; i < int(m_vecItems.size()); ++i) {
        CheckSortListViewItem* row = m_vecItems[size_t(i)];
        if (!row)
            continue;
        setItemWidget(row, 0, row->GetCheckBox());
        m_mapBoxRow.insert(row->GetCheckBox(), i);
        m_mapItemRow.insert(row, i);
    }
}

void VCMultipleCheck::ApplyChange(char kind, unsigned long key)
{
    if (!m_pMultiSelection)
        return;
    switch (static_cast<unsigned char>(kind)) {
    case values::MultiSelectionChange::ItemsClearedKind:
        // The rows go until the next rebuild; their places stay, empty (rowsLeaving), so that a later
        // entry for one of their keys finds nothing to change instead of a freed row.
        QTreeWidget::clear();
        return;
    case values::MultiSelectionChange::ItemsRebuilt:
    case values::MultiSelectionChange::ItemAddedKind:
        SetVector();
        return;
    case values::MultiSelectionChange::ItemEnabledKind:
    case values::MultiSelectionChange::ItemCheckedKind: {
        const int row = Key2Index(static_cast<unsigned int>(key));
        if (row < 0) {
            // An item the rows lack: a rebuild reads it together with its state.
            SetVector();
            return;
        }
        QCheckBox* box = boxOfRow(row);
        if (!box)
            return;
        // The box follows the value; its signal must not write the value back.
        const QPointer<QObject> alive(this);
        const bool following = m_bFollowingValue;
        m_bFollowingValue = true;
        if (kind == values::MultiSelectionChange::ItemCheckedKind)
            box->setChecked(m_pMultiSelection->IsItemChecked(int(key)));
        else
            box->setEnabled(m_pMultiSelection->IsItemEnabled(int(key)));
        if (alive)
            m_bFollowingValue = following;
        return;
    }
    default:
        return;
    }
}

int VCMultipleCheck::Key2Index(unsigned int key)
{
    const auto it = m_mapKeyRow.constFind(key);
    return it == m_mapKeyRow.constEnd() ? -1 : it.value();
}

QCheckBox* VCMultipleCheck::boxOfRow(int row) const
{
    if (row < 0 || size_t(row) >= m_vecItems.size() || !m_vecItems[size_t(row)])
        return nullptr;
    return m_vecItems[size_t(row)]->GetCheckBox();
}

// Empties the places of the top-level rows \a first to \a last, or of every row when \a last < \a first.
void VCMultipleCheck::rowsLeaving(int first, int last)
{
    if (last < first) {
        std::fill(m_vecItems.begin(), m_vecItems.end(), nullptr);
        m_mapBoxRow.clear();
        m_mapItemRow.clear();
        return;
    }
    for (int index = first; index <= last; ++index) {
        const auto it = m_mapItemRow.find(topLevelItem(index));
        if (it == m_mapItemRow.end())
            continue;
        // The item may be half destroyed already: only its place is emptied. Its box, should it still
        // call, finds an empty place and writes nothing.
        m_vecItems[size_t(it.value())] = nullptr;
        m_mapItemRow.erase(it);
    }
}

// Writes the check mark of \a single, or of every row for -1, as one undo recording. False when the
// list did not outlive a write.
bool VCMultipleCheck::writeRows(int single)
{
    GuiUndoRecordingHelper span(&m_undoSwitch, QString());

    if (m_pCheckedStringVector) {
        auto readRow = [this](int row) {
            QCheckBox* box = boxOfRow(row);
            if (box && size_t(row) < m_vecCheckedStrings.size())
                m_vecCheckedStrings[size_t(row)].SetChecked(box->isChecked());
        };
        if (single >= 0) {
            readRow(single);
        } else {
            for (int row = int(m_vecItems.size()) - 1; row >= 0; --row)
                readRow(row);
        }
        // A copy: an observer's own write of the vector replaces the working copy while this one runs.
        const std::vector<values::CheckedString> written = m_vecCheckedStrings;
        values::CheckedStringVector* vector = m_pCheckedStringVector;
        return SurvivesWrite(this, [&] { vector->SetValue(written, this); });
    }

    values::IValueMultiSelection* multi = m_pMultiSelection;
    if (!multi)
        return true;
    // This list's own check marks need not come back through the journal; when it had read every entry
    // before, the entries of these writes are passed over, so that clicks never push it behind the
    // journal's end into a rebuild.
    const values::MultiSelectionChangeLog* log = multi->GetChangeLog();
    const bool readAll = log && m_ullChangeLogIndex == log->GetNextSequence();
    auto writeRow = [this](int row) {
        QCheckBox* box = boxOfRow(row);
        if (!box || size_t(row) >= m_vecRowKeys.size())
            return true;
        const int key = int(m_vecRowKeys[size_t(row)]);
        const bool checked = box->isChecked();
        values::IValueMultiSelection* value = m_pMultiSelection;
        return SurvivesWrite(this, [&] { value->SetItemChecked(key, checked, this); });
    };
    if (single >= 0) {
        if (!writeRow(single))
            return false;
    } else {
        // An observer may rebuild the rows or take the value while this runs: both are asked anew.
        for (int row = int(m_vecItems.size()) - 1; row >= 0 && m_pMultiSelection == multi; --row) {
            if (!writeRow(row))
                return false;
        }
    }
    // Only check marks are passed over; anything else the writes brought is read as usual.
    unsigned long long next = m_ullChangeLogIndex;
    if (readAll && m_pMultiSelection == multi
        && ScanChangeLog(multi->GetChangeLog(), next, values::MultiSelectionChange::ItemCheckedKind) == 1)
        m_ullChangeLogIndex = next;
    return true;
}
