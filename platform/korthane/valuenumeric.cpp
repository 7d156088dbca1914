#include <values/valuenumeric.h>

#include <brevanbase/errorhandler.h>

#include <cmath>

namespace values {

namespace {

// Qt 5's qRound64: a half goes up (-2.5 gives -2). Qt 6's takes it away from zero instead.
qint64 roundHalfUp(double x)
{
    if (x >= 0.0)
        return qint64(x + 0.5);
    const qint64 below = qint64(x - 1.0);
    return qint64(x - double(below) + 0.5) + below;
}

} // namespace

IValueNumeric::~IValueNumeric() = default;

NumericValueBase::NumericValueBase(double value, double minimum, double maximum, double step, bool integral)
    : m_fValue(value)
    , m_fPending(value)
    , m_fMinimum(minimum)
    , m_fMaximum(maximum)
    , m_fStep(step)
    , m_bIntegral(integral)
{
    if (std::isnan(m_fMinimum) || std::isnan(m_fMaximum) || m_fMinimum > m_fMaximum) {
        BREVAN_TRACE_FAILURE(QStringLiteral("numeric value with limits %1..%2: limits ignored").arg(minimum).arg(maximum));
        m_fMinimum = -std::numeric_limits<double>::max();
        m_fMaximum = std::numeric_limits<double>::max();
    }
    m_fValue = m_fPending = std::isnan(value) ? fit(0.0) : fit(value);
}

NumericValueBase::~NumericValueBase()
{
    AnnounceDestruction();
}

double NumericValueBase::fit(double value) const
{
    const double clamped = qBound(m_fMinimum, value, m_fMaximum);
    if (!m_bIntegral)
        return clamped;
    // An integer value keeps whole numbers also within limits that are not (SetRange takes doubles):
    // rounded, then moved to the nearest whole number inside, so that a second fit changes nothing.
    double whole = double(roundHalfUp(qBound(double(std::numeric_limits<qint64>::min() / 2), clamped,
                                             double(std::numeric_limits<qint64>::max() / 2))));
    if (whole > m_fMaximum)
        whole = std::floor(m_fMaximum);
    if (whole < m_fMinimum)
        whole = std::ceil(m_fMinimum);
    // Limits with no whole number between them leave nothing better than the clamped number.
    return whole >= m_fMinimum && whole <= m_fMaximum ? whole : clamped;
}

bool NumericValueBase::SetValue(double value, IObserver* originator)
{
    if (std::isnan(value)) {
        BREVAN_TRACE_FAILURE(QStringLiteral("SetValue: NaN refused for %1").arg(GetPathName()));
        return false;
    }
    value = fit(value);
    if (value == m_fValue)
        return true; // nothing to tell: also keeps writers that write from Update() from recursing
    UndoStep step(this);
    m_fValue = value;
    step.Done();
    return Notify(ValueChanged, originator);
}

bool NumericValueBase::SetPendingValue(double value, IObserver* originator)
{
    if (std::isnan(value)) {
        BREVAN_TRACE_FAILURE(QStringLiteral("SetPendingValue: NaN refused for %1").arg(GetPathName()));
        return false;
    }
    value = fit(value);
    if (value == m_fPending)
        return true;
    m_fPending = value;
    return Notify(PendingValueChanged, originator);
}

bool NumericValueBase::CommitPendingValue(IObserver* originator)
{
    return SetValue(m_fPending, originator);
}

bool NumericValueBase::SetValueFromText(const QString& text, IObserver* originator)
{
    bool ok = false;
    const double v = text.trimmed().toDouble(&ok);
    if (!ok)
        return false;
    return SetValue(v, originator);
}

QString NumericValueBase::GetValueString() const
{
    if (m_bIntegral)
        return QString::number(qint64(m_fValue));
    return FormatDouble<double>::ToString(m_fValue);
}

bool NumericValueBase::SetRange(double minimum, double maximum, double step, IObserver* originator)
{
    if (std::isnan(minimum) || std::isnan(maximum) || std::isnan(step) || minimum > maximum) {
        BREVAN_TRACE_FAILURE(QStringLiteral("SetRange: limits %1..%2 refused for %3").arg(minimum).arg(maximum).arg(GetPathName()));
        return false;
    }
    // Told also when nothing changed: RangeChanged only asks observers to read the limits again.
    m_fMinimum = minimum;
    m_fMaximum = maximum;
    m_fStep = step;
    m_fPending = fit(m_fPending);
    if (!Notify(RangeChanged, originator))
        return false;
    const double fitted = fit(m_fValue);
    if (fitted == m_fValue)
        return true;
    UndoStep undo(this);
    m_fValue = fitted;
    undo.Done();
    return Notify(ValueChanged, originator);
}

Command* NumericValueBase::CreateRestoreCommand()
{
    return new RestoreCommand<NumericValueBase, double>(this, m_fValue);
}

} // namespace values
