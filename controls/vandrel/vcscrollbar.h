#pragma once

#include <vandrel/vandrel_export.h>

#include <plinthor/undorecording.h>
#include <values/values.h>

#include <QScrollBar>

/**
 * \brief A QScrollBar bound to a number (values::IValueNumeric).
 *
 * Like VCSlider, with its own conversions: the number and the minimum are truncated toward zero, the
 * maximum is rounded half up (GetMaximum() + 0.5, truncated), so that limits 0 and 9.6 give the range
 * 0 to 10 while the number 9.6 shows as 9. Every change of the position writes the integer back with
 * the scroll bar as originator.
 *
 * Undo: records only on request (SetUndoRecordingEnabled(true) or
 * UndoRecordingControlBase::SetOptionalRecordingDefault(true)); then a drag from press to release, a
 * press held on the groove or an arrow, a held key or a wheel step is one recording.
 */
class VANDREL_EXPORT VCScrollBar : public QScrollBar, public IObserver, public virtual UndoRecordingControlBase
{
    Q_OBJECT

public:
    /// A disabled scroll bar with the range 0 to 0; \a name becomes the object name.
    explicit VCScrollBar(QWidget* parent = nullptr, const char* name = nullptr);
    ~VCScrollBar() override;

    /// Binds to the number at \a path; false for an unknown path or a value that is not a number.
    bool Set_ValuePath(const QString& path);

    void Update(Observable* source, TChangeCode code) override;

protected:
    /// Reimplemented to make each user action on the scroll bar one undo recording, when recording is on.
    bool event(QEvent* event) override;

protected Q_SLOTS:
    /// Writes the position \a x to the bound number, with the scroll bar as originator; nothing while the
    /// scroll bar takes over new limits.
    void internalValueChanged(int x);

private:
    values::IValueNumeric* m_pNumericValue;
    bool m_bAdoptingRange = false;
    UndoActionGroup m_undoAction;
};
