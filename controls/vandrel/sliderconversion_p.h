#pragma once

#include <vandrel/binding/binding.h>

#include <QAbstractSlider>
#include <QScopedValueRollback>
#include <QtGlobal>

#include <climits>
#include <cmath>

namespace vandrel {

// Numbers beyond the int range would make the conversions undefined; they pin to the ends instead.
inline double PinToIntRange(double x)
{
    if (std::isnan(x))
        return 0.0;
    return qBound(double(INT_MIN), x, double(INT_MAX));
}

/// Qt 5's qRound, for numbers of any size: a half goes up (-1.5 gives -1), also where Qt 6's qRound
/// takes it away from zero.
inline int RoundToInt(double x)
{
    const double pinned = PinToIntRange(x);
    if (pinned >= double(INT_MAX))
        return INT_MAX;
    if (pinned >= 0.0)
        return int(pinned + 0.5);
    const int below = int(pinned - 1.0);
    return int(pinned - double(below) + 0.5) + below;
}

/// Truncation toward zero, for numbers of any size.
inline int TruncateToInt(double x)
{
    return int(PinToIntRange(x));
}

/// How a slider-like control turns a value's number and limits into its own integers.
struct SliderConversion
{
    int (*number)(double);  ///< the number and the minimum
    int (*maximum)(double); ///< the maximum
};

/**
 * \brief Takes over a value's limits. The position Qt clamps into them on the way is the control's,
 * not the user's: \a adopting stays set meanwhile, so that the control does not write it into the value.
 */
inline void AdoptRange(QAbstractSlider* slider, bool& adopting, int minimum, int maximum)
{
    const QScopedValueRollback<bool> guard(adopting, true);
    slider->setMinimum(minimum);
    slider->setMaximum(maximum);
}

/// The Update of a slider-like control bound to one number.
inline void FollowNumber(QAbstractSlider* slider, values::IValueNumeric*& value, bool& adopting,
                         const SliderConversion& convert, Observable* source, TChangeCode code)
{
    if (!value || source != ObservableOf(value))
        return;
    switch (code) {
    case ValueDestroyed:
        // A value deleted without leaving the tree first: forget it, it can no longer be detached from.
        ForgetDestroyedValue(value, source);
        break;
    case StateChanged:
        ApplyValueState(value, slider);
        break;
    case ValueChanged:
        slider->setValue(convert.number(value->GetValue()));
        break;
    case RangeChanged:
        AdoptRange(slider, adopting, convert.number(value->GetMinimum()), convert.maximum(value->GetMaximum()));
        break;
    default:
        break;
    }
}

/// The one write of a slider-like control: its new position, unless it is taking over limits.
inline void WritePosition(values::IValueNumeric* value, bool adopting, int position, IObserver* control)
{
    if (value && !adopting)
        value->SetValue(double(position), control);
}

} // namespace vandrel
