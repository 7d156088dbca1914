#include <vandrel/vcbutton.h>

#include <vandrel/binding/binding.h>

#include <QIcon>
#include <QKeyEvent>
#include <QPointer>
#include <QTimerEvent>

#include <algorithm>

namespace {

// The small downward arrow of buddy mode.
const char* const buddyArrowXpm[] = {
    "11 8 2 1",
    "b c #000000",
    ". c none",
    "...........",
    "...........",
    "..bbbbbbb..",
    "...bbbbb...",
    "....bbb....",
    ".....b.....",
    "...........",
    "...........",
};

// Wait before the first repeat tick of a held button.
const int repeatDelayMs = 500;
// Repeat interval that setAutoRepeat(true) chooses.
const int autoRepeatIntervalMs = 100;

// Kills the timer \a id of \a owner, when one runs, and clears the id.
void stopTimer(QObject* owner, int& id)
{
    if (id) {
        owner->killTimer(id);
        id = 0;
    }
}

bool isSelectKey(int key)
{
    return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

IButtonClickCallback::~IButtonClickCallback() = default;

VCButton::VCButton(QWidget* parent, const QString& name, bool noButton)
    : QToolButton(parent)
    , m_pDefaultPicture(nullptr)
    , m_bBuddyMode(false)
    , m_pValueSelection(nullptr)
    , m_pStateValue(nullptr)
    , m_nCurrentIndex(-1)
    , m_nRepeatTimer(0)
    , m_nRepeatInterval(0)
    , m_nDelayTimer(0)
    , m_bRepeating(false)
    , m_bNoButton(noButton)
    , m_pClickCallback(nullptr)
{
    setObjectName(name);
    setAutoRaise(true);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, SIGNAL(clicked()), this, SLOT(slotButtonPressed()));
    setFixedSize(24, 24);
    if (!name.isEmpty())
        setToolTip(name);
    StopRepeater();
    QWidget::setEnabled(false);
}

VCButton::~VCButton()
{
    DetachValue(m_pValueSelection, this);
    DetachValue(m_pStateValue, this);
    RemoveItemsFromList();
    delete m_pDefaultPicture;
}

bool VCButton::SetValueSelection_ValuePath(const QString& path)
{
    DetachValue(m_pValueSelection, this);
    m_pValueSelection = FindAndAttach<values::ValueSelection>(path, nullptr, this);
    // The state value may be the selection let go: it must keep telling its state, and its removal.
    if (m_pStateValue)
        ObservableOf(m_pStateValue)->Attach(this);
    if (m_pValueSelection) {
        RemoveItemsFromList();
        AddItems2List();
        SetItem();
    }
    SyncObserver(m_pValueSelection, this);
    return m_pValueSelection != nullptr;
}

bool VCButton::SetState_ValuePath(const QString& path)
{
    DetachValue(m_pStateValue, this);
    m_pStateValue = FindAndAttach<values::ValueBase>(path, nullptr, this);
    if (m_pValueSelection) // it may be the state value let go
        ObservableOf(m_pValueSelection)->Attach(this);
    SyncObserver(m_pStateValue, this);
    return m_pStateValue != nullptr;
}

values::ValueSelection* VCButton::GetValueSelection()
{
    return m_pValueSelection;
}

QString VCButton::GetCurrentText()
{
    values::ValueSelection* selection = GetValueSelection();
    return selection ? selection->GetValueString() : QString();
}

QStringList VCButton::GetItemList()
{
    // Through GetValueSelection(), so that a derived button on a selection of its own lists that one.
    QStringList names;
    values::ValueSelection* selection = GetValueSelection();
    if (!selection)
        return names;
    const int count = selection->GetItemCount();
    for (int i = 0; i < count; ++i) {
        if (const values::SelectionItem* item = selection->GetItemAt(i))
            names << item->GetName();
    }
    return names;
}

void VCButton::SetDefaultPicture(QPixmap picture)
{
    delete m_pDefaultPicture;
    m_pDefaultPicture = new QPixmap(picture);
    setIcon(QIcon(*m_pDefaultPicture));
    SetItem(); // the current item's special picture wins over the default
}

void VCButton::SetDefaultPicture(const char* const* xpm)
{
    SetDefaultPicture(QPixmap(xpm));
}

bool VCButton::SetSpecialPicture(int key, QPixmap picture, bool down)
{
    m_SpecialPictures.insert(key, SpecialPicture{down, picture});
    SetItem();
    return true;
}

bool VCButton::SetSpecialPicture(int key, const char* const* xpm, bool down)
{
    return SetSpecialPicture(key, QPixmap(xpm), down);
}

void VCButton::SetBuddyMode(bool on)
{
    m_bBuddyMode = on;
    if (on) {
        setText(QString());
        setIcon(QIcon(QPixmap(buddyArrowXpm)));
    }
    update();
}

void VCButton::SetButtonClickCallback(IButtonClickCallback* callback)
{
    m_pClickCallback = callback;
}

void VCButton::SetRepeaterTime(int milliseconds)
{
    m_nRepeatInterval = milliseconds;
}

void VCButton::setAutoRepeat(bool on)
{
    m_nRepeatInterval = on ? autoRepeatIntervalMs : 0;
}

void VCButton::setEnabled(bool on)
{
    if (!on) {
        m_bRepeating = false;
        stopTimer(this, m_nRepeatTimer);
        stopTimer(this, m_nDelayTimer);
    }
    QWidget::setEnabled(on);
    if (on)
        SetItem(); // pictures may have changed while disabled
}

void VCButton::setCurrentItem(int key)
{
    const auto it = std::find(m_Keys.begin(), m_Keys.end(), key);
    if (it == m_Keys.end())
        return;
    m_nCurrentIndex = int(it - m_Keys.begin());
    DisplayCurrent();
    ShowCurrentText();
}

bool& VCButton::IsNoButton()
{
    return m_bNoButton;
}

void VCButton::Update(Observable* source, TChangeCode code)
{
    if (code == StateChanged) {
        // Both are asked: the state value may be the selection itself.
        if (source == ObservableOf(m_pValueSelection))
            ApplyValueStateVirtual(m_pValueSelection, this);
        if (source == ObservableOf(m_pStateValue))
            ApplyValueStateVirtual(m_pStateValue, this);
        return;
    }
    if (code == ValueDestroyed) {
        ForgetDestroyedValue(m_pValueSelection, source);
        ForgetDestroyedValue(m_pStateValue, source);
        return;
    }
    // A null source stands for an unbound selection: focusOutEvent() redraws that way.
    if (source != ObservableOf(m_pValueSelection))
        return;
    switch (code) {
    case ValueChanged:
        SetItem();
        break;
    case ItemsChanged:
    case ItemAdded:
        RemoveItemsFromList();
        AddItems2List();
        SetItem();
        break;
    case ItemsCleared:
        RemoveItemsFromList(); // the picture and the index stay until items come back
        break;
    default:
        break;
    }
}

void VCButton::slotButtonPressed()
{
    if (m_pClickCallback && !m_pClickCallback->OnButtonClicked(this))
        return;
    if (m_bNoButton)
        return;
    const QPointer<VCButton> alive(this); // an observer of the selection may close this button's panel
    setNextItem();
    if (alive && isCheckable())
        emit ButtonToggled(isChecked());
}

void VCButton::timerEvent(QTimerEvent* event)
{
    const int id = event->timerId();
    if (m_nDelayTimer && id == m_nDelayTimer) {
        stopTimer(this, m_nDelayTimer);
        if (m_bRepeating && !m_nRepeatTimer)
            m_nRepeatTimer = startTimer(m_nRepeatInterval, Qt::CoarseTimer);
        return;
    }
    if (m_bRepeating) {
        if (m_nRepeatTimer && id == m_nRepeatTimer)
            emit clicked(false);
        else
            QToolButton::timerEvent(event);
        return;
    }
    // Not repeating: a delay timer left over from a short press ends here. The button's own timers are
    // dropped too, so that the click of animateClick() comes from the key's release, not its timer.
    stopTimer(this, m_nDelayTimer);
}

void VCButton::mousePressEvent(QMouseEvent* event)
{
    StartRepeater();
    if (!m_bNoButton)
        QToolButton::mousePressEvent(event);
}

void VCButton::mouseReleaseEvent(QMouseEvent* event)
{
    StopRepeater();
    if (m_bNoButton)
        emit clicked(false);
    else
        QToolButton::mouseReleaseEvent(event);
}

void VCButton::keyPressEvent(QKeyEvent* event)
{
    if (!event->isAutoRepeat() && isSelectKey(event->key())) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
        animateClick(); // always 100 ms in Qt 6
#else
        animateClick(100);
#endif
        StartRepeater();
        return;
    }
    if (!m_bNoButton)
        QToolButton::keyPressEvent(event);
}

