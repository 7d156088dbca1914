#include <plinthor/undorecording.h>

#include <values/undo.h>

namespace {
bool optionalDefault = false;
}

UndoRecordingControlBase::UndoRecordingControlBase()
    : m_nSwitch(1)
{
}

UndoRecordingControlBase::~UndoRecordingControlBase() = default;

void UndoRecordingControlBase::SetUndoRecordingEnabled(bool enabled)
{
    m_nSwitch = enabled ? 1 : 0;
}

bool UndoRecordingControlBase::IsUndoRecordingEnabled() const
{
    return m_nSwitch < 0 ? optionalDefault : m_nSwitch > 0;
}

void UndoRecordingControlBase::SetOptionalRecordingDefault(bool enabled)
{
    optionalDefault = enabled;
}

bool UndoRecordingControlBase::OptionalRecordingDefault()
{
    return optionalDefault;
}

void UndoActionGroup::Begin()
{
    m_nGroup = values::UndoRecorder::Instance().NewGroup();
}

GuiUndoRecordingHelper::GuiUndoRecordingHelper(const UndoRecordingControlBase* control, const QString& description)
    : GuiUndoRecordingHelper(control, description, nullptr)
{
}

GuiUndoRecordingHelper::GuiUndoRecordingHelper(const UndoRecordingControlBase* control, const QString& description,
                                               const UndoActionGroup* group)
{
    values::UndoRecorder::Instance().BeginSpan(control && control->IsUndoRecordingEnabled(), description,
                                               group ? group->Group() : 0);
}

GuiUndoRecordingHelper::~GuiUndoRecordingHelper()
{
    values::UndoRecorder::Instance().EndSpan();
}
