#include <values/multiselection.h>

#include <QStringList>

#include <algorithm>

namespace values {

MultiSelectionChangeLog::MultiSelectionChangeLog(int capacity)
    : m_ring(size_t(qMax(1, capacity)))
{
}

const MultiSelectionChange& MultiSelectionChangeLog::GetAt(int i) const
{
    Q_ASSERT(i >= 0 && i < m_nCount);
    return m_ring[size_t((m_nFirst + i) % int(m_ring.size()))];
}

void MultiSelectionChangeLog::SetCapacity(int capacity)
{
    capacity = qMax(1, capacity);
    std::vector<MultiSelectionChange> ring(static_cast<size_t>(capacity));
    const int keep = qMin(m_nCount, capacity);
    for (int i = 0; i < keep; ++i)
        ring[size_t(i)] = GetAt(m_nCount - keep + i);
    m_ring.swap(ring);
    m_nFirst = 0;
    m_nCount = keep;
}

void MultiSelectionChangeLog::Add(unsigned char kind, quint32 key)
{
    const int capacity = int(m_ring.size());
    MultiSelectionChange change;
    change.sequence = m_nNextSequence++;
    change.kind = kind;
    change.key = key;
    if (m_nCount < capacity) {
        m_ring[size_t((m_nFirst + m_nCount) % capacity)] = change;
        ++m_nCount;
    } else {
        m_ring[size_t(m_nFirst)] = change;
        m_nFirst = (m_nFirst + 1) % capacity;
    }
}

IMultiSelectionItem::~IMultiSelectionItem() = default;
IMultiSelectionSet::~IMultiSelectionSet() = default;
IValueMultiSelection::~IValueMultiSelection() = default;

MultiSelectionValueBase::MultiSelectionValueBase(int selectionMode)
    : m_nSelectionMode(selectionMode)
{
}

MultiSelectionValueBase::~MultiSelectionValueBase()
{
    AnnounceDestruction();
}

MultiSelectionValueBase::Entry* MultiSelectionValueBase::find(unsigned key)
{
    const auto it = m_index.find(key);
    return it == m_index.end() ? nullptr : &m_items[it->second];
}

bool MultiSelectionValueBase::uncheckAllBut(long keep)
{
    // Walks the checked keys only; a copy, since unchecking erases from the set.
    const std::vector<unsigned> checked(m_checked.begin(), m_checked.end());
    bool changed = false;
    for (unsigned key : checked) {
        if (long(key) != keep)
            changed |= setChecked(m_items[m_index[key]], false);
    }
    return changed;
}

bool MultiSelectionValueBase::setChecked(Entry& entry, bool checked)
{
    if (entry.item.IsChecked() == checked)
        return false;
    entry.item.SetChecked(checked);
    if (checked)
        m_checked.insert(entry.key);
    else
        m_checked.erase(entry.key);
    m_log.Add(MultiSelectionChange::ItemCheckedKind, entry.key);
    return true;
}

IMultiSelectionItem* MultiSelectionValueBase::GetItemByKey(int key)
{
    Entry* entry = find(unsigned(key));
    return entry ? &entry->item : nullptr;
}

bool MultiSelectionValueBase::SetItemChecked(int key, bool checked, IObserver* originator)
{
    Entry* entry = find(unsigned(key));
    if (!entry)
        return false;
    UndoStep step(this);
    bool changed = false;
    if (checked && m_nSelectionMode == 1)
        changed |= uncheckAllBut(long(entry->key));
    changed |= setChecked(*entry, checked);
    if (!changed)
        return true;
    step.Done();
    return Notify(ValueChanged, originator);
}

bool MultiSelectionValueBase::IsItemChecked(int key)
{
    const Entry* entry = find(unsigned(key));
    return entry && entry->item.IsChecked();
}

bool MultiSelectionValueBase::IsItemEnabled(int key)
{
    const Entry* entry = find(unsigned(key));
    return entry && entry->item.IsEnabled();
}

void MultiSelectionValueBase::UncheckAll(IObserver* originator)
{
    UndoStep step(this);
    const bool changed = uncheckAllBut(-1);
    if (!changed)
        return;
    step.Done();
    Notify(ValueChanged, originator);
}

void MultiSelectionValueBase::GetKeys(std::vector<unsigned int>& keys) const
{
    keys.reserve(keys.size() + m_items.size());
    for (const Entry& entry : m_items)
        keys.push_back(entry.key);
}

std::vector<unsigned int> MultiSelectionValueBase::GetCheckedKeys() const
{
    return std::vector<unsigned int>(m_checked.begin(), m_checked.end());
}

bool MultiSelectionValueBase::SetCheckedKeys(const std::vector<unsigned int>& keys, IObserver* originator)
{
    if (m_nSelectionMode == 1 && keys.size() > 1)
        return false;
    for (unsigned key : keys) {
        if (!find(key))
            return false;
    }
    UndoStep step(this);
    bool changed = false;
    std::vector<unsigned int> wanted(keys);
    std::sort(wanted.begin(), wanted.end());
    for (Entry& entry : m_items)
        changed |= setChecked(entry, std::binary_search(wanted.begin(), wanted.end(), entry.key));
    if (!changed)
        return true;
    step.Done();
    return Notify(ValueChanged, originator);
}

bool MultiSelectionValueBase::SetValueFromText(const QString& text, IObserver* originator)
{
    std::vector<unsigned int> keys;
    const QStringList names = text.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& raw : names) {
        const QString name = raw.trimmed();
        if (name.isEmpty() || (m_bHasNoneEntry && name == m_strNoneEntry && names.size() == 1))
            continue;
        const auto it = std::find_if(m_items.begin(), m_items.end(),
                                     [&name](const Entry& e) { return e.item.GetName() == name; });
        if (it == m_items.end())
            return false;
        keys.push_back(it->key);
    }
    return SetCheckedKeys(keys, originator);
}

