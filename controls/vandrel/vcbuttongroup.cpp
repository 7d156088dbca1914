#include <vandrel/vcbuttongroup.h>

#include <vandrel/binding/binding.h>

#include <QBoxLayout>
#include <QButtonGroup>
#include <QScopedValueRollback>

#include <climits>

EnhancedRadioButton::EnhancedRadioButton(const QString& text, QWidget* parent)
    : QRadioButton(text, parent)
{
}

VCButtonGroup::VCButtonGroup(QWidget* parent, const char* name, Qt::Orientation orientation)
    : UndoRecordingControlBase()
    , QGroupBox(parent)
    , m_pValueSelection(nullptr)
    , m_CheckableValue(this)
    , m_pLayout(nullptr)
    , m_pButtonGroup(nullptr)
    , m_bAddStretch(false)
    , m_nClicking(0)
    , m_bShowingBool(false)
{
    const QString strName = QString::fromUtf8(name);
    setObjectName(strName);
    setToolTip(strName);
    setTitle(strName);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    QWidget::setEnabled(false);
    if (orientation == Qt::Horizontal)
        m_pLayout = new QHBoxLayout;
    else
        m_pLayout = new QVBoxLayout;
    if (!title().isEmpty()) {
        m_pLayout->setContentsMargins(2, 0, 2, 2);
        m_pLayout->setSpacing(2);
    }
    setLayout(m_pLayout);
    m_pButtonGroup = new QButtonGroup(this);
    m_pButtonGroup->setExclusive(true);
    connect(this, SIGNAL(toggled(bool)), this, SLOT(slotToggled(bool)));
}

VCButtonGroup::~VCButtonGroup()
{
    DetachValue(m_pValueSelection, this);
    // The buttons go as children of the group; m_CheckableValue lets go of the boolean itself.
}

bool VCButtonGroup::SetValueSelection_ValuePath(const QString& path)
{
    DetachValue(m_pValueSelection, this);
    return SetValueSelection(FindForSlot<values::ValueSelection>(path, m_pValueSelection, this));
}

bool VCButtonGroup::SetValueSelection(values::ValueSelection* selection)
{
    // A selection bound before and not let go by the caller would keep a pointer to this group after
    // it is gone: it is let go here.
    if (m_pValueSelection && m_pValueSelection != selection)
        DetachValue(m_pValueSelection, this);
    m_pValueSelection = selection;
    if (m_pValueSelection) {
        ObservableOf(m_pValueSelection)->Attach(this);
        RemoveButtons();
        AddButtons();
        if (const values::SelectionItem* current = m_pValueSelection->GetCurrentItem())
            setCurrentItem(int(current->GetKey()));
    }
    QWidget::setEnabled(false);
    SyncObserver(m_pValueSelection, this);
    return m_pValueSelection != nullptr;
}

bool VCButtonGroup::SetCheckable_ValuePath(const QString& path)
{
    setCheckable(false);
    m_CheckableValue.Assign(nullptr);
    values::Value<bool>* found = nullptr;
    if (values::Tree* tree = values::Tree::Instance())
        found = dynamic_cast<values::Value<bool>*>(tree->Find(path));
    if (!found)
        return false;
    m_CheckableValue.Assign(found);
    {
        // Making the box checkable checks it: that is no user's edit of the boolean.
        const QScopedValueRollback<bool> showing(m_bShowingBool, true);
        setCheckable(true);
    }
    SyncObserver(found, this);
    return true;
}

bool VCButtonGroup::EnableRadioButton(bool enable, int key)
{
    const auto it = m_Buttons.find(key);
    if (it == m_Buttons.end())
        return false;
    values::Value<bool>* checkable = m_CheckableValue.Get();
    it->second->setEnabled(checkable ? checkable->GetValue() && enable : enable);
    return true;
}

int VCButtonGroup::GetCurrentIndex()
{
    if (m_pValueSelection)
        return int(m_pValueSelection->GetCurrentIndex());
    for (const auto& entry : m_Buttons) {
        if (entry.second->isChecked())
            return entry.first;
    }
    return -1;
}

void VCButtonGroup::setCurrentItem(int key)
{
    // The bound compares a key with a count: keys are taken to run from 0 without gaps.
    if (m_Buttons.empty() || key > int(m_Buttons.size()) - 1)
        return;
    const auto it = m_Buttons.find(key);
    if (it != m_Buttons.end()) // a key within the bound may still have no button
        it->second->setChecked(true);
}

void VCButtonGroup::setAddStretch(bool on)
{
    m_bAddStretch = on;
}

void VCButtonGroup::setContentsMargins(int left, int top, int right, int bottom)
{
    m_pLayout->setContentsMargins(left, top, right, bottom);
}

