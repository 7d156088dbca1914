#include <vandrel/vcselectionpopup.h>

#include <vandrel/binding/binding.h>
#include <vandrel/menuentries_p.h>

#include <QAction>
#include <QKeySequence>
#include <QPointer>

VCSelectionPopup::VCSelectionPopup(QWidget* parent, const char* name)
    : UndoRecordingControlBase()
    , ResortPopupMenu(parent, name)
    , m_pFirstSelection(nullptr)
    , m_pSecondSelection(nullptr)
    , m_additionalItems()
    , m_nFirstSelectionOffset(-1)
    , m_nSecondSelectionOffset(-1)
    , m_nAdditionalOffset(-1)
    , m_pHeldWrites(new HeldWrites)
    , m_nPicking(0)
{
}

VCSelectionPopup::~VCSelectionPopup()
{
    // An open menu closes while all of it lives: Qt's closing of a popup sends it events, which this
    // class handles, and the base class's destructor would close it after this class's parts are gone.
    if (isVisible())
        hide();
    m_pHeldWrites.reset();
    DetachValue(m_pFirstSelection, this);
    DetachValue(m_pSecondSelection, this);
}

void VCSelectionPopup::LetGo(values::ValueSelection*& field)
{
    // One value may be both selections: it stays attached while the other one holds it.
    values::ValueSelection* value = field;
    field = nullptr;
    NameBindingSlot(field, this);
    if (value && value != m_pFirstSelection && value != m_pSecondSelection)
        ObservableOf(value)->Detach(this);
}

bool VCSelectionPopup::SetFirstSelection(values::ValueSelection* value)
{
    LetGo(m_pFirstSelection);
    // A null value unbinds, instead of being attached to.
    m_pFirstSelection = value;
    if (value)
        ObservableOf(value)->Attach(this);
    RebuildMenu();
    return value != nullptr;
}

bool VCSelectionPopup::SetFirstSelection_ValuePath(const QString& path)
{
    LetGo(m_pFirstSelection);
    m_pFirstSelection = FindAndAttach<values::ValueSelection>(path, nullptr, this);
    RebuildMenu();
    return m_pFirstSelection != nullptr;
}

bool VCSelectionPopup::SetSecondSelection_ValuePath(const QString& path)
{
    LetGo(m_pSecondSelection);
    m_pSecondSelection = FindAndAttach<values::ValueSelection>(path, nullptr, this);
    RebuildMenu();
    return m_pSecondSelection != nullptr;
}

void VCSelectionPopup::AddAdditionalItem(const QString& text, const QObject* receiver, const char* member)
{
    m_additionalItems.insertItem(text, receiver, member, QKeySequence(), m_additionalItems.actions().count(), -1);
    RebuildMenu();
}

void VCSelectionPopup::ClearAdditionalItems()
{
    // The store is never shown; only the menu's own proxies may be in Qt's hands during a pick.
    m_additionalItems.clear();
    RebuildMenu();
}

int VCSelectionPopup::InsertItem(const QString& text, const char* member, int id)
{
    insertItem(text, this, member, QKeySequence(0, 0, 0, 0), id, -1);
    return id;
}

int VCSelectionPopup::InsertSelectionItems(values::ValueSelection* value, const char* member, int firstId)
{
    for (int i = 0; i < value->GetItemCount(); ++i) {
        if (values::SelectionItem* item = value->GetItemAt(i))
            InsertItem(item->GetName(), member, firstId + i);
    }
    UpdateItemsChecked(value, firstId);
    return value->GetItemCount();
}

int VCSelectionPopup::InsertAdditionalItems(ResortPopupMenu& menu, const char* member, int firstId)
{
    const QList<QAction*> commands = menu.actions();
    for (int i = 0; i < commands.size(); ++i) {
        if (QAction* action = commands.at(i))
            InsertItem(action->text(), member, firstId + i);
    }
    return commands.size();
}

