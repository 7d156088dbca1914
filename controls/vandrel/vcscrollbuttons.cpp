#include <vandrel/vcscrollbuttons.h>

#include <vandrel/binding/binding.h>
#include <vandrel/binding/useraction_p.h>
#include <vandrel/vcbutton.h>
#include "sliderconversion_p.h"

#include <QEvent>
#include <QKeyEvent>
#include <QWidget>

#include <climits>
#include <initializer_list>

namespace {

// Arrows of a row.
const char* const leftXpm[] = {
    "11 9 2 1", "b c #000000", ". c none",
    "........b..", ".......bb..", "......bbb..", "....bbbbb..", "..bbbbbbb..",
    "....bbbbb..", "......bbb..", ".......bb..", "........b..",
};
const char* const rightXpm[] = {
    "11 9 2 1", "b c #000000", ". c none",
    "..b........", "..bb.......", "..bbb......", "..bbbbb....", "..bbbbbbb..",
    "..bbbbb....", "..bbb......", "..bb.......", "..b........",
};
const char* const pageLeftXpm[] = {
    "12 9 2 1", "b c #000000", ". c none",
    "............", ".....b.....b", "....bb....bb", "..bbbb..bbbb", "bbbbbbbbbbbb",
    "..bbbb..bbbb", "....bb....bb", ".....b.....b", "............",
};
const char* const pageRightXpm[] = {
    "12 9 2 1", "b c #000000", ". c none",
    "............", "b.....b.....", "bb....bb....", "bbbb..bbbb..", "bbbbbbbbbbbb",
    "bbbb..bbbb..", "bb....bb....", "b.....b.....", "............",
};

// Arrows of a column.
const char* const upXpm[] = {
    "11 8 2 1", "b c #000000", ". c none",
    "...........", "...........", ".....b.....", "....bbb....",
    "...bbbbb...", "..bbbbbbb..", "...........", "...........",
};
const char* const downXpm[] = {
    "11 8 2 1", "b c #000000", ". c none",
    "...........", "...........", "..bbbbbbb..", "...bbbbb...",
    "....bbb....", ".....b.....", "...........", "...........",
};
const char* const pageUpXpm[] = {
    "11 8 2 1", "b c #000000", ". c none",
    ".....b.....", "....bbb....", "...bbbbb...", "..bbbbbbb..",
    ".....b.....", "....bbb....", "...bbbbb...", "..bbbbbbb..",
};
const char* const pageDownXpm[] = {
    "11 8 2 1", "b c #000000", ". c none",
    "..bbbbbbb..", "...bbbbb...", "....bbb....", ".....b.....",
    "..bbbbbbb..", "...bbbbb...", "....bbb....", ".....b.....",
};

struct ButtonLook
{
    const char* name; // object name as it stands, tool-tip once translated
    const char* const* picture;
};

// In the order minus, minus page, plus page, plus.
const ButtonLook rowLooks[] = {
    {QT_TRANSLATE_NOOP("VCScrollButtons", "Move Left"), leftXpm},
    {QT_TRANSLATE_NOOP("VCScrollButtons", "Move Page Left"), pageLeftXpm},
    {QT_TRANSLATE_NOOP("VCScrollButtons", "Move Page Right"), pageRightXpm},
    {QT_TRANSLATE_NOOP("VCScrollButtons", "Move Right"), rightXpm},
};
const ButtonLook columnLooks[] = {
    {QT_TRANSLATE_NOOP("VCScrollButtons", "Move Up"), upXpm},
    {QT_TRANSLATE_NOOP("VCScrollButtons", "Move Page Up"), pageUpXpm},
    {QT_TRANSLATE_NOOP("VCScrollButtons", "Move Page Down"), pageDownXpm},
    {QT_TRANSLATE_NOOP("VCScrollButtons", "Move Down"), downXpm},
};

const int buttonSize = 16;

// value + delta, no further than limit in the direction of the move; wide, so that no sum overflows.
int stepTowards(int value, long long delta, int limit, bool upwards)
{
    long long moved = value + delta;
    moved = upwards ? qMin(moved, (long long)limit) : qMax(moved, (long long)limit);
    return int(qBound((long long)INT_MIN, moved, (long long)INT_MAX));
}

} // namespace