void VCButton::keyReleaseEvent(QKeyEvent* event)
{
    if (!event->isAutoRepeat())
        StopRepeater();
    if (m_bNoButton) {
        emit clicked(false); // a picture reports every key released over it
        return;
    }
    QToolButton::keyReleaseEvent(event);
}

void VCButton::focusOutEvent(QFocusEvent* event)
{
    StopRepeater();
    if (!m_bNoButton)
        QToolButton::focusOutEvent(event);
    // An interrupted press may have left the wrong down state: redraw from the value.
    Update(ObservableOf(m_pValueSelection), ValueChanged);
}

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
void VCButton::enterEvent(QEnterEvent* event)
#else
void VCButton::enterEvent(QEvent* event)
#endif
{
    if (!m_bNoButton)
        QToolButton::enterEvent(event);
}

void VCButton::leaveEvent(QEvent* event)
{
    if (!m_bNoButton)
        QToolButton::leaveEvent(event);
}

int VCButton::AddItems2List()
{
    if (!m_pValueSelection)
        return 0;
    RemoveItemsFromList();
    const int count = m_pValueSelection->GetItemCount();
    if (count < 1)
        return count;
    for (int i = 0; i < count; ++i) {
        if (const values::SelectionItem* item = m_pValueSelection->GetItemAt(i))
            m_Keys.push_back(int(item->GetKey()));
    }
    return count;
}

