#pragma once

#include <values/valuebase.h>

#include <QString>

#include <memory>
#include <vector>

namespace values {

/// \brief An item of a ValueSelection: a key, an untranslated name and a number. Owned by the selection.
class KORTHANE_EXPORT SelectionItem
{
public:
    /// An item named \a name (untranslated) with the number \a value and the key \a key.
    SelectionItem(const QString& name, double value, long key)
        : m_strName(name)
        , m_fValue(value)
        , m_nKey(key)
    {
    }
    /// The key that identifies the item in its selection.
    long GetKey() const { return m_nKey; }
    /// The untranslated name; controls translate it in the value's translation namespace.
    QString GetName() const { return m_strName; }
    /// The number of the item (see ValueSelection::SelectValue).
    double GetValue() const { return m_fValue; }

private:
    QString m_strName;
    double m_fValue;
    long m_nKey;
};

/**
 * \brief A list of keyed items, one of which is current.
 *
 * Item names are unique by convention; lookups by name take the first match. The first item added
 * to a selection without a current item becomes current. A selection made to follow its newest item
 * (\a followNewest) makes every added item current instead; the undo button uses this so that the
 * item after the current one, wrapping, is always the first.
 */
class KORTHANE_EXPORT ValueSelection : public ValueBase
{
public:
    /// An empty selection; with \a followNewest every added item becomes current.
    explicit ValueSelection(bool followNewest = false);
    ~ValueSelection() override;

    /// The current item, or null when there is none.
    virtual SelectionItem* GetCurrentItem();
    /// Makes the item of \a key current and notifies ValueChanged; false for an unknown key.
    virtual bool SelectKey(long key, IObserver* originator);
    /**
     * \brief Makes the item with the number \a value current.
     *
     * With \a nearest true and no exact match, the item whose number is nearest becomes current
     * (the first of equally near ones); with false an unmatched number selects nothing and gives false.
     */
    virtual bool SelectValue(double value, IObserver* originator, bool nearest);
    /// Makes the item named \a text current; false when there is none.
    virtual bool SetValueString(const QString& text, IObserver* originator);
    /// Appends an item and notifies ItemAdded. \a reserved is unused.
    virtual void AddItem(const QString& name, double value, long key, void* reserved);
    /// Empties the list (no item is current) and notifies ItemsCleared.
    virtual void ClearItems(IObserver* originator);
    /// The number of items.
    virtual int GetItemCount() const;
    /// The item at \a index, null when out of range.
    virtual SelectionItem* GetItemAt(int index);
    /// The first item named \a name, null when there is none.
    virtual SelectionItem* GetItem(const QString& name);

    /// Index of the current item, negative when none is current.
    long GetCurrentIndex() const;
    /// Key of the current item; -1 when none is current.
    long GetCurrentKey() const;
    /// Makes the item at \a index current; false when out of range.
    bool SelectIndex(long index, IObserver* originator);
    /**
     * \brief Moves the current item one step: towards the front with \a up, towards the end without.
     * Goes round at the ends (the last item follows the first), so that a two-item selection flips
     * with each step. With nothing current it starts at the last item (\a up) or the first. False only
     * for an empty selection.
     */
    bool SelectNext(bool up, IObserver* originator);
    /// The item of \a key, null when there is none.
    SelectionItem* GetItemByKey(long key);
    /// The index of the item of \a key, -1 when there is none.
    int IndexOfKey(long key) const;

    bool SetValueFromText(const QString& text, IObserver* originator) override;
    QString GetValueString() const override;

    /// Puts back the current item captured for undo (LONG_MIN: none current), notifying everyone.
    bool RestoreState(long key);

protected:
    Command* CreateRestoreCommand() override;

private:
    bool selectIndex(long index, IObserver* originator);

    std::vector<std::unique_ptr<SelectionItem>> m_items;
    long m_nCurrent = -1;
    bool m_bFollowNewest;
};

} // namespace values
