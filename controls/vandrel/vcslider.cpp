#include <vandrel/vcslider.h>

#include <vandrel/binding/binding.h>
#include "sliderconversion_p.h"

#include <QScopedValueRollback>

VCSlider::VCSlider(QWidget* parent, const char* name)
    : QSlider(parent)
    , m_pNumericValue(nullptr)
{
    if (name)
        setObjectName(QString::fromUtf8(name));
    setEnabled(false);
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
    adoptRange(vandrel::RoundToInt(m_pNumericValue->GetMinimum()), vandrel::RoundToInt(m_pNumericValue->GetMaximum()));
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
    if (!m_pNumericValue || source != ObservableOf(m_pNumericValue))
        return;
    switch (code) {
    case ValueDestroyed:
        // A value deleted without leaving the tree first: forget it, it can no longer be detached from.
        ForgetDestroyedValue(m_pNumericValue, source);
        break;
    case StateChanged:
        ApplyValueState(m_pNumericValue, this);
        break;
    case ValueChanged:
        setValue(vandrel::RoundToInt(m_pNumericValue->GetValue()));
        break;
    case RangeChanged:
        adoptRange(vandrel::RoundToInt(m_pNumericValue->GetMinimum()), vandrel::RoundToInt(m_pNumericValue->GetMaximum()));
        break;
    default:
        break;
    }
}

void VCSlider::adoptRange(int minimum, int maximum)
{
    // Taking over the value's limits may push the position into them for a moment; that position is
    // the slider's, not the user's, and must not be written into the value.
    const QScopedValueRollback<bool> adopting(m_bAdoptingRange, true);
    setMinimum(minimum);
    setMaximum(maximum);
}

void VCSlider::InternalValueChanged(int nValue)
{
    if (m_pNumericValue && !m_bAdoptingRange)
        m_pNumericValue->SetValue(double(nValue), this);
}
