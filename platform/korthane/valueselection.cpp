#include <values/valueselection.h>

#include <cmath>
#include <climits>

namespace values {


ValueSelection::ValueSelection(bool followNewest)
    : m_bFollowNewest(followNewest)
{
}

ValueSelection::~ValueSelection()
{
    AnnounceDestruction();
}

SelectionItem* ValueSelection::GetCurrentItem()
{
    return GetItemAt(int(m_nCurrent));
}

bool ValueSelection::SelectKey(long key, IObserver* originator)
{
    const int index = IndexOfKey(key);
    return index >= 0 && selectIndex(index, originator);
}

bool ValueSelection::SelectValue(double value, IObserver* originator, bool nearest)
{
    int best = -1;
    double bestDistance = 0;
    for (int i = 0; i < int(m_items.size()); ++i) {
        const double distance = std::fabs(m_items[size_t(i)]->GetValue() - value);
        if (distance == 0) {
            best = i;
            break;
        }
        if (nearest && (best < 0 || distance < bestDistance)) {
            best = i;
            bestDistance = distance;
        }
    }
    return best >= 0 && selectIndex(best, originator);
}

bool ValueSelection::SetValueString(const QString& text, IObserver* originator)
{
    for (size_t i = 0; i < m_items.size(); ++i) {
        if (m_items[i]->GetName() == text)
            return selectIndex(long(i), originator);
    }
    return false;
}

void ValueSelection::AddItem(const QString& name, double value, long key, void* reserved)
{
    Q_UNUSED(reserved)
    m_items.push_back(std::make_unique<SelectionItem>(name, value, key));
    if (m_bFollowNewest || m_nCurrent < 0)
        m_nCurrent = long(m_items.size()) - 1;
    Notify(ItemAdded, nullptr);
}

void ValueSelection::ClearItems(IObserver* originator)
{
    m_items.clear();
    m_nCurrent = -1;
    Notify(ItemsCleared, originator);
}

int ValueSelection::GetItemCount() const
{
    return int(m_items.size());
}

SelectionItem* ValueSelection::GetItemAt(int index)
{
    if (index < 0 || index >= int(m_items.size()))
        return nullptr;
    return m_items[size_t(index)].get();
}

SelectionItem* ValueSelection::GetItem(const QString& name)
{
    for (const auto& item : m_items) {
        if (item->GetName() == name)
            return item.get();
    }
    return nullptr;
}

long ValueSelection::GetCurrentIndex() const
{
    return m_nCurrent;
}

long ValueSelection::GetCurrentKey() const
{
    return m_nCurrent >= 0 ? m_items[size_t(m_nCurrent)]->GetKey() : -1;
}

bool ValueSelection::SelectIndex(long index, IObserver* originator)
{
    return selectIndex(index, originator);
}

bool ValueSelection::SelectNext(bool up, IObserver* originator)
{
    if (m_items.empty())
        return false;
    // Round the ends, so that a two-item selection flips with every step.
    const long count = long(m_items.size());
    const long index = m_nCurrent < 0 ? (up ? count - 1 : 0) : (m_nCurrent + (up ? count - 1 : 1)) % count;
    return selectIndex(index, originator);
}

SelectionItem* ValueSelection::GetItemByKey(long key)
{
    return GetItemAt(IndexOfKey(key));
}

int ValueSelection::IndexOfKey(long key) const
{
    for (size_t i = 0; i < m_items.size(); ++i) {
        if (m_items[i]->GetKey() == key)
            return int(i);
    }
    return -1;
}

bool ValueSelection::SetValueFromText(const QString& text, IObserver* originator)
{
    return SetValueString(text, originator);
}

QString ValueSelection::GetValueString() const
{
    return m_nCurrent >= 0 ? m_items[size_t(m_nCurrent)]->GetName() : QString();
}

bool ValueSelection::selectIndex(long index, IObserver* originator)
{
    if (index < 0 || index >= long(m_items.size()))
        return false;
    UndoStep step(this);
    if (index != m_nCurrent) {
        m_nCurrent = index;
        step.Done();
    }
    return Notify(ValueChanged, originator);
}

bool ValueSelection::RestoreState(long key)
{
    if (key == LONG_MIN) { // nothing was current
        if (m_nCurrent < 0)
            return true;
        m_nCurrent = -1;
        return Notify(ValueChanged, nullptr);
    }
    return SelectKey(key, nullptr);
}

Command* ValueSelection::CreateRestoreCommand()
{
    return new RestoreCommand<ValueSelection, long>(this, m_nCurrent >= 0 ? GetCurrentKey() : LONG_MIN);
}

} // namespace values
