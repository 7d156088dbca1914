#include <vandrel/vcnumericfloatspin.h>

#include <vandrel/binding/binding.h>

#include <QDoubleValidator>
#include <QLineEdit>
#include <QLocale>
#include <QRegularExpression>
#include <QTimerEvent>
#include <QWheelEvent>

#include <cmath>
#include <limits>

VCNumericFloatSpin::VCNumericFloatSpin(QWidget* parent, const char* name, bool optimize)
    : UndoRecordingControlBase()
    , QDoubleSpinBox(parent)
    , m_pNumericValue(nullptr)
    , m_fLastValue(0.0)
    , m_nWatchDogTimer(0)
    , m_bOptimize(optimize)
    , m_bIgnoreValueUpdates(false)
    , m_bDisplay0AsAuto(false)
    , m_fUnitScale(1.0)
    , m_fDisplayOffset(0.0)
    , m_fDisplayScalingFactor(1.0)
    , m_fFactor(1.0)
    , m_bDirty(false)
    , m_bDirtyByUser(false)
    , m_bShowsPending(false)
    , m_bStepDisabled(false)
    , m_pHeldWrites(new HeldWrites)
{
    const QString strName = QString::fromUtf8(name);
    setObjectName(strName);
    setEnabled(false);
    setAccelerated(true);
    lineEdit()->setAcceptDrops(false);
    setToolTip(strName);
    setFixedWidth(80);
    setDecimals(0);
    // The value's limits rule, in stepEnabled() and when an edit finishes; the spin box's own never do.
    setMinimum(-std::numeric_limits<double>::max());
    setMaximum(std::numeric_limits<double>::max());
    connect(this, SIGNAL(editingFinished()), this, SLOT(SlotEditingFinished()));
}

VCNumericFloatSpin::~VCNumericFloatSpin()
{
    DetachValue(m_pNumericValue, this);
}

QValidator::State VCNumericFloatSpin::validate(QString& text, int& pos, bool fromValueFromText) const
{
    Q_UNUSED(pos)
    const QString typed = text;
    text = text.trimmed();
    const QString strPrefix = prefix().trimmed();
    const QString strSuffix = suffix().trimmed();

    if (!strPrefix.isEmpty() || !strSuffix.isEmpty()) {
        // Prefix and suffix go in unescaped: an application may give them as expressions.
        const QString pattern = QLatin1String("^(?:") + strPrefix + QLatin1String(")?(?<inputForDoubleValidator>.*?)(?:")
                                + strSuffix + QLatin1String(")?$");
        // Compiled once per prefix and suffix, not on every key.
        if (m_affixExpression.pattern() != pattern)
            m_affixExpression.setPattern(pattern);
        const QRegularExpressionMatch match =
            m_affixExpression.match(text, 0, QRegularExpression::PartialPreferCompleteMatch);
        if (!match.hasMatch())
            return (text.isEmpty() || match.hasPartialMatch()) ? QValidator::Intermediate : QValidator::Invalid;
        text = match.captured(QStringLiteral("inputForDoubleValidator")).trimmed();
    }

    QDoubleValidator validator((minimum() + m_fDisplayOffset) * m_fDisplayScalingFactor / m_fUnitScale,
                               (maximum() + m_fDisplayOffset) * m_fDisplayScalingFactor / m_fUnitScale,
                               decimals(), nullptr);
    // The text is shown in the box's locale, so it is read in it too: "12,50" in German.
    validator.setLocale(locale());
    int localPos = text.length();
    const QValidator::State state = validator.validate(text, localPos);
    if (!fromValueFromText && state == QValidator::Acceptable)
        text = typed;
    return state;
}

QValidator::State VCNumericFloatSpin::validate(QString& text, int& pos) const
{
    return validate(text, pos, false);
}

bool VCNumericFloatSpin::SetNumeric_ValuePath(const QString& path)
{
    DetachValue(m_pNumericValue, this);
    m_pNumericValue = FindAndAttach<values::IValueNumeric>(path, nullptr, this);
    if (m_pNumericValue)
        SyncObserver(m_pNumericValue, this);
    // The first picture of a value is not a change.
    m_bDirty = false;
    m_bDirtyByUser = false;
    return m_pNumericValue != nullptr;
}

bool VCNumericFloatSpin::SetNumericFloat_ValuePath(const QString& path)
{
    setDecimals(2);
    SetDirty(false);
    return SetNumeric_ValuePath(path);
}

bool VCNumericFloatSpin::SetNumericInt_ValuePath(const QString& path)
{
    setDecimals(0);
    SetDirty(false);
    return SetNumeric_ValuePath(path);
}