QString MultiSelectionValueBase::GetValueString() const
{
    if (m_checked.empty())
        return m_bHasNoneEntry ? m_strNoneEntry : QString();
    QStringList names;
    for (unsigned key : m_checked)
        names << m_items[m_index.at(key)].item.GetName();
    return names.join(QLatin1String(", "));
}

bool MultiSelectionValueBase::AddItem(unsigned key, const QString& name, bool checked, bool enabled)
{
    if (find(key))
        return false;
    if (checked && m_nSelectionMode == 1)
        uncheckAllBut(-1);
    m_index.emplace(key, m_items.size());
    m_items.push_back(Entry{key, StringMultiSelectionItem(name, checked, enabled)});
    if (checked)
        m_checked.insert(key);
    m_log.Add(MultiSelectionChange::ItemAddedKind, key);
    Notify(ItemAdded, nullptr);
    return true;
}

bool MultiSelectionValueBase::SetItemEnabled(unsigned key, bool enabled, IObserver* originator)
{
    Entry* entry = find(key);
    if (!entry)
        return false;
    if (entry->item.IsEnabled() == enabled)
        return true;
    entry->item.SetEnabled(enabled);
    m_log.Add(MultiSelectionChange::ItemEnabledKind, key);
    return Notify(ValueChanged, originator);
}

void MultiSelectionValueBase::ClearItems(IObserver* originator)
{
    m_items.clear();
    m_index.clear();
    m_checked.clear();
    m_log.Add(MultiSelectionChange::ItemsClearedKind, 0);
    Notify(ItemsCleared, originator);
}

void MultiSelectionValueBase::SetNoneEntry(bool has, const QString& text)
{
    if (m_bHasNoneEntry == has && m_strNoneEntry == text)
        return;
    m_bHasNoneEntry = has;
    m_strNoneEntry = text;
    entriesChanged();
}

void MultiSelectionValueBase::SetSeveralEntryText(const QString& text)
{
    if (m_strSeveralEntry == text)
        return;
    m_strSeveralEntry = text;
    entriesChanged();
}

void MultiSelectionValueBase::entriesChanged()
{
    // The entries a display builds from the items changed: readers of the journal rebuild.
    m_log.Add(MultiSelectionChange::ItemsRebuilt, 0);
    Notify(ValueChanged, nullptr);
}

Command* MultiSelectionValueBase::CreateRestoreCommand()
{
    return new RestoreCommand<MultiSelectionValueBase, std::vector<unsigned int>>(this, GetCheckedKeys());
}

} // namespace values
