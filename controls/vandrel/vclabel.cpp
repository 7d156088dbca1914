#include <vandrel/vclabel.h>

#include <vandrel/binding/binding.h>

#include <plinthor/plinthor.h>

#include <QGuiApplication>
#include <QPainter>

#include <cmath>

namespace {

const QString kNoValueText = QStringLiteral("- - -");

// Beyond this many passes the wrap jumps to where the passes would end: a number far outside the
// range, or a step lost in the number's precision, would otherwise hold the widget thread for ever.
constexpr double kMaxWrapPasses = 1e6;

// Adds step while x lies below low, then subtracts it while x lies above high. The step is taken as
// it stands: a negative one never ends.
void wrapInto(double& x, double low, double high, double step)
{
    if (low >= high || (x >= low && x <= high) || step == 0)
        return;
    // No number of steps brings an infinite number back, and an infinite step never lands in range.
    if (std::isinf(x) || std::isinf(step))
        return;
    if (step > 0) {
        if (x < low && (low - x) / step > kMaxWrapPasses) {
            const double rest = std::fmod(low - x, step);
            if (std::isfinite(rest))
                x = rest == 0 ? low : low + (step - rest);
        } else if (x > high && (x - high) / step > kMaxWrapPasses) {
            const double rest = std::fmod(x - high, step);
            if (std::isfinite(rest))
                x = rest == 0 ? high : high - (step - rest);
        }
    }
    while (x < low)
        x += step;
    while (x > high)
        x -= step;
}

// Half away from zero through a signed 32-bit integer. A number beyond that range (or NaN) is cut
// as a double instead, which keeps it whole without an undefined conversion.
double roundThroughInt(double x)
{
    const double r = x > 0 ? x + 0.5 : x - 0.5;
    if (r > -2147483649.0 && r < 2147483648.0)
        return double(qint32(r));
    return std::trunc(r);
}

// More decimals than a double's exact expansion only add zeros; a huge count would build a string of
// gigabytes.
constexpr int kMaxDecimals = 1100;

} // namespace

VCLabel::VCLabel(QWidget* parent, const char* name, unsigned int lineMode)
    : QLabel(parent)
    , m_pUpdateNowValue(nullptr)
    , m_pNumericValue(nullptr)
    , m_pNumericOffsetValue(nullptr)
    , m_pNoValueValue(nullptr)
    , m_bDisplayNoValue(false)
    , m_bPreviousDisplayNoValue(false)
    , m_pTextValue(nullptr)
    , m_uiLineMode(lineMode)
    , m_nSavedAlignment(0)
    , m_nAlignmentNoValue(Qt::AlignCenter)
    , m_nDigits(3)
    , m_nDecimals(1)
    , m_dFactor(1.0)
    , m_dWrapLow(-1.0)
    , m_dWrapHigh(-1.0)
    , m_dWrapStep(-1.0)
    , m_nHeight(20)
    , m_bLuminescence(false)
    , m_dLastValue(0.0)
    , m_bUseBackground(false)
    , m_bHilight(false)
    , m_bUseForeground(false)
    , m_bGray(false)
    , m_bFollowNumeric(true)
    , m_bFollowText(true)
    , m_bFollowOffset(true)
{
    const QString strName = QString::fromUtf8(name);
    setObjectName(strName);
    setFixedHeight(m_nHeight);
    setToolTip(strName);
    connect(&Plinthor::Instance(), SIGNAL(signalColorsChanged()), this, SLOT(slotAcceptColorChanges()));
}

VCLabel::~VCLabel()
{
    DetachValue(m_pNumericValue, this);
    DetachValue(m_pTextValue, this);
    DetachValue(m_pNoValueValue, this);
    DetachValue(m_pUpdateNowValue, this);
    DetachValue(m_pNumericOffsetValue, this);
}

bool VCLabel::holds(const Observable* value) const
{
    return value
        && (value == ObservableOf(m_pUpdateNowValue) || value == ObservableOf(m_pNumericValue)
            || value == ObservableOf(m_pNumericOffsetValue) || value == ObservableOf(m_pNoValueValue)
            || value == ObservableOf(m_pTextValue));
}

// Detaches from a value that a role gave up, unless another role still holds it: one attachment
// serves every role of a value.
void VCLabel::letGo(Observable* value)
{
    if (value && !holds(value))
        value->Detach(this);
}