bool VCNumericFloatSpin::SetNumericValue(values::IValueNumeric* value)
{
    DetachValue(m_pNumericValue, this);
    m_pNumericValue = value;
    if (!m_pNumericValue) {
        SetDirty(false);
        return false;
    }
    ObservableOf(m_pNumericValue)->Attach(this);
    SyncObserver(m_pNumericValue, this);
    SetDirty(false);
    return true;
}

double VCNumericFloatSpin::GetValue(bool& ok) const
{
    ok = m_pNumericValue != nullptr;
    return ok ? m_pNumericValue->GetValue() : 0.0;
}

void VCNumericFloatSpin::disableStep(bool disable)
{
    m_bStepDisabled = disable;
}

namespace {

// A scale of zero (or one that is no number) would turn every shown number into an infinity and every
// typed one into a NaN: it is refused, and the scale in force stays.
bool usableScale(double scale, const char* what)
{
    if (scale != 0.0 && std::isfinite(scale))
        return true;
    BREVAN_TRACE_FAILURE(QStringLiteral("VCNumericFloatSpin: %1 %2 refused").arg(QLatin1String(what)).arg(scale));
    return false;
}

} // namespace

void VCNumericFloatSpin::SetUnitScale(double scale)
{
    if (usableScale(scale, "unit scale"))
        m_fUnitScale = scale;
}

void VCNumericFloatSpin::SetDisplayScalingFactor(double factor)
{
    m_fDisplayScalingFactor = factor;
}

void VCNumericFloatSpin::SetDisplayAdditveOffset(double offset)
{
    m_fDisplayOffset = offset;
}

void VCNumericFloatSpin::SetFactor(double factor)
{
    if (usableScale(factor, "factor"))
        m_fFactor = factor;
}

double VCNumericFloatSpin::value() const
{
    return QDoubleSpinBox::value() / m_fFactor;
}

void VCNumericFloatSpin::setValue(double value)
{
    QDoubleSpinBox::setValue(value * m_fFactor);
}

void VCNumericFloatSpin::SetDisplay0AsAuto(bool on)
{
    m_bDisplay0AsAuto = on;
}

void VCNumericFloatSpin::EnableWrapAround(bool on)
{
    setWrapping(on);
}

void VCNumericFloatSpin::SetOptimize(bool optimize)
{
    m_bOptimize = optimize;
}

bool VCNumericFloatSpin::GetOptimize() const
{
    return m_bOptimize;
}

bool VCNumericFloatSpin::GetDirty() const
{
    return m_bDirty || m_bDirtyByUser;
}

bool VCNumericFloatSpin::GetDirtyByUser() const
{
    return m_bDirtyByUser;
}

void VCNumericFloatSpin::SetDirty(bool dirty)
{
    m_bDirty = dirty;
    m_bDirtyByUser = dirty;
}

void VCNumericFloatSpin::setAdditionalPrecision(int decimals)
{
    setDecimals(decimals);
    if (m_pNumericValue) {
        m_fLastValue = m_pNumericValue->GetValue();
        setValue(m_fLastValue);
    }
}

void VCNumericFloatSpin::setObjectName(const QString& name)
{
    QObject::setObjectName(name);
    lineEdit()->setObjectName(name + QLatin1String("_Edit"));
}

void VCNumericFloatSpin::setSuffix(const QString& suffix)
{
    if (!suffix.isEmpty() && !suffix.startsWith(QLatin1Char(' ')))
        QDoubleSpinBox::setSuffix(QLatin1Char(' ') + suffix);
    else
        QDoubleSpinBox::setSuffix(suffix);
}

QString VCNumericFloatSpin::textFromValue(double value) const
{
    const QString text =
        QDoubleSpinBox::textFromValue((value + m_fDisplayOffset) * m_fDisplayScalingFactor / m_fUnitScale);
    if (m_bDisplay0AsAuto && text == QLatin1String("0"))
        return QStringLiteral("auto");
    return text;
}

double VCNumericFloatSpin::valueFromText(const QString& text) const
{
    QString stripped = text;
    if (m_bDisplay0AsAuto && stripped == QLatin1String("auto"))
        stripped = QStringLiteral("0");
    int pos = 0;
    // An unreadable text falls back to value(), which goes through the inverse scalings as well.
    const double number = validate(stripped, pos, true) == QValidator::Acceptable ? readNumber(stripped) : value();
    return number / m_fDisplayScalingFactor * m_fUnitScale - m_fDisplayOffset;
}

double VCNumericFloatSpin::readNumber(const QString& text) const
{
    // The C locale reads as QString does; any other reads as it shows, the validator having accepted
    // the text in that locale.
    const QLocale shown = locale();
    if (shown.language() == QLocale::C)
        return text.toDouble();
    return shown.toDouble(text);
}

