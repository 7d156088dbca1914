#pragma once

#include <values/korthane_export.h>

#include <cstddef>
#include <vector>

/**
 * \brief Codes carried by every notification of a value.
 *
 * The framework uses more codes than these; observers ignore the codes they do not know.
 */
enum TChangeCode {
    StateChanged = 2,         ///< GetState() changed
    ValueChanged = 3,         ///< the value, or the current item of a selection, changed
    RangeChanged = 4,         ///< minimum, maximum or step of a numeric value changed
    ItemsChanged = 7,         ///< the item list was rebuilt
    ItemsCleared = 8,         ///< the item list was emptied
    ItemAdded = 9,            ///< items were added to the list
    ValueDestroyed = 18,      ///< the value is being destroyed; do not Detach, just forget it
    PendingValueChanged = 23, ///< the pending number of a numeric value changed
};

/// The state of a value, as GetState() gives it.
enum ValueState {
    Enabled = 0,  ///< the value can be edited
    Removed = 1,  ///< the value is leaving the tree
    Disabled = 2, ///< the value cannot be edited now
};

class Observable;

/// \brief Receives the notifications of the values it is attached to.
class KORTHANE_EXPORT IObserver
{
public:
    virtual ~IObserver();
    /**
     * \brief Called synchronously for each change of an Observable this observer is attached to.
     *
     * \a source is the Observable part of the value, the same pointer whatever interface of the value
     * the observer holds, so an observer tells its values apart by comparing it with theirs.
     */
    virtual void Update(Observable* source, TChangeCode code) = 0;
};

/**
 * \brief The notifying part of a value: a list of attached observers.
 *
 * Every value object has exactly one Observable part (it is a virtual base of all value interfaces).
 * Notification is robust against everything an observer may do from its Update(): detach itself or
 * others, attach new observers (they hear from the next notification on), write the value (nested
 * notifications), or destroy itself or the value. Notifying allocates no memory.
 */
class KORTHANE_EXPORT Observable
{
public:
    Observable();
    Observable(const Observable&) = delete;
    Observable& operator=(const Observable&) = delete;
    virtual ~Observable();

    /// Attaches \a observer; attaching an observer that is already attached changes nothing.
    void Attach(IObserver* observer);
    /// Detaches \a observer; an observer that is not attached is ignored.
    void Detach(IObserver* observer);
    /// True when \a observer is attached.
    bool IsAttached(const IObserver* observer) const;
    /// The number of attached observers.
    int ObserverCount() const;

protected:
    /**
     * \brief Calls Update(this, code) on each attached observer but \a originator, in the order of
     * attachment. Returns false when this object was destroyed by one of the observers.
     */
    bool NotifyObservers(TChangeCode code, const IObserver* originator);

private:
    struct NotifyFrame;
    long find(const IObserver* observer) const;
    void compact();
    std::size_t homeSlot(const IObserver* observer) const;
    void indexInsert(unsigned int position);
    void indexRemove(const IObserver* observer);
    void rebuildIndex();

    // In attach order; a detached entry becomes null and stays until the list is compacted, which
    // never happens while a notification walks it.
    std::vector<IObserver*> m_observers;
    // Above a few observers, an open-addressing table of positions in m_observers (linear probing,
    // at most half full), so that attaching and detaching stay cheap with thousands of observers.
    std::vector<unsigned int> m_index;
    NotifyFrame* m_pFrames = nullptr; // innermost running notification of this object
    int m_nHoles = 0;                 // null entries in m_observers
};
