#pragma once

#include <values/korthane_export.h>
#include <values/observable.h>

#include <QHash>
#include <QString>
#include <QStringList>

#include <deque>

class QTimer;

namespace values {

class ValueBase;

/**
 * \brief The process-wide tree of values, addressed by absolute '/'-separated paths.
 *
 * The tree owns its values. Lookup is a hash lookup. All calls belong on the thread of the widgets.
 */
class KORTHANE_EXPORT Tree
{
public:
    /// The one tree of the process.
    static Tree* Instance();

    /// The value at \a path, or null. A failed lookup reports nothing.
    ValueBase* Find(const QString& path) const;
    /**
     * \brief Puts \a value into the tree under \a path and takes ownership of it.
     *
     * An empty or relative path, a path with an empty segment or a trailing '/', a taken path, a null
     * value or a value already in the tree give false, and the caller keeps the value.
     */
    bool Add(const QString& path, ValueBase* value);
    /**
     * \brief Takes the value at \a path away: it announces Removed (StateChanged), leaves the tree and
     * is destroyed, which sends ValueDestroyed to observers still attached. False for an unknown path.
     */
    bool Remove(const QString& path);
    /// Gives up the tree's entry of the value at \a pathName, as Remove() does.
    void ReleaseValue(const QString& pathName);
    /// Removes every value, as Remove() does.
    void Clear();

    /// The number of values in the tree.
    int Count() const { return int(m_values.size()); }
    /// The paths of all values, sorted.
    QStringList Paths() const;
    /// The paths of the values on or under \a basePath, sorted.
    QStringList PathsUnder(const QString& basePath) const;
    /// True when \a path is an absolute path that Add() would accept.
    static bool IsValidPath(const QString& path);
    /// True when \a path equals \a basePath or lies below it ("/" is the base of every path).
    static bool IsOnOrUnder(const QString& path, const QString& basePath);

    /**
     * \brief Merges the ValueChanged notifications of each value in the tree that come within \a ms
     * milliseconds of each other; 0 (the default) turns merging off, a negative interval counts as 0.
     *
     * The first ValueChanged of a value that had none within the interval goes out at once; later ones
     * within the interval reach the observers once, when the interval ends, and they then read the
     * newest value. An observer that made every merged write is not told of them; when several made
     * them, every observer is told. Any other notification of the value first delivers its merged
     * ValueChanged and then goes out at once. A value that is removed or destroyed drops its merged
     * notification. Shortening the interval or turning it off delivers every merged notification now.
     * Merged notifications are delivered by a timer on the thread of the first call that turns merging on.
     * While merging is on, a notification that opens a value's interval may allocate memory.
     */
    void SetUpdateInterval(int ms);
    /// The interval set by SetUpdateInterval(), in milliseconds; 0 when merging is off.
    int UpdateInterval() const { return m_nUpdateInterval; }

private:
    friend class ValueBase;

    // A value whose last ValueChanged went out at most an interval ago; later ones wait until due.
    struct Window
    {
        ValueBase* value;
        qint64 due; // milliseconds of a monotonic clock
    };

    Tree();
    ~Tree();
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    // Routes a notification of \a value while merging is on or windows are still open.
    bool notifyMerged(ValueBase* value, TChangeCode code, IObserver* originator);
    void openWindow(ValueBase* value);
    void closeWindow(ValueBase* value); // drops any merged notification
    void deliverDue();
    void deliverAll();
    void windowsChanged();

    QHash<QString, ValueBase*> m_values;
    int m_nUpdateInterval = 0;
    // Ordered by due time: every window lasts the same interval, and shortening it empties the queue.
    std::deque<Window> m_windows;
    QTimer* m_pTimer = nullptr;
    // Checked by every notification: true only while merging is on or a window is open.
    static bool s_bMerging;
};

/**
 * \brief Creates values under paths not used before, below "/.unique/".
 */
class KORTHANE_EXPORT UniqueValuesCreator
{
public:
    /// The one creator of the process.
    static UniqueValuesCreator& Instance();
    /**
     * \brief Creates an empty ValueSelection in the tree and returns its path.
     *
     * With \a followNewest the selection makes every added item current (see ValueSelection).
     */
    QString CreateValueSelection(bool followNewest);

private:
    UniqueValuesCreator() = default;
    quint64 m_nNext = 0;
};

} // namespace values
