#include <plinthor/undorecording.h>

#include <values/undo.h>

UndoRecordingControlBase::UndoRecordingControlBase()
    : m_bUndoRecordingEnabled(true)
{
}

UndoRecordingControlBase::~UndoRecordingControlBase() = default;

void UndoRecordingControlBase::SetUndoRecordingEnabled(bool enabled)
{
    m_bUndoRecordingEnabled = enabled;
}

GuiUndoRecordingHelper::GuiUndoRecordingHelper(const UndoRecordingControlBase* control, const QString& description)
{
    values::UndoRecorder::Instance().BeginSpan(control && control->IsUndoRecordingEnabled(), description);
}

GuiUndoRecordingHelper::~GuiUndoRecordingHelper()
{
    values::UndoRecorder::Instance().EndSpan();
}