void VCSelectionPopup::RebuildMenu()
{
    vandrel::ClearMenu(this, m_nPicking > 0);
    int n = 0;
    if (m_pFirstSelection) {
        m_nFirstSelectionOffset = 0;
        n = InsertSelectionItems(m_pFirstSelection, "1SlotFirstSelectionItemActivated(int)", 0);
    } else {
        m_nFirstSelectionOffset = -1;
    }
    if (m_pFirstSelection && m_pSecondSelection)
        addSeparator();
    if (m_pSecondSelection) {
        m_nSecondSelectionOffset = n;
        n += InsertSelectionItems(m_pSecondSelection, "1SlotSecondSelectionItemActivated(int)", n);
    } else {
        m_nSecondSelectionOffset = -1;
    }
    const bool commands = !m_additionalItems.actions().isEmpty();
    if ((m_pFirstSelection || m_pSecondSelection) && commands)
        addSeparator();
    if (commands) {
        m_nAdditionalOffset = n;
        InsertAdditionalItems(m_additionalItems, "1SlotAdditionItemActivated(int)", n);
    } else {
        m_nAdditionalOffset = -1;
    }
}

void VCSelectionPopup::UpdateItemsChecked(values::ValueSelection* value, int firstId)
{
    if (!value || firstId < 0)
        return;
    const long current = value->GetCurrentIndex();
    for (int i = 0; i < value->GetItemCount(); ++i)
        setItemChecked(firstId + i, i == current);
}

void VCSelectionPopup::Select(values::ValueSelection* VCSelectionPopup::*field, int index)
{
    // Looked up again: the pick may have waited for Qt to finish with the event.
    values::ValueSelection* value = this->*field;
    if (!value || index < 0 || index >= value->GetItemCount())
        return;
    const QPointer<VCSelectionPopup> alive(this);
    ++m_nPicking;
    {
        GuiUndoRecordingHelper undo(this, QString());
        value->SelectIndex(index, nullptr);
    }
    if (alive)
        --m_nPicking;
}

void VCSelectionPopup::SlotFirstSelectionItemActivated(int id)
{
    if (!m_pFirstSelection || m_nFirstSelectionOffset < 0 || id < m_nFirstSelectionOffset
        || id >= m_nFirstSelectionOffset + m_pFirstSelection->GetItemCount())
        return;
    const int index = id - m_nFirstSelectionOffset;
    m_pHeldWrites->Write([this, index] { Select(&VCSelectionPopup::m_pFirstSelection, index); });
}

void VCSelectionPopup::SlotSecondSelectionItemActivated(int id)
{
    if (!m_pSecondSelection || m_nSecondSelectionOffset < 0 || id < m_nSecondSelectionOffset
        || id >= m_nSecondSelectionOffset + m_pSecondSelection->GetItemCount())
        return;
    const int index = id - m_nSecondSelectionOffset;
    m_pHeldWrites->Write([this, index] { Select(&VCSelectionPopup::m_pSecondSelection, index); });
}

void VCSelectionPopup::SlotAdditionItemActivated(int id)
{
    if (m_nAdditionalOffset < 0 || id < m_nAdditionalOffset)
        return;
    const int k = id - m_nAdditionalOffset; // no overflow: the id stands at or above the offset
    const QList<QAction*> commands = m_additionalItems.actions();
    if (k < 0 || k >= commands.size())
        return;
    // The command may close or delete this menu: it runs once Qt is done with the menu's event.
    const QPointer<QAction> command(commands.at(k));
    m_pHeldWrites->Write([command] {
        if (command)
            command->activate(QAction::Trigger);
    });
}

void VCSelectionPopup::Update(Observable* source, TChangeCode code)
{
    if (!source)
        return;
    const bool first = source == ObservableOf(m_pFirstSelection);
    const bool second = source == ObservableOf(m_pSecondSelection);
    if (!first && !second)
        return;
    switch (code) {
    case ValueChanged:
        if (first)
            UpdateItemsChecked(m_pFirstSelection, m_nFirstSelectionOffset);
        if (second)
            UpdateItemsChecked(m_pSecondSelection, m_nSecondSelectionOffset);
        break;
    case ItemsChanged:
    case ItemsCleared:
    case ItemAdded:
        RebuildMenu();
        break;
    case ValueDestroyed:
        // Without Detach; both roles are tested, as one value may hold both.
        ForgetDestroyedValue(m_pFirstSelection, source);
        ForgetDestroyedValue(m_pSecondSelection, source);
        RebuildMenu();
        break;
    default:
        break; // StateChanged too: a Disabled value stays selectable here
    }
}

bool VCSelectionPopup::event(QEvent* event)
{
    // Null once this class's part is gone: the base class's destructor may still send events.
    if (!m_pHeldWrites)
        return ResortPopupMenu::event(event);
    return m_pHeldWrites->Deliver(this, [this, event] { return ResortPopupMenu::event(event); });
}
