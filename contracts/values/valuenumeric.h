#pragma once

#include <values/format.h>
#include <values/valuebase.h>

#include <QtGlobal>

#include <cmath>
#include <type_traits>

namespace values {

/**
 * \brief Any number with limits, a step and a pending number.
 *
 * A view of a value object beside ValueBase; both share the one Observable part.
 */
class KORTHANE_EXPORT IValueNumeric : public virtual Observable
{
public:
    ~IValueNumeric() override;
    /// The value object behind this interface.
    virtual ValueBase* GetValueBase() = 0;
    /**
     * \brief Stores the number, clamped into the limits, and notifies ValueChanged skipping
     * \a originator. A write of the number already held notifies nothing; NaN is refused.
     */
    virtual bool SetValue(double value, IObserver* originator) = 0;
    /// The lower limit.
    virtual double GetMinimum() const = 0;
    /// The upper limit.
    virtual double GetMaximum() const = 0;
    /// The step; 0 when none is set.
    virtual double GetStep() const = 0;
    /// The current number, always within the limits.
    virtual double GetValue() const = 0;
    /// Stores the pending number (clamped) beside the value and notifies PendingValueChanged.
    virtual bool SetPendingValue(double value, IObserver* originator) = 0;
    /// The pending number: one proposed beside the value and not yet committed.
    virtual double GetPendingValue() const = 0;
    /// Makes the pending number the value, as SetValue does.
    virtual bool CommitPendingValue(IObserver* originator) = 0;
};

/// The non-template part of ValueNumeric, with the numbers held as double.
class KORTHANE_EXPORT NumericValueBase : public ValueBase, public IValueNumeric
{
public:
    /**
     * \brief A number starting at \a value (NaN starts at 0) fitted into \a minimum..\a maximum;
     * \a integral keeps it a whole number. Limits in the wrong order or NaN give the whole double range.
     */
    NumericValueBase(double value, double minimum, double maximum, double step, bool integral);
    ~NumericValueBase() override;

    ValueBase* GetValueBase() override { return this; }
    bool SetValue(double value, IObserver* originator) override;
    double GetMinimum() const override { return m_fMinimum; }
    double GetMaximum() const override { return m_fMaximum; }
    double GetStep() const override { return m_fStep; }
    double GetValue() const override { return m_fValue; }
    bool SetPendingValue(double value, IObserver* originator) override;
    double GetPendingValue() const override { return m_fPending; }
    bool CommitPendingValue(IObserver* originator) override;

    bool SetValueFromText(const QString& text, IObserver* originator) override;
    QString GetValueString() const override;

    /**
     * \brief Sets the limits and the step, notifies RangeChanged (also when they are the same), then
     * clamps the value into the new limits (notifying ValueChanged when it moved). Limits in the wrong
     * order or NaN are refused.
     */
    bool SetRange(double minimum, double maximum, double step, IObserver* originator = nullptr);

    /// Puts back a number captured for undo, notifying everyone.
    bool RestoreState(double state) { return SetValue(state, nullptr); }

protected:
    Command* CreateRestoreCommand() override;
    /// \a value clamped into the limits and, for an integral value, rounded to a whole number inside them.
    double fit(double value) const;

private:
    double m_fValue;
    double m_fPending;
    double m_fMinimum;
    double m_fMaximum;
    double m_fStep;
    bool m_bIntegral;
};

/**
 * \brief A number of type \a T (int or double) with limits.
 *
 * A written number is clamped into the limits, and for \c int rounded as qRound does.
 */
template <class T, class F = typename DefaultFormat<T>::type, class S = StreamFormat<T, F>>
class ValueNumeric : public NumericValueBase
{
    static_assert(std::is_arithmetic<T>::value, "ValueNumeric holds numbers");

public:
    /// The type of the number held.
    using value_type = T;
    /// A number starting at \a value, clamped into \a minimum..\a maximum, with \a step (0: none).
    ValueNumeric(T value, T minimum, T maximum, T step = T())
        : NumericValueBase(double(value), double(minimum), double(maximum), double(step), std::is_integral<T>::value)
    {
    }
    ~ValueNumeric() override { AnnounceDestruction(); }
    /// Sets limits and step as T, see NumericValueBase::SetRange.
    void SetRange(T minimum, T maximum, T step, IObserver* originator = nullptr)
    {
        NumericValueBase::SetRange(double(minimum), double(maximum), double(step), originator);
    }
    /// The value as T.
    T GetTypedValue() const { return T(GetValue()); }
};

using IntNumeric = ValueNumeric<int>;
using DoubleNumeric = ValueNumeric<double>;

} // namespace values