// Clears every role that holds \a value, without a Detach.
void VCLabel::forget(Observable* value)
{
    if (value == ObservableOf(m_pUpdateNowValue))
        m_pUpdateNowValue = nullptr;
    if (value == ObservableOf(m_pNumericValue))
        m_pNumericValue = nullptr;
    if (value == ObservableOf(m_pNumericOffsetValue))
        m_pNumericOffsetValue = nullptr;
    if (value == ObservableOf(m_pNoValueValue))
        m_pNoValueValue = nullptr;
    if (value == ObservableOf(m_pTextValue))
        m_pTextValue = nullptr;
}

// The label stays attached also to a value it shows only once (observe false) and to the number and
// text that a trigger took over, so that it hears of their removal; it ignores their other news.
bool VCLabel::SetText_ValuePath(const QString& path, bool observe)
{
    Observable* former = ObservableOf(m_pNumericValue);
    m_pNumericValue = nullptr;
    letGo(former);
    NameBindingSlot(m_pTextValue, this); // the same role: what the text showed goes too
    NameBindingSlot(m_pNumericValue, this);
    m_pNumericValue = FindAndAttach<values::IValueNumeric>(path, nullptr, this);
    if (m_pNumericValue) {
        m_bFollowNumeric = true; // the first picture is taken in any case
        SyncObserver(m_pNumericValue, this);
        m_bFollowNumeric = observe;
        return m_pNumericValue != nullptr;
    }
    former = ObservableOf(m_pTextValue);
    m_pTextValue = nullptr;
    letGo(former);
    NameBindingSlot(m_pTextValue, this);
    m_pTextValue = FindAndAttach<values::ValueBase>(path, nullptr, this);
    m_bFollowText = true;
    SyncObserver(m_pTextValue, this);
    m_bFollowText = observe;
    return m_pTextValue != nullptr;
}

bool VCLabel::SetNumericOffset_ValuePath(const QString& path, bool observe)
{
    Observable* former = ObservableOf(m_pNumericOffsetValue);
    m_pNumericOffsetValue = nullptr;
    letGo(former);
    NameBindingSlot(m_pNumericOffsetValue, this);
    m_pNumericOffsetValue = FindAndAttach<values::IValueNumeric>(path, nullptr, this);
    m_bFollowOffset = true;
    SyncObserver(m_pNumericOffsetValue, this);
    m_bFollowOffset = observe;
    return m_pNumericOffsetValue != nullptr;
}

bool VCLabel::SetNoValue_ValuePath(const QString& path)
{
    Observable* former = ObservableOf(m_pNoValueValue);
    m_pNoValueValue = nullptr;
    letGo(former);
    NameBindingSlot(m_pNoValueValue, this);
    m_pNoValueValue = FindAndAttach<values::Value<bool>>(path, nullptr, this);
    SyncObserver(m_pNoValueValue, this);
    return m_pNoValueValue != nullptr;
}

bool VCLabel::SetUpdateNow_ValuePath(const QString& path)
{
    Observable* former = ObservableOf(m_pUpdateNowValue);
    m_pUpdateNowValue = nullptr;
    letGo(former);
    NameBindingSlot(m_pUpdateNowValue, this);
    m_pUpdateNowValue = FindAndAttach<values::ValueNumeric<int>>(path, nullptr, this);
    m_bFollowNumeric = false;
    m_bFollowText = false;
    return m_pUpdateNowValue != nullptr;
}

void VCLabel::SetFormat(int digits, int decimals, double factor)
{
    m_nDigits = digits;
    m_nDecimals = decimals;
    m_dFactor = factor;
    if (m_pNumericValue)
        SetFormatString(m_pNumericValue->GetValue(), QString());
}

void VCLabel::SetFormatString(double value, QString suffix)
{
    if (m_bDisplayNoValue && !m_bLuminescence) {
        setText(kNoValueText);
        return;
    }
    double x = value * m_dFactor;
    if (m_nDecimals == 0)
        x = roundThroughInt(x);
    // Wrapped a second time in the shown scale.
    wrapInto(x, m_dWrapLow * m_dFactor, m_dWrapHigh * m_dFactor, m_dWrapStep * m_dFactor);
    if (!suffix.isEmpty())
        m_strSuffix = suffix;
    // In the C locale whatever the user's language. The digits before the point would only pad the
    // field with blanks that are trimmed off, so the number is formatted without a field, at half the
    // cost of formatting for a label on a fast value.
    SetText(QString::number(x, 'f', qMin(m_nDecimals, kMaxDecimals)));
}

void VCLabel::SetFactor(double factor)
{
    m_dFactor = factor;
    Display();
}

void VCLabel::SetSuffix(QString suffix)
{
    m_strSuffix = suffix;
}

