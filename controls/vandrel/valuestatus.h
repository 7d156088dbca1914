#pragma once

/**
 * \file
 * \brief An opt-in display of the state of the values bound controls show.
 *
 * Switched on, a control that lost a value (removed, destroyed) or whose binding found nothing (unknown
 * path, a value of another kind, no tree) gets a 2 px warning frame, and its tool-tip gains a line per
 * such binding ("/receiver/volume: removed", "/receiver/x: not found"); a disabled value only adds its
 * line ("/receiver/gain: disabled"). Nothing the controls promise changes: not their toolTip() property,
 * enabled state, text, size hint or signals. The frame is a transparent child widget and the line comes
 * from an event filter, and both exist only while a control has something to show.
 *
 * The binding helpers of binding.h report to it, so a control of an application's own that binds with
 * them is shown too, but not an observer that is no widget (VCScrollButtons); compounds show it on inner widgets.
 */

#include <vandrel/vandrel_export.h>

#include <QString>

class IObserver;
class Observable;
class QWidget;

namespace values {
class ValueBase;
}

namespace vandrel {

/**
 * \brief Switches the display on or off for the whole application; off by default.
 *
 * Switched on, it follows every binding from then on; a value bound before that shows once its state
 * changes. Switched off, every decoration goes at once and nothing is followed any more.
 */
VANDREL_EXPORT void SetValueStatusShown(bool on);
/// Whether the display is on.
VANDREL_EXPORT bool IsValueStatusShown();
/// The lines \a control adds to its tool-tip, one per binding with something to show; empty when none.
VANDREL_EXPORT QString ValueStatusText(const QWidget* control);

/// \cond INTERNAL
namespace detail {
// Read inline by the binding helpers, so that they cost one test while the display is off.
VANDREL_EXPORT extern bool g_valueStatusShown;

// The reports of the binding helpers; \a slot is the address of the control's pointer to the value.
VANDREL_EXPORT void StatusSlotDetached(IObserver* observer, const void* slot);
VANDREL_EXPORT void StatusSlotNamed(IObserver* observer, const void* slot);
VANDREL_EXPORT void StatusLookedUp(IObserver* observer, const QString& path, const Observable* found);
VANDREL_EXPORT void StatusStateSeen(QWidget* control, IObserver* observer, const void* slot, values::ValueBase* value);
VANDREL_EXPORT void StatusValueDestroyed(const void* slot, const Observable* source, values::ValueBase* value);
} // namespace detail
/// \endcond

} // namespace vandrel
