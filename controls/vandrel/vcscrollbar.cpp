#include <vandrel/vcscrollbar.h>

#include <vandrel/binding/binding.h>
#include "sliderconversion_p.h"

#include <QScopedValueRollback>

VCScrollBar::VCScrollBar(QWidget* parent, const char* name)
    : QScrollBar(parent)
    , m_pNumericValue(nullptr)
{
    setObjectName(QString::fromUtf8(name));
    setMinimum(0);
    setMaximum(0);
    setValue(0);
    setEnabled(false);
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
        setValue(vandrel::TruncateToInt(m_pNumericValue->GetValue()));
        break;
    case RangeChanged: {
        // Taking over the value's limits may push the position into them for a moment; that position
        // is the scroll bar's, not the user's, and must not be written into the value.
        const QScopedValueRollback<bool> adopting(m_bAdoptingRange, true);
        setMinimum(vandrel::TruncateToInt(m_pNumericValue->GetMinimum()));
        setMaximum(vandrel::TruncateToInt(m_pNumericValue->GetMaximum() + 0.5));
        break;
    }
    default:
        break;
    }
}

void VCScrollBar::internalValueChanged(int x)
{
    if (m_pNumericValue && !m_bAdoptingRange)
        m_pNumericValue->SetValue(double(x), this);
}