void VCLabel::SetWrapInto(double low, double high, double step)
{
    m_dWrapLow = low;
    m_dWrapHigh = high;
    m_dWrapStep = step;
}

void VCLabel::SetText(QString text)
{
    if (m_bDisplayNoValue && !m_bLuminescence) {
        setText(kNoValueText);
        return;
    }
    if (!m_strSuffix.isEmpty()) {
        text += QLatin1Char(' ');
        text += m_strSuffix;
    }
    setText(text);
}

void VCLabel::setText(const QString& text)
{
    // The same text again costs a comparison: no relayout, no repaint, no shift of the links.
    if (text == QLabel::text())
        return;
    if (m_pPreviousLabel)
        m_pPreviousLabel->setText(QLabel::text());
    QLabel::setText(text);
    if (m_pCopyLabel)
        m_pCopyLabel->setText(text);
}

void VCLabel::Display()
{
    if (m_bDisplayNoValue && !m_bLuminescence) {
        setText(kNoValueText);
        return;
    }
    if (m_pTextValue)
        SetText(m_pTextValue->GetValueString());
    if (!m_pNumericValue)
        return;
    // In the no-value state the last number stands (luminescence shows it in gray).
    if (!m_bDisplayNoValue) {
        m_dLastValue = m_pNumericValue->GetValue();
        if (m_pNumericOffsetValue)
            m_dLastValue -= m_pNumericOffsetValue->GetValue();
        wrapInto(m_dLastValue, m_dWrapLow, m_dWrapHigh, m_dWrapStep);
    }
    SetFormatString(m_dLastValue, QString());
}

void VCLabel::SetDisplayNoValue(bool noValue)
{
    m_bPreviousDisplayNoValue = m_bDisplayNoValue;
    m_bDisplayNoValue = noValue;
    if (m_bPreviousDisplayNoValue != m_bDisplayNoValue) {
        if (m_bLuminescence) {
            if (noValue)
                setColorRule(false, false, true);
            else
                setColorRule(false, true, false);
            slotAcceptColorChanges();
        }
        if (!noValue) {
            setAlignment(Qt::Alignment(m_nSavedAlignment));
            m_nSavedAlignment = 0;
        } else {
            if (m_nSavedAlignment == 0)
                m_nSavedAlignment = int(alignment());
            if (!m_bLuminescence)
                setAlignment(Qt::Alignment(m_nAlignmentNoValue));
        }
    }
    Display();
}

void VCLabel::UpdateDisplayNoValue(bool noValue)
{
    if (noValue != m_bDisplayNoValue)
        SetDisplayNoValue(noValue);
}

bool VCLabel::GetDisplayNoValue()
{
    return m_bDisplayNoValue;
}

void VCLabel::SetAlignmentNoValue(int alignment)
{
    m_nAlignmentNoValue = alignment;
    // Only right after entering the no-value state; the earlier state is tested on purpose.
    if (m_bDisplayNoValue && !m_bPreviousDisplayNoValue && !m_bLuminescence)
        setAlignment(Qt::Alignment(alignment));
}

void VCLabel::SetLuminescence(bool luminescence)
{
    m_bLuminescence = luminescence;
    if (luminescence)
        setColorRule(false, false, true);
    else
        setColorRule(false, true, false);
    slotAcceptColorChanges();
}

void VCLabel::setColorRule(bool hilight, bool foreground, bool gray)
{
    m_bHilight = hilight;
    m_bUseForeground = foreground;
    m_bGray = gray;
}

void VCLabel::SetColors(QColor foreground, QColor background)
{
    m_colorForeground = foreground;
    m_colorBackground = background;
    setColorRule(false, true, false);
    m_bUseBackground = true;
    slotAcceptColorChanges();
}

void VCLabel::SetBackgroundColor(QColor background)
{
    m_colorBackground = background;
    m_bUseBackground = true;
    slotAcceptColorChanges();
}

void VCLabel::SetForeground()
{
    setColorRule(false, true, false);
    slotAcceptColorChanges();
}

void VCLabel::SetHilight()
{
    setColorRule(true, false, false);
    slotAcceptColorChanges();
}

void VCLabel::SetGray(bool)
{
    setColorRule(false, false, true);
    slotAcceptColorChanges();
}

void VCLabel::SetHeight(int height)
{
    m_nHeight = height;
    setFixedHeight(height);
}

