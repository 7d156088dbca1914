#pragma once

#include <plinthor/undorecording.h>

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>

namespace vandrel {

/**
 * \brief Runs \a handler, a control's handling of \a event, in the undo span of the user action the
 * event belongs to.
 *
 * A press of a mouse button or key starts an action in \a group; moves, repeat ticks of the control's
 * own timers and the release belong to it, and the release of the last button, the release of the key
 * or a loss of focus ends it, so that a drag or a held key makes one recording. A wheel event is an
 * action of its own. Other events and controls whose switch is off open no span. The control may be
 * deleted by an observer of a write inside \a handler: \a group is not touched then.
 */
template <class Handler>
bool DeliverUserAction(QObject* control, const UndoRecordingControlBase* undo, UndoActionGroup& group, QEvent* event,
                       Handler&& handler)
{
    bool joins = true; // the event is part of a user action
    bool ends = false; // the action is over once the event is handled
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        if (!group.IsOpen())
            group.Begin();
        break;
    case QEvent::KeyPress:
        if (!group.IsOpen() && !static_cast<QKeyEvent*>(event)->isAutoRepeat())
            group.Begin();
        break;
    case QEvent::MouseButtonRelease:
        ends = static_cast<QMouseEvent*>(event)->buttons() == Qt::NoButton;
        break;
    case QEvent::KeyRelease:
        ends = !static_cast<QKeyEvent*>(event)->isAutoRepeat();
        break;
    case QEvent::FocusOut:
    case QEvent::Hide:
        ends = true;
        break;
    case QEvent::MouseMove:
    case QEvent::Timer:
    case QEvent::Wheel:
        break;
    default:
        joins = false;
        break;
    }
    const QPointer<QObject> alive(control);
    bool result;
    if (joins && undo->IsUndoRecordingEnabled()) {
        const GuiUndoRecordingHelper span(undo, QString(), &group);
        result = handler();
    } else {
        result = handler();
    }
    if (ends && alive)
        group.End();
    return result;
}

/**
 * \brief Runs \a body, one complete user edit, in an undo span of its own when \a undo's switch is on
 * (part of \a group's action when given). With the switch off no span is opened, so that the writes
 * stay exactly as unrecorded (or as part of an outer span) as before.
 */
template <class Body>
auto InUserEditSpan(const UndoRecordingControlBase* undo, Body&& body, const UndoActionGroup* group = nullptr)
{
    if (!undo->IsUndoRecordingEnabled())
        return body();
    const GuiUndoRecordingHelper span(undo, QString(), group);
    return body();
}

} // namespace vandrel
