#pragma once

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

/// qRound, for numbers of any size.
inline int RoundToInt(double x)
{
    const double pinned = PinToIntRange(x);
    return pinned >= double(INT_MAX) ? INT_MAX : qRound(pinned);
}

/// Truncation toward zero, for numbers of any size.
inline int TruncateToInt(double x)
{
    return int(PinToIntRange(x));
}

} // namespace vandrel
