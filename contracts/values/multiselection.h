#pragma once

#include <values/format.h>
#include <values/valuebase.h>

#include <QString>

#include <cstdint>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

namespace values {

/// \brief One entry of a multi-selection's change journal.
struct MultiSelectionChange
{
    /// What changed.
    enum Kind : unsigned char {
        ItemsRebuilt = 1,   ///< the item set was replaced as a whole
        ItemAddedKind = 2,  ///< an item was added
        ItemsClearedKind = 3, ///< all items were removed
        ItemEnabledKind = 5,  ///< one item's enabled flag changed (key)
        ItemCheckedKind = 6,  ///< one item's check mark changed (key)
    };
    quint64 sequence = 0;   ///< running number of the change
    unsigned char kind = 0; ///< one of Kind
    quint32 key = 0;        ///< the item, for kinds 5 and 6 (and 2)
};

/**
 * \brief The bounded journal of a multi-selection's recent changes: a ring in ascending sequence order.
 *
 * When the ring is full the oldest entry is overwritten, so the first retained sequence rises. A reader
 * keeps the sequence it wants to read next and compares it with GetNextSequence().
 */
class KORTHANE_EXPORT MultiSelectionChangeLog
{
public:
    /// An empty journal keeping at most \a capacity entries (at least 1).
    explicit MultiSelectionChangeLog(int capacity = 64);
    /// The number of retained entries.
    int GetCount() const { return m_nCount; }
    /// The \a i-th retained entry, oldest first (0 <= i < GetCount()).
    const MultiSelectionChange& GetAt(int i) const;
    /// The sequence number the next change will get.
    quint64 GetNextSequence() const { return m_nNextSequence; }
    /// The largest number of entries retained.
    int GetCapacity() const { return int(m_ring.size()); }
    /// Changes the capacity (at least 1), keeping the newest entries.
    void SetCapacity(int capacity);
    /// Appends an entry, overwriting the oldest one when full.
    void Add(unsigned char kind, quint32 key);

private:
    std::vector<MultiSelectionChange> m_ring;
    int m_nFirst = 0;
    int m_nCount = 0;
    quint64 m_nNextSequence = 0;
};

/// \brief An item of a multi-selection.
class KORTHANE_EXPORT IMultiSelectionItem
{
public:
    virtual ~IMultiSelectionItem();
    /// True when the item is checked.
    virtual bool IsChecked() const = 0;
    /// True when the item can be checked or unchecked by the user.
    virtual bool IsEnabled() const = 0;
    /// The untranslated name of the item.
    virtual const QString& GetName() const = 0;
};

/// \brief The item set view of a multi-selection, sharing its Observable part.
class KORTHANE_EXPORT IMultiSelectionSet : public virtual Observable
{
public:
    ~IMultiSelectionSet() override;
    /// The number of items.
    virtual int GetKeyCount() const = 0;
    /// The change journal.
    virtual const MultiSelectionChangeLog* GetChangeLog() const = 0;
    /// Appends the keys of all items, in the order they were added; callers sort them.
    virtual void GetKeys(std::vector<unsigned int>& keys) const = 0;
    /// The value object behind this interface.
    virtual ValueBase* GetValueBase() = 0;
};

/// \brief A set of keyed items, each with a check mark and an enabled flag.
class KORTHANE_EXPORT IValueMultiSelection : public virtual IMultiSelectionSet
{
public:
    ~IValueMultiSelection() override;
    /// The item of \a key, null when there is none.
    virtual IMultiSelectionItem* GetItemByKey(int key) = 0;
    /**
     * \brief Sets one item's check mark and notifies ValueChanged. In single-choice mode (1) checking
     * an item unchecks the others. False for an unknown key.
     */
    virtual bool SetItemChecked(int key, bool checked, IObserver* originator) = 0;
    /// True when the item of \a key is checked; false also for an unknown key.
    virtual bool IsItemChecked(int key) = 0;
    /// True when the item of \a key is enabled; false also for an unknown key.
    virtual bool IsItemEnabled(int key) = 0;
    /// 1: at most one item can be checked; any other mode: any number.
    virtual int GetSelectionMode() = 0;
    /// Clears every check mark and notifies ValueChanged once.
    virtual void UncheckAll(IObserver* originator) = 0;
    /// True when the value offers an entry that means "nothing chosen".
    virtual bool HasNoneEntry() = 0;
    /// The text of the entry that means "nothing chosen".
    virtual const QString& GetNoneEntryText() = 0;
    /// The text that stands for several checked items.
    virtual const QString& GetSeveralEntryText() = 0;
};

/// \brief An item of a multi-selection of strings.
class KORTHANE_EXPORT StringMultiSelectionItem : public IMultiSelectionItem
{
public:
    /// An item named \a name with its check mark and enabled flag.
    StringMultiSelectionItem(const QString& name = QString(), bool checked = false, bool enabled = true)
        : m_strName(name)
        , m_bChecked(checked)
        , m_bEnabled(enabled)
    {
    }
    bool IsChecked() const override { return m_bChecked; }
    bool IsEnabled() const override { return m_bEnabled; }
    const QString& GetName() const override { return m_strName; }
    /// Sets this item's check mark alone, telling no one; a value changes marks with SetItemChecked().
    void SetChecked(bool checked) { m_bChecked = checked; }
    /// Sets this item's enabled flag alone, telling no one; a value changes flags with SetItemEnabled().
    void SetEnabled(bool enabled) { m_bEnabled = enabled; }

private:
    QString m_strName;
    bool m_bChecked;
    bool m_bEnabled;
};

/// Text form of a string multi-selection item: its name.
struct StringMultiSelectionItemFormat
{
    /// The name of \a item.
    static QString ToString(const StringMultiSelectionItem& item) { return item.GetName(); }
};

/// Reads and writes the items of a string multi-selection as their names.
struct StringMultiSelectionItemAdapter
{
    /// The name of \a item.
    static QString Name(const StringMultiSelectionItem& item) { return item.GetName(); }
};

/**
 * \brief The non-template part of ValueMultiSelection.
 *
 * Every change enters the change journal: AddItem kind 2, SetItems kind 1, ClearItems kind 3,
 * SetItemEnabled kind 5, each changed check mark kind 6. Notifications: ItemAdded, ItemsChanged,
 * ItemsCleared, and ValueChanged for check marks and enabled flags.
 *
 * The text form (GetValueString) lists the names of the checked items in key order, separated by ", ";
 * with none checked it is the none-entry text.
 */
class KORTHANE_EXPORT MultiSelectionValueBase : public ValueBase, public IValueMultiSelection
{
public:
    /// An empty multi-selection; \a selectionMode 1 allows at most one checked item.
    explicit MultiSelectionValueBase(int selectionMode);
    ~MultiSelectionValueBase() override;