void VCLabel::SetFontOnSize(QFont font, QString text)
{
    if (font.pixelSize() != -1) {
        // A pixel-sized font is measured with the label's own font, which this path never changes:
        // the label keeps the font it has.
        return;
    }
    if (font.pointSize() == -1)
        return;
    setFont(font);
    for (;;) {
        const QRect needed = fontMetrics().boundingRect(rect(), int(alignment()), text);
        const int w = width();
        const int limit = int(w - w / 20.0 + 0.5);
        if ((needed.height() <= height() && needed.width() <= limit) || font.pointSize() <= 5)
            return;
        font.setPointSize(font.pointSize() - 1);
        setFont(font);
    }
}

void VCLabel::SetPreviousLabel(VCLabel* label)
{
    m_pPreviousLabel = label;
}

void VCLabel::SetCopyLabel(VCLabel* label)
{
    m_pCopyLabel = label;
}

void VCLabel::slotAcceptColorChanges()
{
    // The application's palette, not the widget's: a palette set from outside is dropped.
    const QPalette application = QGuiApplication::palette();
    QPalette palette = application;
    setAutoFillBackground(m_bUseBackground);
    if (m_bUseBackground)
        palette.setBrush(QPalette::All, QPalette::Window, QBrush(m_colorBackground));
    if (m_bUseForeground)
        palette.setBrush(QPalette::All, QPalette::WindowText, QBrush(m_colorForeground));
    else if (m_bGray)
        palette.setBrush(QPalette::All, QPalette::WindowText, QBrush(application.color(QPalette::Disabled, QPalette::Text)));
    else if (m_bHilight)
        palette.setBrush(QPalette::All, QPalette::WindowText, QBrush(application.color(QPalette::Active, QPalette::Highlight)));
    setPalette(palette);
}

void VCLabel::paintEvent(QPaintEvent* event)
{
    QLabel::paintEvent(event);
    if (!(m_uiLineMode & 3u))
        return;
    QPainter painter(this);
    if (m_uiLineMode == 1)
        painter.drawLine(rect().topLeft(), rect().topRight());
    else if (m_uiLineMode == 2)
        painter.drawLine(rect().bottomLeft(), rect().bottomRight());
}

void VCLabel::Update(Observable* source, TChangeCode code)
{
    if (code == ValueDestroyed) {
        // Whatever the enabled state: the value is going, so no Detach, and no role may keep it.
        if (source)
            forget(source);
        return;
    }
    if (code == StateChanged) {
        auto* base = holds(source) ? dynamic_cast<values::ValueBase*>(source) : nullptr;
        const bool removed = base && base->GetState() == Removed;
        // A value that is not followed neither enables nor disables the label.
        if (source == ObservableOf(m_pTextValue) && m_bFollowText)
            ApplyValueState(m_pTextValue, this);
        else if (source == ObservableOf(m_pNoValueValue))
            ApplyValueState(m_pNoValueValue, this);
        else if (source == ObservableOf(m_pUpdateNowValue))
            ApplyValueState(m_pUpdateNowValue, this);
        else if (source == ObservableOf(m_pNumericOffsetValue) && m_bFollowOffset)
            ApplyValueState(m_pNumericOffsetValue, this);
        else if (source == ObservableOf(m_pNumericValue) && m_bFollowNumeric)
            ApplyValueState(m_pNumericValue, this);
        // A removed value leaves every role that held it, followed or not.
        if (removed) {
            forget(source);
            source->Detach(this);
        }
        return;
    }
    if (code != ValueChanged || !source || !isEnabled())
        return;
    if (m_pNoValueValue && source == ObservableOf(m_pNoValueValue)) {
        SetDisplayNoValue(m_pNoValueValue->GetValue());
    } else if ((m_pTextValue && m_bFollowText && source == ObservableOf(m_pTextValue))
               || (m_pNumericValue && m_bFollowNumeric && source == ObservableOf(m_pNumericValue))
               || (m_pNumericOffsetValue && m_bFollowOffset && source == ObservableOf(m_pNumericOffsetValue))) {
        Display();
    } else if (m_pUpdateNowValue && source == ObservableOf(m_pUpdateNowValue)) {
        // +1 marks the number current, -1 stale; anything else is no refresh at all.
        const double trigger = static_cast<values::IValueNumeric*>(m_pUpdateNowValue)->GetValue();
        if (trigger == -1.0) {
            if (!m_bGray) {
                setColorRule(false, false, true);
                slotAcceptColorChanges();
            }
            Display();
        } else if (trigger == 1.0) {
            if (m_bGray) {
                setColorRule(false, true, false);
                slotAcceptColorChanges();
            }
            Display();
        }
    }
}
