#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/resortpopupmenu.h>
#include <values/values.h>

#include <QKeySequence>
#include <QMap>
#include <QString>

#include <memory>
#include <set>

class HeldWrites;
class QAction;

/**
 * \brief A popup menu (ResortPopupMenu) whose entries are two-state switches on selections, or which is
 * generated from a multi-selection of strings.
 *
 * \b Switches. InsertItem() adds a checkable entry bound to a values::ValueSelection and two item names:
 * the entry is checked exactly when the selection's current item is named \a inVal; choosing it writes
 * \a inVal when it becomes checked and \a outVal (also an empty one) when it becomes unchecked, with no
 * originator and no undo recording. Entries are told apart by the caller's id; a second entry with the
 * same id replaces the first one's binding, and the first action stays in the menu unbound. A value's
 * Disabled state disables the whole menu, Enabled on any entry's value enables it.
 *
 * \b Generated. SetValue1Selection_String_ValuePath() fills the menu from a multi-selection: its none
 * entry (id -1, not checkable) if it has one, then one checkable entry per item, by key ascending, with
 * the item's place as id. Choosing an entry checks the item whose key is that place, so the value's keys
 * should count 0, 1, 2 and so on. Every change of the multi-selection's items rebuilds the menu and wipes
 * the switch entries; a change of check marks only sets the marks of the entries it names.
 *
 * A pick made in the open menu is written once Qt's handling of that key or mouse event has returned.
 */
class VANDREL_EXPORT VCPopupMenu : public ResortPopupMenu, public IObserver
{
    Q_OBJECT

public:
    /// The multi-selection of strings that a generated menu is made from.
    using StringMultiSelection = values::ValueMultiSelection<values::StringMultiSelectionItem, values::StringMultiSelectionItemFormat,
                                                             values::StringMultiSelectionItemAdapter, 1>;

    /// An empty menu; \a name, when not null, becomes the object name.
    VCPopupMenu(QWidget* parent, const char* name);
    ~VCPopupMenu() override;

    /**
     * \brief Appends a checkable entry \a text with the shortcut \a key, bound to the selection at
     * \a path; gives \a id.
     *
     * The entry is made even when the path finds no selection: it then switches nothing, and a trace
     * (reporting mask bit 32) tells of it.
     */
    int InsertItem(const QString& text, int id, const QKeySequence& key, QString path, QString inVal, QString outVal);
    /// InsertItem() with no shortcut.
    int InsertItem(const QString& text, int id, QString path, QString inVal, QString outVal);
    /**
     * \brief Binds the entry \a id to the selection at \a path, and shows its state.
     *
     * The names given here are not used: those given to InsertItem() count. True for an unknown \a id
     * once the selection is found (nothing else happens); false for an unknown path or a value that is
     * no selection, and for an exception of the value framework, which is reported.
     */
    bool SetSelection_ValuePath(int id, QString path, QString inVal, QString outVal);
    /// Binds the multi-selection that generates the menu and generates it; false (menu unchanged) if none.
    bool SetValue1Selection_String_ValuePath(const QString& path);

    void Update(Observable* source, TChangeCode code) override;

protected:
    /// One switch entry.
    struct Tuple
    {
        values::ValueSelection* m_sel = nullptr; ///< the value switched; borrowed, null until bound
        QString m_inVal;                         ///< name of the on state
        QString m_outVal;                        ///< name written when switched off; may be empty
        QAction* m_action = nullptr;             ///< the entry; its data() holds the id
    };

    /// Regenerates the menu from the multi-selection, wiping the switch entries; gives the number of keys.
    int AddMStrings2Menu();

    /// Reimplemented to write a pick made in the open menu once the menu's own handling of the event is done.
    bool event(QEvent* event) override;

protected Q_SLOTS:
    /// Writes the pick of \a action: its switch's name, or the generated item's check mark.
    void slotCClicked(QAction* action);

protected:
    QMap<int, Tuple> m_tuples;               ///< the switch entries, by the caller's id
    StringMultiSelection* m_pValue1Selection; ///< the multi-selection that generates the menu; borrowed

private:
    struct Generated;

    void Hold(Observable* value);
    void Pick(int id, bool checked);
    void ApplyCheckMarks();

    std::set<Observable*> m_attached;         // every value attached to, so that none outlives the menu attached
    std::unique_ptr<Generated> m_pGenerated;   // keys and journal position of the generated entries
    std::unique_ptr<HeldWrites> m_pHeldWrites; // picks wait for the menu's own event handling
    std::unique_ptr<QObject> m_pActionWatch;   // hears of switch entries deleted by the application
    int m_nPicking;                            // inside a pick's write
};
