#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/resortpopupmenu.h>
#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QString>

#include <memory>

class HeldWrites;
class QObject;

/**
 * \brief A context menu (ResortPopupMenu) of the items of one or two selections, followed by commands
 * of the application.
 *
 * The menu lists the items of the first selection, then those of the second, then the additional
 * commands, with a separator between parts; each selection's current item carries a check mark. Names
 * are shown as the values hold them, untranslated. Entry ids run without a gap through the parts (a
 * separator takes none): the part's offset plus the place within it. Choosing an item selects it by
 * place as one undo recording, with no originator; choosing a command calls the receiver given to
 * AddAdditionalItem(). The menu is rebuilt whole on every binding and every change of items or commands.
 *
 * The menu follows no value's state: a Disabled value stays selectable here. A value that leaves the
 * tree takes its part with it. A pick made in the open menu is written once Qt's handling of that key
 * or mouse event has returned.
 */
class VANDREL_EXPORT VCSelectionPopup : public ResortPopupMenu, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /// An empty menu; \a name, when not null, becomes the object name.
    VCSelectionPopup(QWidget* parent, const char* name);
    ~VCSelectionPopup() override;

    /// Makes \a value the first selection and rebuilds; a null \a value unbinds it and gives false.
    bool SetFirstSelection(values::ValueSelection* value);
    /// Binds the first selection by path and rebuilds; false (and the part gone) for no selection there.
    bool SetFirstSelection_ValuePath(const QString& path);
    /// Binds the second selection by path and rebuilds; false (and the part gone) for no selection there.
    bool SetSecondSelection_ValuePath(const QString& path);
    /// Adds a command \a text that calls \a member of \a receiver (with its number among the commands).
    void AddAdditionalItem(const QString& text, const QObject* receiver, const char* member);
    /// Removes every command, and the separator before them.
    void ClearAdditionalItems();

    void Update(Observable* source, TChangeCode code) override;

public Q_SLOTS:
    /// Selects the first selection's item of the entry \a id; an id outside its part does nothing.
    void SlotFirstSelectionItemActivated(int id);
    /// Selects the second selection's item of the entry \a id; an id outside its part does nothing.
    void SlotSecondSelectionItemActivated(int id);
    /// Runs the command of the entry \a id; an id outside the commands does nothing.
    void SlotAdditionItemActivated(int id);

protected:
    /// Rebuilds the whole menu and the offsets of its parts.
    void RebuildMenu();
    /// Appends an entry \a text whose choice calls \a member of this menu with \a id; gives \a id.
    int InsertItem(const QString& text, const char* member, int id);
    /// Appends the items of \a value from id \a firstId on and marks the current one; gives the item count.
    int InsertSelectionItems(values::ValueSelection* value, const char* member, int firstId);
    /// Appends a proxy of each command of \a menu from id \a firstId on; gives the number of commands.
    int InsertAdditionalItems(ResortPopupMenu& menu, const char* member, int firstId);
    /// Checks the entry of \a value's current item in the part from \a firstId, unchecks the others.
    void UpdateItemsChecked(values::ValueSelection* value, int firstId);

    /// Reimplemented to write a pick made in the open menu once the menu's own handling of the event is done.
    bool event(QEvent* event) override;

    values::ValueSelection* m_pFirstSelection;  ///< borrowed; null when unbound
    values::ValueSelection* m_pSecondSelection; ///< borrowed; null when unbound
    ResortPopupMenu m_additionalItems;          ///< store of the application's commands, never shown itself
    int m_nFirstSelectionOffset;                ///< id of the first selection's first entry; -1 when it has none
    int m_nSecondSelectionOffset;               ///< id of the second selection's first entry; -1 when it has none
    int m_nAdditionalOffset;                    ///< id of the first command; -1 when there are none

private:
    void LetGo(values::ValueSelection*& field);
    void Select(values::ValueSelection* VCSelectionPopup::*field, int index);

    std::unique_ptr<HeldWrites> m_pHeldWrites; // picks wait for the menu's own event handling
    int m_nPicking;                            // inside a pick's write
};
