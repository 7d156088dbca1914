#include <vandrel/vcscrollbar.h>

#include <vandrel/binding/binding.h>
#include <vandrel/binding/useraction_p.h>
#include "sliderconversion_p.h"

namespace {
// Truncation toward zero; the maximum is rounded up from a half.
int truncatedMaximum(double maximum)
{
    return vandrel::TruncateToInt(maximum + 0.5);
}
const vandrel::SliderConversion kConversion{vandrel::TruncateToInt, truncatedMaximum};
} // namespace

VCScrollBar::VCScrollBar(QWidget* parent, const char* name)
    : QScrollBar(parent)
    , m_pNumericValue(nullptr)
{
    FollowOptionalRecordingDefault();
    setObjectName(QString::fromUtf8(name));
    setMinimum(0);
    setMaximum(0);
    setValue(0);
    StartDisabled(this);
    connect(this, SIGNAL(valueChanged(int)), this, SLOT(internalValueChanged(int)));
}

VCScrollBar::~VCScrollBar()
{
    DetachValue(m_pNumericValue, this);
}

bool VCScrollBar::Set_ValuePath(const QString& path)
{
    DetachValue(m_pNumericValue, this);
    m_pNumericValue = FindAndAttach<values::IValueNumeric>(path, nullptr, this);
    if (!m_pNumericValue)
        return false;
    SyncObserver(m_pNumericValue, this);
    return true;
}

void VCScrollBar::Update(Observable* source, TChangeCode code)
{
    vandrel::FollowNumber(this, m_pNumericValue, m_bAdoptingRange, kConversion, source, code);
}

bool VCScrollBar::event(QEvent* event)
{
    return vandrel::DeliverUserAction(this, this, m_undoAction, event, [this, event] { return QScrollBar::event(event); });
}

void VCScrollBar::internalValueChanged(int x)
{
    vandrel::WritePosition(m_pNumericValue, m_bAdoptingRange, x, this);
}