QAbstractSpinBox::StepEnabled VCNumericFloatSpin::stepEnabled() const
{
    if (m_bStepDisabled)
        return StepNone;
    if (wrapping())
        return StepUpEnabled | StepDownEnabled;
    if (!m_pNumericValue)
        return StepNone;
    StepEnabled enabled = StepNone;
    if (value() > m_pNumericValue->GetMinimum())
        enabled |= StepDownEnabled;
    if (m_pNumericValue->GetMaximum() > value())
        enabled |= StepUpEnabled;
    return enabled;
}

void VCNumericFloatSpin::stepBy(int steps)
{
    if (!m_pNumericValue)
        return;
    StartWatchDog();
    QAbstractSpinBox::stepBy(steps);
    const double stepped = value();
    // Inside a key, mouse or timer event the spin box still updates itself after this: the write waits.
    m_pHeldWrites->Write([this, stepped] {
        if (!m_pNumericValue)
            return;
        const bool alive = SurvivesWrite(this, [this, stepped] {
            if (m_bOptimize) {
                // Only the pending number moves during a burst; the timer makes it the value in one recording.
                m_pNumericValue->SetPendingValue(stepped, nullptr);
            } else {
                GuiUndoRecordingHelper undo(this, QString());
                m_pNumericValue->SetValue(stepped, nullptr);
            }
        });
        if (alive)
            m_bDirtyByUser = true;
    });
}

void VCNumericFloatSpin::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_nWatchDogTimer) {
        QAbstractSpinBox::timerEvent(event);
        return;
    }
    killTimer(m_nWatchDogTimer);
    m_nWatchDogTimer = 0;
    if (!m_pNumericValue)
        return;
    GuiUndoRecordingHelper undo(this, QString());
    m_pNumericValue->CommitPendingValue(nullptr);
}

void VCNumericFloatSpin::wheelEvent(QWheelEvent* event)
{
    if (!isReadOnly()) {
        // The larger of the two turns decides the direction, as a one-dimensional wheel reads it.
        const QPoint angle = event->angleDelta();
        const int delta = qAbs(angle.x()) > qAbs(angle.y()) ? angle.x() : angle.y();
        stepBy(delta < 0 ? -1 : 1);
        m_bDirtyByUser = true;
    }
    event->accept();
}

void VCNumericFloatSpin::SlotEditingFinished()
{
    if (!m_pNumericValue)
        return;
    double number = value();
    if (m_pNumericValue->GetMinimum() > number) {
        number = m_pNumericValue->GetMinimum();
        setValue(number);
    }
    if (number > m_pNumericValue->GetMaximum())
        setValue(m_pNumericValue->GetMaximum());
    // The clamping above may have changed what the spin box holds: read it anew. The signal comes from
    // inside the spin box's key or focus handler, so the write waits for that to end.
    const double finished = value();
    m_pHeldWrites->Write([this, finished] {
        if (!m_pNumericValue)
            return;
        GuiUndoRecordingHelper undo(this, QString());
        if (SurvivesWrite(this, [this, finished] { m_pNumericValue->SetValue(finished, nullptr); }))
            m_bDirtyByUser = true;
    });
}

bool VCNumericFloatSpin::event(QEvent* event)
{
    return m_pHeldWrites->Deliver(this, [this, event] { return QDoubleSpinBox::event(event); });
}

void VCNumericFloatSpin::Update(Observable* source, TChangeCode code)
{
    if (code == StateChanged && source == ObservableOf(m_pNumericValue)) {
        ApplyValueState(m_pNumericValue, this);
        return;
    }

    m_bDirty = true;

    if (!m_pNumericValue || source != ObservableOf(m_pNumericValue))
        return;
    if (code == ValueDestroyed) {
        // Deleted without leaving the tree first: forget it, with no Detach.
        ForgetDestroyedValue(m_pNumericValue, source);
        return;
    }
    if (m_bIgnoreValueUpdates)
        return;

    switch (code) {
    case ValueChanged:
        m_bShowsPending = false;
        // The pending number starts each burst from the value; named as originator, no echo comes back.
        if (!SurvivesWrite(this, [this] { m_pNumericValue->SetPendingValue(m_pNumericValue->GetValue(), this); }))
            return;
        m_fLastValue = m_pNumericValue->GetValue();
        setValue(m_fLastValue);
        break;
    case PendingValueChanged:
        m_bShowsPending = true;
        m_fLastValue = m_pNumericValue->GetPendingValue();
        setValue(m_fLastValue);
        break;
    case RangeChanged: {
        double step = m_pNumericValue->GetStep();
        if (step == 0.0)
            step = 1.0;
        setSingleStep(step * m_fFactor);
        break;
    }
    default:
        break;
    }
}

void VCNumericFloatSpin::StartWatchDog()
{
    if (m_nWatchDogTimer != 0)
        killTimer(m_nWatchDogTimer);
    m_nWatchDogTimer = startTimer(200, Qt::CoarseTimer);
}
