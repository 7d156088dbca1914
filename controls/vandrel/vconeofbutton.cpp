#include <vandrel/vconeofbutton.h>

#include <vandrel/binding/binding.h>

#include <QIcon>
#include <QPointer>

namespace {

QPixmap fromXpm(const char* const* xpm)
{
    return xpm ? QPixmap(xpm) : QPixmap();
}

} // namespace

VCOneOfButton::VCOneOfButton(QString text, QWidget* parent, const char* const* inPicture, const char* const* outPicture,
                             const QString& name)
    : UndoRecordingControlBase()
    , VCButton(parent, name, false)
    , m_OneOfValueSelection(nullptr)
    , m_pInPicture(nullptr)
    , m_pOutPicture(nullptr)
{
    Setup(text, fromXpm(inPicture), outPicture ? new QPixmap(outPicture) : nullptr);
    if (toolTip().isEmpty() && !text.isEmpty())
        setToolTip(text);
    VCButton::setEnabled(false);
}

VCOneOfButton::VCOneOfButton(QString text, QWidget* parent, QPixmap inPicture, QPixmap outPicture, const QString& name)
    : UndoRecordingControlBase()
    , VCButton(parent, name, false)
    , m_OneOfValueSelection(nullptr)
    , m_pInPicture(nullptr)
    , m_pOutPicture(nullptr)
{
    Setup(text, inPicture, new QPixmap(outPicture));
    VCButton::setEnabled(false);
    if (!name.isEmpty())
        setToolTip(name);
}

// What both constructors make: the pictures (no out picture makes the button checkable), its own click
// handling, and the fixed size.
void VCOneOfButton::Setup(const QString& text, const QPixmap& inPicture, QPixmap* outPicture)
{
    setAutoRaise(true);
    setText(text);
    m_pInPicture = new QPixmap(inPicture);
    setIcon(QIcon(*m_pInPicture));
    m_pOutPicture = outPicture;
    if (!m_pOutPicture)
        setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    disconnect(this, SIGNAL(clicked()), this, SLOT(slotButtonPressed()));
    connect(this, SIGNAL(clicked()), this, SLOT(slotButtonPressed()));
    setFixedSize(24, 24);
}

VCOneOfButton::~VCOneOfButton()
{
    DetachValue(m_OneOfValueSelection, this);
    FreePixmaps();
}

bool VCOneOfButton::SetSelection_ValuePath(const QString& path, const QString& value, QString outValue)
{
    return GuardedBinding("controls/vandrel/vconeofbutton", __LINE__, [&] {
        DetachValue(m_OneOfValueSelection, this);
        m_OneOfValueSelection = FindAndAttach<values::ValueSelection>(path, nullptr, this);
        if (m_OneOfValueSelection) {
            m_Value = value;
            m_OutValue = outValue;
            BREVAN_ASSERT(m_OneOfValueSelection->GetItem(m_Value));
            if (!m_OutValue.isEmpty())
                BREVAN_ASSERT(m_OneOfValueSelection->GetItem(m_OutValue));
        }
        SyncObserver(m_OneOfValueSelection, this);
        return m_OneOfValueSelection != nullptr;
    });
}

void VCOneOfButton::SetPixmaps(QPixmap inPicture, QPixmap outPicture, QString value, QString outValue)
{
    FreePixmaps();
    m_pInPicture = new QPixmap(inPicture);
    setIcon(QIcon(*m_pInPicture));
    m_pOutPicture = new QPixmap(outPicture);
    setChecked(false);
    setCheckable(false);
    if (!value.isEmpty())
        m_Value = value;
    if (!outValue.isEmpty())
        m_OutValue = outValue;
    if (m_OneOfValueSelection)
        Update(ObservableOf(m_OneOfValueSelection), ValueChanged);
}

void VCOneOfButton::SetPixmaps(const char* const* inPicture, const char* const* outPicture, QString value,
                               QString outValue)
{
    FreePixmaps();
    m_pInPicture = new QPixmap(fromXpm(inPicture));
    setIcon(QIcon(*m_pInPicture));
    if (outPicture) {
        m_pOutPicture = new QPixmap(outPicture);
        setChecked(false);
    }
    setCheckable(outPicture == nullptr);
    if (!value.isEmpty())
        m_Value = value;
    if (!outValue.isEmpty())
        m_OutValue = outValue;
    if (m_OneOfValueSelection)
        Update(ObservableOf(m_OneOfValueSelection), ValueChanged);
}

values::ValueSelection* VCOneOfButton::GetValueSelection()
{
    return m_OneOfValueSelection;
}

void VCOneOfButton::Update(Observable* source, TChangeCode code)
{
    // A state value bound through the button's own call is not followed here, but it is let go of
    // when it goes, so that no pointer outlives it.
    if (source && m_pStateValue && source == ObservableOf(m_pStateValue) && source != ObservableOf(m_OneOfValueSelection)) {
        if (code == ValueDestroyed)
            m_pStateValue = nullptr;
        else if (code == StateChanged)
            ApplyValueRemoval(m_pStateValue, this);
        return;
    }
    if (code == StateChanged) {
        if (source == ObservableOf(m_OneOfValueSelection))
            ApplyValueStateVirtual(m_OneOfValueSelection, this);
        return;
    }
    if (code == ValueDestroyed) {
        ForgetDestroyedValue(m_OneOfValueSelection, source);
        ForgetDestroyedValue(m_pStateValue, source);
        return;
    }
    if (code != ValueChanged || !m_OneOfValueSelection || source != ObservableOf(m_OneOfValueSelection))
        return;
    // The raw item string is compared: the button's strings are the selection's own words.
    const bool in = m_OneOfValueSelection->GetValueString() == m_Value;
    if (m_pOutPicture) {
        setChecked(false);
        setIcon(QIcon(in ? *m_pInPicture : *m_pOutPicture));
    } else {
        setChecked(in);
    }
}

void VCOneOfButton::slotButtonPressed()
{
    const QPointer<VCOneOfButton> alive(this);
    if (m_pClickCallback && !m_pClickCallback->OnButtonClicked(this))
        return;
    if (!alive || !m_OneOfValueSelection)
        return;
    // Written with no originator: the button hears of its own write and redraws from the value.
    if (m_OneOfValueSelection->GetValueString() == m_Value) {
        if (!m_OutValue.isEmpty()) {
            GuiUndoRecordingHelper undo(this, QString());
            m_OneOfValueSelection->SetValueString(m_OutValue, nullptr);
        }
    } else {
        GuiUndoRecordingHelper undo(this, QString());
        m_OneOfValueSelection->SetValueString(m_Value, nullptr);
    }
}

void VCOneOfButton::focusOutEvent(QFocusEvent* event)
{
    QAbstractButton::focusOutEvent(event);
    // A click that wrote nothing has toggled a checkable button: show the value again.
    Update(ObservableOf(m_OneOfValueSelection), ValueChanged);
}

void VCOneOfButton::FreePixmaps()
{
    delete m_pInPicture;
    m_pInPicture = nullptr;
    delete m_pOutPicture;
    m_pOutPicture = nullptr;
}
