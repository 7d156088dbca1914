#include <vandrel/vccheckbox.h>

#include <vandrel/binding/binding.h>

VCCheckBox::VCCheckBox(QWidget* parent, const char* name)
    : UndoRecordingControlBase()
    , QCheckBox(parent)
    , m_pBool(nullptr)
    , m_pSelection(nullptr)
    , m_nCheckedKey(1)
    , m_nUncheckedKey(0)
    , m_bDirty(false)
    , m_nMultiKey(-1)
    , m_pMultiSelection(nullptr)
{
    const QString strName = QString::fromUtf8(name);
    setToolTip(strName);
    setText(strName);
    setObjectName(strName);
    StartDisabled(this);
    connect(this, SIGNAL(clicked()), this, SLOT(slotInternalChange()));
}

VCCheckBox::~VCCheckBox()
{
    DetachValue(m_pBool, this);
    DetachValue(m_pSelection, this);
    DetachValue(m_pMultiSelection, this);
}

bool VCCheckBox::Set_ValuePath(const QString& path)
{
    DetachValue(m_pBool, this);
    DetachValue(m_pSelection, this);
    m_pBool = FindAndAttach<values::Value<bool>>(path, nullptr, this);
    if (m_pBool)
        SyncObserver(m_pBool, this);
    m_pSelection = FindAndAttach<values::ValueSelection>(path, nullptr, this);
    if (m_pSelection)
        SyncObserver(m_pSelection, this);
    // The first picture of a value is not a change.
    m_bDirty = false;
    return m_pBool || m_pSelection;
}

bool VCCheckBox::SetBoolean(values::Value<bool>* value)
{
    DetachValue(m_pBool, this);
    DetachValue(m_pSelection, this);
    m_pBool = value;
    // A null value leaves the box unbound, as SetSelection() does, instead of dereferencing it.
    if (!m_pBool)
        return false;
    ObservableOf(m_pBool)->Attach(this);
    // Only the value, not its state: the box stays as enabled as it was until the state changes.
    Update(ObservableOf(m_pBool), ValueChanged);
    return true;
}

bool VCCheckBox::SetSelection(values::ValueSelection* selection, long checkedKey, long uncheckedKey)
{
    DetachValue(m_pBool, this);
    DetachValue(m_pSelection, this);
    m_nCheckedKey = checkedKey;
    m_nUncheckedKey = uncheckedKey;
    m_pSelection = selection;
    if (!m_pSelection)
        return false;
    ObservableOf(m_pSelection)->Attach(this);
    Update(ObservableOf(m_pSelection), ValueChanged);
    return true;
}

bool VCCheckBox::SetMultiSelection_ValuePath(const QString& path, int key)
{
    DetachValue(m_pMultiSelection, this);
    m_pMultiSelection = FindAndAttach<values::IValueMultiSelection>(path, nullptr, this);
    if (!m_pMultiSelection) {
        m_bDirty = false;
        return false;
    }
    m_nMultiKey = key;
    SyncObserver(m_pMultiSelection, this);
    return true;
}

bool VCCheckBox::GetBool()
{
    if (m_pBool)
        return m_pBool->GetValue();
    if (m_pSelection) {
        if (values::SelectionItem* item = m_pSelection->GetCurrentItem())
            return item->GetKey() == m_nCheckedKey;
    }
    if (m_pMultiSelection)
        return m_pMultiSelection->IsItemChecked(m_nMultiKey);
    return false;
}

bool VCCheckBox::GetDirty() const
{
    return m_bDirty;
}

void VCCheckBox::SetDirty(bool dirty)
{
    m_bDirty = dirty;
}

void VCCheckBox::SetText(QString text)
{
    setText(text);
}

void VCCheckBox::Update(Observable* source, TChangeCode code)
{
    if (code == StateChanged) {
        // An unbound field is a null Observable; the state helper has nothing to do with it.
        if (source == ObservableOf(m_pBool)) {
            ApplyValueState(m_pBool, this);
            return;
        }
        if (source == ObservableOf(m_pSelection)) {
            ApplyValueState(m_pSelection, this);
            return;
        }
        if (source == ObservableOf(m_pMultiSelection)) {
            ApplyValueState(m_pMultiSelection, this);
            return;
        }
    }

    m_bDirty = true;

    if (code == ValueChanged) {
        if (m_pBool && source == ObservableOf(m_pBool))
            setChecked(m_pBool->GetValue());
        if (m_pSelection && source == ObservableOf(m_pSelection)) {
            // With no current item the box keeps what it shows.
            if (values::SelectionItem* item = m_pSelection->GetCurrentItem())
                setChecked(item->GetKey() == m_nCheckedKey);
        }
        if (m_pMultiSelection && source == ObservableOf(m_pMultiSelection))
            setChecked(m_pMultiSelection->IsItemChecked(m_nMultiKey));
    } else if (code == ValueDestroyed) {
        ForgetDestroyedValue(m_pBool, source);
        ForgetDestroyedValue(m_pSelection, source);
        ForgetDestroyedValue(m_pMultiSelection, source);
    }
}

void VCCheckBox::slotInternalChange()
{
    // One recording per value, so that each can be undone on its own; a span closes before the next
    // opens. Every pointer is tested anew, since a write may make an observer remove another value,
    // and the box itself may not outlive a write.
    if (m_pBool) {
        if (!SurvivesWrite(this, [this] {
                GuiUndoRecordingHelper undo(this, QString());
                m_pBool->SetValue(isChecked(), this);
            }))
            return;
        m_bDirty = true;
    }
    if (m_pSelection) {
        if (!SurvivesWrite(this, [this] {
                GuiUndoRecordingHelper undo(this, QString());
                m_pSelection->SelectKey(isChecked() ? m_nCheckedKey : m_nUncheckedKey, nullptr);
            }))
            return;
        m_bDirty = true;
    }
    if (m_pMultiSelection) {
        if (!SurvivesWrite(this, [this] {
                GuiUndoRecordingHelper undo(this, QString());
                m_pMultiSelection->SetItemChecked(m_nMultiKey, isChecked(), nullptr);
            }))
            return;
        m_bDirty = true;
    }
}
