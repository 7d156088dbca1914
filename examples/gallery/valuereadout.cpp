#include "valuereadout.h"

#include <orvi/translationcenter.h>
#include <values/values.h>

#include <QPainter>
#include <QStyle>

void OneLineText::paint(QLabel* label)
{
    const QRect area = label->contentsRect();
    const QString text = label->text();
    const QString line = text.section(QLatin1Char('\n'), 0, 0);
    // A second line is not shown; the ellipsis says that there is more.
    const QString wanted = line.size() < text.size() ? line + QStringLiteral(" \u2026") : line;
    const QString shown = label->fontMetrics().elidedText(wanted, Qt::ElideRight, area.width());
    const bool cut = shown != text;

    QPainter painter(label);
    label->style()->drawItemText(&painter, area, int(label->alignment() & ~Qt::AlignVertical_Mask) | Qt::AlignVCenter,
                                 label->palette(), label->isEnabled(), shown, label->foregroundRole());

    const QString current = label->toolTip();
    if (current != m_strTextTip)
        m_strOwnTip = current;
    m_strTextTip = cut ? text : QString();
    const QString tip = cut ? text : m_strOwnTip;
    if (current != tip)
        label->setToolTip(tip);
}

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

QSize ValueReadout::sizeHint() const
{
    // Wide enough for a number with its unit, whatever it shows now.
    const QMargins margins = contentsMargins();
    return QSize(qMax(minimumWidth(), fontMetrics().horizontalAdvance(QStringLiteral("0000000000")) + margins.left() + margins.right()),
                 fontMetrics().height() + margins.top() + margins.bottom());
}

QSize ValueReadout::minimumSizeHint() const
{
    const QMargins margins = contentsMargins();
    return QSize(fontMetrics().horizontalAdvance(QStringLiteral("000")) + margins.left() + margins.right(),
                 fontMetrics().height() + margins.top() + margins.bottom());
}

void ValueReadout::paintEvent(QPaintEvent*)
{
    m_oneLine.paint(this);
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