void VCButton::RemoveItemsFromList()
{
    m_Keys.clear();
}

int VCButton::DisplayCurrent()
{
    if (m_nCurrentIndex >= 0 && m_nCurrentIndex < int(m_Keys.size())) {
        const int key = m_Keys[size_t(m_nCurrentIndex)];
        const auto special = m_SpecialPictures.constFind(key);
        if (special == m_SpecialPictures.constEnd()) {
            // The down state is left alone: an earlier special picture may hold the button down.
            if (m_pDefaultPicture)
                setIcon(QIcon(*m_pDefaultPicture));
            return key;
        }
        setIcon(QIcon(special->m_Picture));
        if (!m_bNoButton)
            setDown(special->m_bDown);
        return key;
    }
    if (m_pDefaultPicture)
        setIcon(QIcon(*m_pDefaultPicture));
    return 0;
}

void VCButton::SetItem()
{
    if (!m_pValueSelection)
        return;
    if (const values::SelectionItem* current = m_pValueSelection->GetCurrentItem()) {
        setCurrentItem(int(current->GetKey()));
        update();
    }
}

void VCButton::setNextItem()
{
    ++m_nCurrentIndex;
    if (m_nCurrentIndex >= int(m_Keys.size()))
        m_nCurrentIndex = 0; // also with no items at all
    if (m_pValueSelection) {
        if (!SurvivesWrite(this, [this] {
                GuiUndoRecordingHelper recording(this, QString());
                m_pValueSelection->SelectKey(DisplayCurrent(), this);
            }))
            return;
    } else {
        DisplayCurrent();
    }
    ShowCurrentText();
}

void VCButton::StartRepeater()
{
    stopTimer(this, m_nDelayTimer);
    // A repeat timer that runs already is kept: a second press while it runs doesn't restart its rhythm.
    if (m_nRepeatInterval > 0) {
        m_bRepeating = true;
        m_nDelayTimer = startTimer(repeatDelayMs, Qt::CoarseTimer);
    }
}

void VCButton::StopRepeater()
{
    m_bRepeating = false;
    if (m_nRepeatTimer) {
        stopTimer(this, m_nRepeatTimer);
        stopTimer(this, m_nDelayTimer);
    }
    // Without a repeat timer a pending delay timer stays; timerEvent() drops it as it expires.
}

void VCButton::ShowCurrentText()
{
    // Item names stand raw on a button with text: they are the selection's own words.
    if (toolButtonStyle() == Qt::ToolButtonIconOnly || !m_pValueSelection || m_pValueSelection->GetCurrentIndex() < 0)
        return;
    if (const values::SelectionItem* current = m_pValueSelection->GetCurrentItem())
        setText(current->GetName());
}