void VCButtonGroup::setNoFrame()
{
    setStyleSheet(QStringLiteral("border:0;"));
    m_pLayout->setContentsMargins(0, 0, 0, 0);
}

void VCButtonGroup::Update(Observable* source, TChangeCode code)
{
    if (code == StateChanged) {
        if (source == ObservableOf(m_pValueSelection)) {
            ApplyValueState(m_pValueSelection, this);
            return;
        }
        // The boolean's state doesn't touch the group. Its holder lets go of it when told of its
        // removal; a boolean bound while already removed is let go of here, as on that news.
        values::Value<bool>* checkable = m_CheckableValue.Get();
        if (checkable && source == ObservableOf(checkable) && checkable->GetState() == Removed)
            m_CheckableValue.Assign(nullptr);
        return;
    }
    if (code == ValueDestroyed) {
        ForgetDestroyedValue(m_pValueSelection, source);
        return;
    }
    if (m_pValueSelection && source == ObservableOf(m_pValueSelection)) {
        switch (code) {
        case ValueChanged:
            SetItem();
            break;
        case ItemsChanged:
        case ItemAdded:
            AddButtons();
            break;
        case ItemsCleared:
            RemoveButtons();
            break;
        default:
            break;
        }
        return;
    }
    values::Value<bool>* checkable = m_CheckableValue.Get();
    if (checkable && source == ObservableOf(checkable) && code == ValueChanged) {
        const QScopedValueRollback<bool> showing(m_bShowingBool, true);
        setChecked(checkable->GetValue());
    }
}

int VCButtonGroup::AddButtons()
{
    if (!m_pValueSelection)
        return 0;
    const values::SelectionItem* current = m_pValueSelection->GetCurrentItem();
    long key = current ? current->GetKey() : long(INT_MIN);
    RemoveButtons();
    const int count = m_pValueSelection->GetItemCount();
    for (int i = 0; i < count; ++i) {
        const values::SelectionItem* item = m_pValueSelection->GetItemAt(i);
        if (!item)
            continue;
        const QString text = TranslateItemName(m_pValueSelection, item->GetName());
        auto* button = new EnhancedRadioButton(text, this);
        button->setObjectName(QString::fromLatin1(text.toLatin1()));
        connect(button, SIGNAL(clicked()), this, SLOT(slotUpdateValues()));
        const int itemKey = int(item->GetKey());
        m_Buttons[itemKey] = button;
        m_pButtonGroup->addButton(button, itemKey);
        m_pLayout->addWidget(button);
        button->show(); // at once, not on the next turn of the loop as the layout would
    }
    // Stretches are not taken out again by RemoveButtons(): they add up over rebuilds, as they always have.
    if (m_bAddStretch)
        m_pLayout->addStretch(0);
    if (key == long(INT_MIN) && count > 0) {
        const values::SelectionItem* first = m_pValueSelection->GetItemAt(0);
        if (!first)
            return count;
        key = first->GetKey();
    }
    setCurrentItem(int(key)); // the widgets only: the value may still have no current item
    return count;
}

void VCButtonGroup::RemoveButtons()
{
    for (const auto& entry : m_Buttons) {
        EnhancedRadioButton* button = entry.second;
        m_pButtonGroup->removeButton(button);
        if (m_nClicking > 0) {
            // An observer of a click's write changed the items: Qt is still inside the clicked button's
            // event and goes on with it after this returns, so it is only taken out of sight here.
            button->disconnect(this);
            button->hide();
            button->setParent(nullptr);
            button->deleteLater();
        } else {
            delete button;
        }
    }
    m_Buttons.clear();
}

void VCButtonGroup::SetItem()
{
    if (!m_pValueSelection)
        return;
    if (const values::SelectionItem* current = m_pValueSelection->GetCurrentItem())
        setCurrentItem(int(current->GetKey()));
}

void VCButtonGroup::slotUpdateValues()
{
    int key = 0;
    bool found = false;
    for (const auto& entry : m_Buttons) {
        if (entry.second->isChecked()) {
            key = entry.first;
            found = true;
            break;
        }
    }
    if (!found)
        return;
    ++m_nClicking;
    const bool alive = SurvivesWrite(this, [this, key] { slotSet2Value(key); });
    if (!alive)
        return;
    --m_nClicking;
    Q_EMIT signalCurrentItemChecked(key);
}

void VCButtonGroup::slotSet2Value(int value)
{
    if (!m_pValueSelection)
        return;
    GuiUndoRecordingHelper undo(this, QString());
    m_pValueSelection->SelectKey(value, this);
}

void VCButtonGroup::slotToggled(bool on)
{
    if (m_bShowingBool)
        return;
    if (values::Value<bool>* checkable = m_CheckableValue.Get())
        checkable->SetValue(on, this); // no undo recording for the group's check box
}
