#include <vandrel/vcslider.h>

#include <vandrel/binding/binding.h>
#include <vandrel/binding/useraction_p.h>
#include "sliderconversion_p.h"

namespace {
// Qt's rounding for the number and both limits.
const vandrel::SliderConversion kConversion{vandrel::RoundToInt, vandrel::RoundToInt};
} // namespace

VCSlider::VCSlider(QWidget* parent, const char* name)
    : QSlider(parent)
    , m_pNumericValue(nullptr)
{
    FollowOptionalRecordingDefault();
    if (name)
        setObjectName(QString::fromUtf8(name));
    StartDisabled(this);
    setMinimum(0);
    setMaximum(1);
    connect(this, SIGNAL(valueChanged(int)), this, SLOT(InternalValueChanged(int)));
}

VCSlider::~VCSlider()
{
    DetachValue(m_pNumericValue, this);
}

bool VCSlider::SetNumeric_ValuePath(const QString& path)
{
    DetachValue(m_pNumericValue, this);
    m_pNumericValue = FindAndAttach<values::IValueNumeric>(path, nullptr, this);
    return showBoundValue();
}

bool VCSlider::SetNumericValue(values::IValueNumeric* value)
{
    DetachValue(m_pNumericValue, this);
    m_pNumericValue = value;
    if (m_pNumericValue)
        ObservableOf(m_pNumericValue)->Attach(this);
    return showBoundValue();
}

bool VCSlider::showBoundValue()
{
    if (!m_pNumericValue)
        return false;
    // The range first, so that the number is not clipped by the range of the former value.
    vandrel::AdoptRange(this, m_bAdoptingRange, vandrel::RoundToInt(m_pNumericValue->GetMinimum()),
                        vandrel::RoundToInt(m_pNumericValue->GetMaximum()));
    setValue(vandrel::RoundToInt(m_pNumericValue->GetValue()));
    SyncObserver(m_pNumericValue, this);
    return true;
}

void VCSlider::setMinValue(int)
{
}

void VCSlider::setMaxValue(int)
{
}

void VCSlider::Update(Observable* source, TChangeCode code)
{
    vandrel::FollowNumber(this, m_pNumericValue, m_bAdoptingRange, kConversion, source, code);
}

bool VCSlider::event(QEvent* event)
{
    return vandrel::DeliverUserAction(this, this, m_undoAction, event, [this, event] { return QSlider::event(event); });
}

void VCSlider::InternalValueChanged(int nValue)
{
    vandrel::WritePosition(m_pNumericValue, m_bAdoptingRange, nValue, this);
}
