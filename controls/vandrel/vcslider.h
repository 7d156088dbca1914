#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QSlider>

/**
 * \brief A QSlider bound to a number (values::IValueNumeric).
 *
 * The slider takes the value's limits and number, rounded with qRound, and follows every change of
 * them. Every change of the slider's position, also one that came from the value, writes the integer
 * back with the slider as originator, so a number with a fraction loses it once shown. Only the
 * moves that taking over new limits forces on the position are not written. The value's
 * step is not used: singleStep() and pageStep() stay the application's.
 *
 * Unbound, the slider is disabled and moving it changes only itself. Bound, it is enabled and
 * disabled by the value's state; when the value is removed it lets go of it and keeps its look.
 *
 * Undo: records only on request (SetUndoRecordingEnabled(true) or
 * UndoRecordingControlBase::SetOptionalRecordingDefault(true)); then a drag from press to release, a
 * held key or a wheel step is one recording.
 */
class VANDREL_EXPORT VCSlider : public QSlider, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /// A disabled slider with the range 0 to 1; \a name, when not null, becomes the object name.
    explicit VCSlider(QWidget* parent = nullptr, const char* name = nullptr);
    ~VCSlider() override;

    /// Binds to the number at \a path; false for an unknown path or a value that is not a number.
    bool SetNumeric_ValuePath(const QString& path);
    /// Binds to \a value, already found by the caller; false for null.
    bool SetNumericValue(values::IValueNumeric* value);

    /// Does nothing: the range follows the value. Use setMinimum() to change the slider's own.
    void setMinValue(int);
    /// Does nothing: the range follows the value. Use setMaximum() to change the slider's own.
    void setMaxValue(int);

    void Update(Observable* source, TChangeCode code) override;

protected:
    /// Reimplemented to make each user action on the slider one undo recording, when recording is on.
    bool event(QEvent* event) override;

private Q_SLOTS:
    void InternalValueChanged(int nValue);

private:
    bool showBoundValue();

    values::IValueNumeric* m_pNumericValue;
    bool m_bAdoptingRange = false;
    UndoActionGroup m_undoAction;
};
