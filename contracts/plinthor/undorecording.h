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
    /// True when this control's edits are recorded for undo; for an optional control whose switch was
    /// never set, what OptionalRecordingDefault() says now.
    bool IsUndoRecordingEnabled() const;

    /**
     * \brief The application-wide default of the optional controls (sliders, line edits, ...), off
     * unless set: their switches follow it, read at each edit, until set one by one.
     */
    static void SetOptionalRecordingDefault(bool enabled);
    /// The default the optional controls follow; false unless set.
    static bool OptionalRecordingDefault();

protected:
    /// Makes the switch of a control that records only on request follow OptionalRecordingDefault()
    /// until SetUndoRecordingEnabled() sets it. Called from the control's constructor body, so that it
    /// holds also when an application's class derived from the control constructs the virtual base.
    void FollowOptionalRecordingDefault() { m_nSwitch = -1; }

private:
    signed char m_nSwitch; // 1 on, 0 off, -1 following the optional default
};

/**
 * \brief Makes the spans of one user action that runs over several events one recording: a drag
 * from press to release, a key held down.
 *
 * Begin() at the start of the action, End() at its end; spans made with the group in between add
 * their writes to the action's recording while it is the newest. Nothing stays open between events:
 * a group not ended only joins its own later spans, and the next Begin() starts afresh.
 */
class PLINTHOR_EXPORT UndoActionGroup
{
public:
    /// Starts a new action; spans of an earlier one no longer join.
    void Begin();
    /// Ends the action; later spans each make a recording of their own.
    void End() { m_nGroup = 0; }
    /// True between Begin() and End().
    bool IsOpen() const { return m_nGroup != 0; }
    /// The recorder's group number of the action, 0 when none is under way.
    unsigned long long Group() const { return m_nGroup; }

private:
    unsigned long long m_nGroup = 0;
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
    /// Opens the span of one part of the user action \a group (may be null: an action of its own).
    GuiUndoRecordingHelper(const UndoRecordingControlBase* control, const QString& description, const UndoActionGroup* group);
    ~GuiUndoRecordingHelper();
    GuiUndoRecordingHelper(const GuiUndoRecordingHelper&) = delete;
    GuiUndoRecordingHelper& operator=(const GuiUndoRecordingHelper&) = delete;
};
