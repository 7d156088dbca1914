#pragma once

#include <vandrel/vandrel_export.h>

#include <values/values.h>

#include <QMenuBar>
#include <QMap>
#include <QString>

#include <memory>
#include <set>

class HeldWrites;

/**
 * \brief A menu bar (QMenuBar) whose top-level entries are switches on selections.
 *
 * Each entry added with InsertItem() is bound to a values::ValueSelection and an in and an out name.
 * Entries are known by their place in actions(): the id given to InsertItem() must equal that place
 * (number them from 0 in the order they are added), or a click finds no entry or another one. A click
 * writes the in name when the entry is checked and the out name otherwise, with no originator and no
 * undo recording; the bar does not make its entries checkable, so unless the application does, every
 * click writes the out name. A checkable entry is checked exactly when its value's current item is named
 * as its in name. An entry with a shortcut writes nothing.
 *
 * The first entry bound to a value follows its Disabled and Enabled states on the whole bar. The bar
 * starts enabled. A click in the bar is written once Qt's handling of that mouse or key event has returned.
 */
class VANDREL_EXPORT VCMenuBar : public QMenuBar, public IObserver
{
    Q_OBJECT

public:
    /// An empty bar; \a name, when not null, becomes the object name.
    VCMenuBar(QWidget* parent, const char* name);
    ~VCMenuBar() override;

    /**
     * \brief Appends an entry \a text bound to the selection at \a path; gives its place.
     *
     * \a id must equal the place. A path that finds no selection leaves the entry unbound, with a trace
     * (reporting mask bit 32) that names the path.
     */
    int InsertItem(const QString& text, int id, QString path, QString inVal, QString outVal);
    /**
     * \brief Appends an entry \a text with the shortcut \a accel, bound to the selection at \a path;
     * gives its place.
     *
     * \a id is not used and the entry carries no id, so a click on it writes nothing. The trace of a
     * failed binding here shows "%s" where the path would stand.
     */
    int InsertItem(const QString& text, int id, int accel, QString path, QString inVal, QString outVal);
    /**
     * \brief Binds the entry at place \a id to the selection at \a path with the names \a inVal and
     * \a outVal, and shows its state.
     *
     * False when there is no entry at that place. A path that finds no selection gives whether the
     * place is still bound from before (that binding stays in force); an exception of the value framework
     * is reported and gives false.
     */
    bool SetSelection_ValuePath(int id, QString path, QString inVal, QString outVal);

    void Update(Observable* source, TChangeCode code) override;

protected:
    /// One switch entry; its action is the one at its place in actions().
    struct Tuple
    {
        values::ValueSelection* sel = nullptr; ///< the value switched; borrowed
        QString inVal;                         ///< name of the on state
        QString outVal;                        ///< name of the off state
    };

    /// Reimplemented to write a pick made in the bar once the bar's own handling of the event is done.
    bool event(QEvent* event) override;

protected Q_SLOTS:
    /// Writes the in or out name of the entry at the place that \a action's id names.
    void slotCClicked(QAction* action);

protected:
    QMap<int, Tuple> m_tuples; ///< the switch entries, by their place in actions()

private:
    QAction* ActionAt(int place) const;
    void Pick(int id, bool checked);

    std::set<Observable*> m_attached;         // every value attached to, so that none outlives the bar attached
    std::unique_ptr<HeldWrites> m_pHeldWrites; // clicks wait for the bar's own event handling
};