    IMultiSelectionItem* GetItemByKey(int key) override;
    bool SetItemChecked(int key, bool checked, IObserver* originator) override;
    bool IsItemChecked(int key) override;
    bool IsItemEnabled(int key) override;
    int GetSelectionMode() override { return m_nSelectionMode; }
    void UncheckAll(IObserver* originator) override;
    bool HasNoneEntry() override { return m_bHasNoneEntry; }
    const QString& GetNoneEntryText() override { return m_strNoneEntry; }
    const QString& GetSeveralEntryText() override { return m_strSeveralEntry; }

    int GetKeyCount() const override { return int(m_items.size()); }
    const MultiSelectionChangeLog* GetChangeLog() const override { return &m_log; }
    void GetKeys(std::vector<unsigned int>& keys) const override;
    ValueBase* GetValueBase() override { return this; }

    bool SetValueFromText(const QString& text, IObserver* originator) override;
    QString GetValueString() const override;

    /// Adds an item and notifies ItemAdded; false when the key is taken.
    bool AddItem(unsigned key, const QString& name, bool checked = false, bool enabled = true);
    /// Sets one item's enabled flag and notifies ValueChanged; false for an unknown key.
    bool SetItemEnabled(unsigned key, bool enabled, IObserver* originator = nullptr);
    /// Removes every item and notifies ItemsCleared.
    void ClearItems(IObserver* originator = nullptr);
    /// Sets whether the value offers a none entry, and its text; a change is journalled as a rebuild
    /// (kind 1) and notified as ValueChanged.
    void SetNoneEntry(bool has, const QString& text);
    /// Sets the text that stands for several checked items; a change is journalled and notified as
    /// SetNoneEntry() does.
    void SetSeveralEntryText(const QString& text);
    /// Sets the number of journal entries kept (64 by default).
    void SetChangeLogCapacity(int capacity) { m_log.SetCapacity(capacity); }
    /// The keys of the checked items, ascending.
    std::vector<unsigned int> GetCheckedKeys() const;
    /// Checks exactly the items of \a keys (others unchecked), one notification.
    bool SetCheckedKeys(const std::vector<unsigned int>& keys, IObserver* originator);

    /// Puts back the check marks captured for undo, notifying everyone.
    bool RestoreState(const std::vector<unsigned int>& checkedKeys) { return SetCheckedKeys(checkedKeys, nullptr); }

protected:
    Command* CreateRestoreCommand() override;

private:
    struct Entry
    {
        unsigned key;
        StringMultiSelectionItem item;
    };
    Entry* find(unsigned key);
    bool setChecked(Entry& entry, bool checked);
    bool uncheckAllBut(long keep);
    void entriesChanged();

    std::vector<Entry> m_items;
    // Key lookups and check marks cost the same for ten items and for ten thousand: the place of each
    // key in m_items, and the checked keys in ascending order.
    std::unordered_map<unsigned, size_t> m_index;
    std::set<unsigned> m_checked;
    MultiSelectionChangeLog m_log;
    int m_nSelectionMode;
    bool m_bHasNoneEntry = false;
    QString m_strNoneEntry;
    QString m_strSeveralEntry;
};

/**
 * \brief A multi-selection of items of type \a Item.
 *
 * \a Format and \a Adapter name the text form of its items. \a DefaultMode is the selection mode of a
 * value made without one.
 */
template <class Item, class Format, class Adapter, int DefaultMode>
class ValueMultiSelection : public MultiSelectionValueBase
{
    static_assert(std::is_same<Item, StringMultiSelectionItem>::value, "items are strings");

public:
    /// An empty multi-selection in \a selectionMode (1: at most one checked item).
    explicit ValueMultiSelection(int selectionMode = DefaultMode)
        : MultiSelectionValueBase(selectionMode)
    {
    }
    ~ValueMultiSelection() override { AnnounceDestruction(); }
};

using StringMultiSelection =
    ValueMultiSelection<StringMultiSelectionItem, StringMultiSelectionItemFormat, StringMultiSelectionItemAdapter, 1>;

} // namespace values