VCScrollButtons::VCScrollButtons(QWidget* parent, unsigned int flags)
    : QObject(nullptr)
    , m_pNumericValue(nullptr)
    , m_nFlags(flags)
    , m_nMinValue(0)
    , m_nMaxValue(100)
    , m_nValue(0)
    , m_nPageStep(10)
    , m_nSingleStep(1)
    , m_pParentWidget(parent)
{
    FollowOptionalRecordingDefault();
    if (parent)
        parent->installEventFilter(this);

    // The constructor asks the row bits for the direction of the arrows, LineUpButtons() the column
    // bits first for the placement: with both kinds set the arrows point sideways in a column.
    const bool row = (flags & (ScrollButtonsTop | ScrollButtonsBottom)) != 0;
    const ButtonLook* looks = row ? rowLooks : columnLooks;
    const bool line = (flags & ScrollButtonsLine) != 0;
    const bool page = (flags & ScrollButtonsPage) != 0;
    if (line)
        m_pMinusButton = MakeButton(looks[0].name, looks[0].picture);
    if (page) {
        m_pMinusPageButton = MakeButton(looks[1].name, looks[1].picture);
        m_pPlusPageButton = MakeButton(looks[2].name, looks[2].picture);
    }
    if (line)
        m_pPlusButton = MakeButton(looks[3].name, looks[3].picture);

    for (VCButton* button : {m_pMinusButton.data(), m_pPlusButton.data(), m_pMinusPageButton.data(), m_pPlusPageButton.data()}) {
        if (!button)
            continue;
        button->setFixedSize(buttonSize, buttonSize);
        button->setAutoRepeat(true);
        button->setEnabled(true);
        button->setAutoFillBackground(true);
        // A child made after its parent was shown stays hidden unless told otherwise.
        if (parent && parent->isVisible())
            button->show();
    }

    if (m_pMinusButton)
        connect(m_pMinusButton, SIGNAL(clicked()), this, SLOT(slotMinusClicked()));
    if (m_pPlusButton)
        connect(m_pPlusButton, SIGNAL(clicked()), this, SLOT(slotPlusClicked()));
    if (m_pMinusPageButton)
        connect(m_pMinusPageButton, SIGNAL(clicked()), this, SLOT(slotMinusPageClicked()));
    if (m_pPlusPageButton)
        connect(m_pPlusPageButton, SIGNAL(clicked()), this, SLOT(slotPlusPageClicked()));

    LineUpButtons();
    EnableButtons();
}

VCScrollButtons::~VCScrollButtons()
{
    DetachValue(m_pNumericValue, this);
    delete m_pPlusButton.data();
    delete m_pMinusButton.data();
    delete m_pPlusPageButton.data();
    delete m_pMinusPageButton.data();
}

VCButton* VCScrollButtons::MakeButton(const char* name, const char* const* picture)
{
    auto* button = new VCButton(m_pParentWidget, QString::fromLatin1(name), false);
    button->setToolTip(tr(name));
    button->SetDefaultPicture(picture);
    button->installEventFilter(this);
    return button;
}

bool VCScrollButtons::Set_ValuePath(const QString& path)
{
    DetachValue(m_pNumericValue, this);
    m_pNumericValue = FindAndAttach<values::IValueNumeric>(path, nullptr, this);
    SyncObserver(m_pNumericValue, this);
    return m_pNumericValue != nullptr;
}

VCButton* VCScrollButtons::GetMinusButton() const
{
    return m_pMinusButton;
}

VCButton* VCScrollButtons::GetPlusButton() const
{
    return m_pPlusButton;
}

VCButton* VCScrollButtons::GetMinusPageButton() const
{
    return m_pMinusPageButton;
}

VCButton* VCScrollButtons::GetPlusPageButton() const
{
    return m_pPlusPageButton;
}

int VCScrollButtons::value() const
{
    return m_nValue;
}

int VCScrollButtons::minValue() const
{
    return m_nMinValue;
}

int VCScrollButtons::maxValue() const
{
    return m_nMaxValue;
}

void VCScrollButtons::setValue(int value)
{
    m_nValue = value;
}

void VCScrollButtons::setMinValue(int value)
{
    m_nMinValue = value;
}

void VCScrollButtons::setMaxValue(int value)
{
    m_nMaxValue = value;
}

void VCScrollButtons::setPageStep(int step)
{
    m_nPageStep = step;
}

void VCScrollButtons::setSingleStep(int step)
{
    m_nSingleStep = step;
}

void VCScrollButtons::addLine()
{
    m_nValue = stepTowards(m_nValue, m_nSingleStep, m_nMaxValue, true);
}

void VCScrollButtons::addPage()
{
    m_nValue = stepTowards(m_nValue, m_nPageStep, m_nMaxValue, true);
}

void VCScrollButtons::subtractLine()
{
    m_nValue = stepTowards(m_nValue, -(long long)m_nSingleStep, m_nMinValue, false);
}

void VCScrollButtons::subtractPage()
{
    m_nValue = stepTowards(m_nValue, -(long long)m_nPageStep, m_nMinValue, false);
}

void VCScrollButtons::Up()
{
    slotPlusClicked();
}

void VCScrollButtons::Down()
{
    slotMinusClicked();
}

