#pragma once

#include <plinthor/plinthor_export.h>

#include <QByteArray>
#include <QHash>
#include <QKeySequence>
#include <QMenu>
#include <QPointer>
#include <QString>

class QAction;
class QActionEvent;
class QShowEvent;

/**
 * \brief A QMenu whose entries are addressed by integer ids and put in order each time it shows.
 *
 * Every entry made by insertItem() carries its id as QAction::data(), where the menu's users read it
 * back from the action that QMenu::triggered() hands them; findItem() and setItemChecked() look entries
 * up by it. Actions added with the plain QMenu calls have no id and are never found by one.
 *
 * \b Order. insertItem() takes an index besides the id: the entry goes to that place at once (-1, or
 * a place beyond the end, appends it), and each time the menu shows, the entries of every section
 * (the runs between separators) are sorted again by the indexes they were given. So a caller may
 * insert in any order, for instance items by key with the key as index, and the menu still lists them
 * by index. Entries without an index (index -1, or added with QMenu::addAction()) follow the indexed
 * ones of their section, in the order they came in. Sections never mix, and the sort is stable.
 * setSortMode() switches to sorting by text, or off.
 *
 * \b Look. That of a plain QMenu in the application's style: checkable entries show a check mark
 * once setItemChecked() has given them one, disabled entries are greyed, and the style collapses
 * separators that would stand at an edge or next to each other.
 *
 * \b Routing. An entry made by the six-argument insertItem() calls its receiver's member with the
 * entry's id when it is triggered, whether through the menu or by QAction::activate(). The call goes
 * through slotSignalRouter(), which receives every triggered entry of the menu.
 */
class PLINTHOR_EXPORT ResortPopupMenu : public QMenu
{
    Q_OBJECT

public:
    /// How the entries of a section are ordered when the menu shows.
    enum SortMode {
        SortByIndex, ///< by the index given to insertItem() (the default)
        SortByText,  ///< by text in natural order ("item 9" before "item 10"), ignoring case and the '&' of mnemonics
        NoSorting,   ///< as they stand
    };
    Q_ENUM(SortMode)

    ResortPopupMenu();
    /// \a name, when not null, becomes the object name.
    ResortPopupMenu(QWidget* parent, const char* name);
    ~ResortPopupMenu() override;

    /**
     * \brief Adds an entry with \a text at \a index (-1: at the end) and stores \a id as its
     * QAction::data(). Returns the entry, owned by the menu.
     */
    QAction* insertItem(QString text, int id, int index);
    /**
     * \brief As the three-argument form, and triggering the entry calls \a member of \a receiver with
     * \a id.
     *
     * \a member is a signature in the form of SLOT() or SIGNAL() ("1slotPicked(int)"); the method may
     * take the id as its one int argument, or take no argument. A non-empty \a accelerator becomes the
     * entry's shortcut. With a null receiver or member the entry is made but routes nowhere.
     */
    QAction* insertItem(QString text, const QObject* receiver, const char* member, const QKeySequence& accelerator,
                        int id, int index);
    /// The first entry with \a id, or null.
    QAction* findItem(int id);
    /// Sets the check mark of the entry with \a id, making it checkable; an unknown id has no effect.
    void setItemChecked(int id, bool checked);
    /// Removes and deletes every entry that the menu owns, separators included.
    void RemoveAllEntries();
    /// Enables or disables every entry.
    void EnableAllEntries(bool enable);
    /// Enables or disables every entry whose text() equals \a text exactly.
    void EnableEntry(QString text, bool enable);

    /// Sets how the entries are ordered; they are put in order the next time the menu shows or Resort() runs.
    void setSortMode(SortMode mode);
    /// How the entries are ordered.
    SortMode sortMode() const { return m_eSortMode; }
    /// Puts the entries in order now, as showing the menu does.
    void Resort();

protected:
    /// Sorts the entries before the menu appears; a derived class that overrides it must call it.
    void showEvent(QShowEvent* event) override;
    /// Reimplemented to forget the routing of removed entries and to note that the ids changed.
    void actionEvent(QActionEvent* event) override;

protected Q_SLOTS:
    /// Receives each triggered entry and calls the receiver that insertItem() wired to it, if any.
    virtual void slotSignalRouter(QAction* action);

private:
    struct Route {
        QPointer<QObject> receiver;
        QByteArray member;
    };

    void init();
    void noteActionChange(QActionEvent* event);

    QHash<QAction*, Route> m_routes;
    // findItem() answers from an index of ids, first entry of each id in menu order, rebuilt after the
    // entries or their order or ids changed: a check mark on one of thousands of entries costs one lookup.
    QHash<int, QAction*> m_idIndex;
    QHash<QAction*, int> m_idOf;
    bool m_bIdIndexStale = true;
    SortMode m_eSortMode = SortByIndex;
};
