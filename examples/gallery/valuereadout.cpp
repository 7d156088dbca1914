#include "valuereadout.h"

#include <orvi/translationcenter.h>
#include <values/values.h>

ValueReadout::ValueReadout(Formatter formatter, QWidget* parent)
    : QLabel(parent)
    , m_format(std::move(formatter))
{
    setTextFormat(Qt::PlainText);
    setText(QStringLiteral("—"));
}

ValueReadout::~ValueReadout()
{
    release();
}

bool ValueReadout::bind(const QString& path)
{
    release();
    m_pValue = values::Tree::Instance()->Find(path);
    if (!m_pValue) {
        showUnbound();
        return false;
    }
    static_cast<Observable*>(m_pValue)->Attach(this);
    setEnabled(m_pValue->GetState() == Enabled);
    refresh();
    return true;
}

void ValueReadout::release()
{
    if (m_pValue)
        static_cast<Observable*>(m_pValue)->Detach(this);
    m_pValue = nullptr;
}

void ValueReadout::showUnbound()
{
    setText(QStringLiteral("—"));
    setEnabled(false);
}

void ValueReadout::refresh()
{
    if (m_pValue)
        // Item names come in the language of the window, as the controls show them.
        setText(m_format ? m_format(*m_pValue)
                         : TranslationCenter::Instance().translate(m_pValue->GetTranslationNamespace(),
                                                                   m_pValue->GetValueString()));
}

void ValueReadout::Update(Observable* source, TChangeCode code)
{
    if (!m_pValue || source != static_cast<Observable*>(m_pValue))
        return;
    switch (code) {
    case ValueDestroyed:
        m_pValue = nullptr; // going: no Detach
        showUnbound();
        break;
    case StateChanged:
        if (m_pValue->GetState() == Removed) {
            release();
            showUnbound();
        } else {
            setEnabled(m_pValue->GetState() == Enabled);
        }
        break;
    case ValueChanged:
    case RangeChanged:
    case ItemsChanged:
    case ItemsCleared:
    case ItemAdded:
        refresh();
        break;
    default:
        break;
    }
}