bool VCScrollButtons::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        LineUpButtons();
    // Only presses are looked at: a button being destroyed gets events too, and is no VCButton then.
    const bool press = event->type() == QEvent::MouseButtonPress
        || (event->type() == QEvent::KeyPress && !static_cast<QKeyEvent*>(event)->isAutoRepeat());
    auto* button = press ? qobject_cast<VCButton*>(watched) : nullptr;
    if (button
        && (button == m_pMinusButton || button == m_pPlusButton || button == m_pMinusPageButton || button == m_pPlusPageButton))
        m_undoAction.Begin();
    return false;
}

void VCScrollButtons::Update(Observable* source, TChangeCode code)
{
    // Unbound, a null source would match the null pointer: nothing here may read the number then.
    if (!m_pNumericValue || source != ObservableOf(m_pNumericValue))
        return;
    switch (code) {
    case StateChanged:
        ApplyValueRemoval(m_pNumericValue, this); // no widget of its own to enable
        break;
    case ValueDestroyed:
        ForgetDestroyedValue(m_pNumericValue, source);
        break;
    case RangeChanged:
        m_nMinValue = vandrel::TruncateToInt(m_pNumericValue->GetMinimum());
        m_nMaxValue = vandrel::TruncateToInt(m_pNumericValue->GetMaximum() + 0.5);
        Q_FALLTHROUGH();
    case ValueChanged:
        m_nValue = vandrel::TruncateToInt(m_pNumericValue->GetValue());
        EnableButtons();
        break;
    default:
        break;
    }
}

void VCScrollButtons::LineUpButtons()
{
    if (!m_pParentWidget)
        return;
    const int width = m_pParentWidget->geometry().width();
    const int height = m_pParentWidget->geometry().height();
    auto place = [](VCButton* button, int x, int y) {
        if (button)
            button->move(x, y);
    };
    if (m_nFlags & (ScrollButtonsLeft | ScrollButtonsRight)) {
        // The column starts one button below the top, the row right at the left edge.
        const int x = (m_nFlags & ScrollButtonsRight) ? width - buttonSize : 0;
        place(m_pMinusButton, x, buttonSize);
        place(m_pPlusButton, x, height - buttonSize);
        place(m_pMinusPageButton, x, 2 * buttonSize);
        place(m_pPlusPageButton, x, height - 2 * buttonSize);
    } else if (m_nFlags & (ScrollButtonsTop | ScrollButtonsBottom)) {
        const int y = (m_nFlags & ScrollButtonsBottom) ? height - buttonSize : 0;
        place(m_pMinusButton, 0, y);
        place(m_pPlusButton, width - buttonSize, y);
        place(m_pMinusPageButton, buttonSize, y);
        place(m_pPlusPageButton, width - 2 * buttonSize, y);
    }
}

void VCScrollButtons::EnableButtons()
{
    auto enable = [](VCButton* button, bool on) {
        if (button) {
            button->setEnabled(on);
            button->setAutoRepeat(on);
        }
    };
    const bool canGoBack = m_nValue > m_nMinValue;
    const bool canGoOn = m_nValue < m_nMaxValue;
    enable(m_pMinusButton, canGoBack);
    enable(m_pMinusPageButton, canGoBack);
    enable(m_pPlusPageButton, canGoOn);
    enable(m_pPlusButton, canGoOn);
}

void VCScrollButtons::internalValueChanged(int value)
{
    // No originator: the number's answer, clamped into its own limits, comes back through Update().
    if (m_pNumericValue)
        m_pNumericValue->SetValue(double(value), nullptr);
}

void VCScrollButtons::slotMinusClicked()
{
    stepByUser(&VCScrollButtons::subtractLine);
}

void VCScrollButtons::slotPlusClicked()
{
    stepByUser(&VCScrollButtons::addLine);
}

void VCScrollButtons::slotMinusPageClicked()
{
    stepByUser(&VCScrollButtons::subtractPage);
}

void VCScrollButtons::slotPlusPageClicked()
{
    stepByUser(&VCScrollButtons::addPage);
}

void VCScrollButtons::stepByUser(void (VCScrollButtons::*move)())
{
    // A button's repeat ticks and its final click while held belong to the press; anything else
    // (Up(), Down(), a click from code) is an edit of its own.
    auto* button = qobject_cast<VCButton*>(sender());
    const bool fromButton = button && (button == m_pMinusButton || button == m_pPlusButton || button == m_pMinusPageButton
                                       || button == m_pPlusPageButton);
    if (!fromButton)
        m_undoAction.End();
    const bool held = fromButton && button->isDown();
    (this->*move)();
    const bool alive = vandrel::InUserEditSpan(
        this, [this] { return SurvivesWrite(this, [this] { internalValueChanged(m_nValue); }); }, &m_undoAction);
    if (!alive)
        return;
    if (!held)
        m_undoAction.End();
    EnableButtons();
}
