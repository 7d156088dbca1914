#pragma once

#include <plinthor/plinthor_export.h>

#include <QString>

/**
 * \brief The undo switch of a control that records its user's edits.
 *
 * Controls derive from it as a virtual base, so that one switch exists per control also along a chain
 * of derivation. The switch is on by default.
 */
class PLINTHOR_EXPORT UndoRecordingControlBase
{
public:
    UndoRecordingControlBase();
    virtual ~UndoRecordingControlBase();
    /// Switches recording of this control's edits on or off. Off, the control still writes its values.
    void SetUndoRecordingEnabled(bool enabled);
    /// True when this control's edits are recorded for undo.
    bool IsUndoRecordingEnabled() const { return m_bUndoRecordingEnabled; }

private:
    bool m_bUndoRecordingEnabled;
};

/**
 * \brief The span of one user edit, kept on the stack around the write.
 *
 * While the span is open and the control's switch is on, every write to a value is recorded; when
 * the span closes (also by an exception) the writes form one entry of the undo list. With a null
 * control or the switch off the span records nothing. The description is optional: when empty, the
 * value framework describes the change itself ("/receiver/gain: 10 → 20").
 */
class PLINTHOR_EXPORT GuiUndoRecordingHelper
{
public:
    /// Opens the span of an edit by \a control, described by \a description (may be empty).
    GuiUndoRecordingHelper(const UndoRecordingControlBase* control, const QString& description);
    ~GuiUndoRecordingHelper();
    GuiUndoRecordingHelper(const GuiUndoRecordingHelper&) = delete;
    GuiUndoRecordingHelper& operator=(const GuiUndoRecordingHelper&) = delete;
};
