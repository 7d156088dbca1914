#pragma once

#include <values/korthane_export.h>

#include <QHash>
#include <QString>
#include <QStringList>

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

private:
    Tree();
    ~Tree();
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    QHash<QString, ValueBase*> m_values;
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
