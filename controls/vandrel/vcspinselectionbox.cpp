#include <vandrel/vcspinselectionbox.h>

#include <vandrel/binding/binding.h>
#include <vandrel/binding/useraction_p.h>

#include <QLineEdit>
#include <QRegExp>
#include <QScopedValueRollback>

#include <cmath>

VCSpinSelectionBox::Validator::Validator(QObject* parent)
    : QValidator(parent)
{
}

QValidator::State VCSpinSelectionBox::Validator::validate(QString&, int&) const
{
    return Acceptable;
}

VCSpinSelectionBox::VCSpinSelectionBox(QWidget* parent, const char* name)
    : NumericSpinBox(parent, name)
    , m_cOrderOfMagnitude(L' ')
    , m_pSelectionValue(nullptr)
    , m_pHeldWrites(new HeldWrites)
{
    FollowOptionalRecordingDefault();
    auto* validator = new Validator(this);
    validator->setObjectName(QString());
    lineEdit()->setValidator(validator);
    setEnabled(false);
    setToolTip(QString::fromUtf8(name));
    lineEdit()->setReadOnly(true);
}

VCSpinSelectionBox::~VCSpinSelectionBox()
{
    DetachValue(m_pSelectionValue, this);
}

bool VCSpinSelectionBox::SetValueSelection_ValuePath(const QString& path)
{
    DetachValue(m_pSelectionValue, this);
    m_pSelectionValue = FindAndAttach<values::ValueSelection>(path, nullptr, this);
    if (m_pSelectionValue)
        TakeOverItems();
    SyncObserver(m_pSelectionValue, this);
    return m_pSelectionValue != nullptr;
}

void VCSpinSelectionBox::setOrderOfMagnitudeVSValues(wchar_t letter)
{
    m_cOrderOfMagnitude = letter;
}

void VCSpinSelectionBox::Update(Observable* source, TChangeCode code)
{
    if (!m_pSelectionValue || source != ObservableOf(m_pSelectionValue))
        return;
    switch (code) {
    case StateChanged:
        ApplyValueState(m_pSelectionValue, this);
        break;
    case ValueChanged:
        setValue(int(m_pSelectionValue->GetCurrentIndex()));
        update();
        break;
    case ItemsChanged:
    case ItemAdded:
        setEnabled(true);
        TakeOverItems();
        break;
    case ItemsCleared:
        setEnabled(false);
        break;
    case ValueDestroyed:
        ForgetDestroyedValue(m_pSelectionValue, source);
        break;
    default:
        break;
    }
}

void VCSpinSelectionBox::TakeOverItems()
{
    // The index goes in before the new limits, so Qt may clamp it to the old ones on the way, and
    // showing the clamped index would select that item. Nothing is written meanwhile, and the index is
    // put in once more when the limits stand.
    const QScopedValueRollback<bool> takingOver(m_bTakingOver, true);
    const int current = int(m_pSelectionValue->GetCurrentIndex());
    setValue(current);
    // Also when items come back: an empty selection's maximum of -1 pulled the minimum down with it.
    setMinimum(0);
    setMaximum(m_pSelectionValue->GetItemCount() - 1);
    setValue(current);
    update();
}

bool VCSpinSelectionBox::event(QEvent* event)
{
    return vandrel::DeliverUserAction(this, this, m_undoAction, event, [this, event] {
        return m_pHeldWrites->Deliver(this, [this, event] { return NumericSpinBox::event(event); });
    });
}

int VCSpinSelectionBox::mapTextToValue(bool* ok)
{
    bool read = false;
    QString text = QAbstractSpinBox::text().trimmed();
    const int pos = QRegExp(QStringLiteral("[^0-9.-]")).indexIn(text);

    // The number is converted into the unit of the item numbers, hence the sign against the letter's.
    int exponent = 0;
    switch (m_cOrderOfMagnitude) {
    case L'G':
        exponent = -3;
        break;
    case L'M':
        exponent = -2;
        break;
    case L'k':
        exponent = -1;
        break;
    case L'm':
        exponent = 1;
        break;
    default:
        break;
    }

    if (pos >= 0) {
        const int letter = QRegExp(QStringLiteral("[^ ]")).indexIn(text, pos);
        if (letter >= 0) {
            const QChar c = text.at(letter);
            if (c == QLatin1Char('k'))
                exponent += 1;
            else if (c == QLatin1Char('M'))
                exponent += 2;
            else if (c == QLatin1Char('G'))
                exponent += 3;
            else if (c == QLatin1Char('m'))
                exponent -= 1;
        }
        text = text.left(pos);
    }

    const double number = text.toDouble(&read);
    const double result = number * std::pow(1000.0, exponent);
    if (read && !m_pSelectionValue)
        read = false;
    if (ok)
        *ok = read;
    if (!read)
        return 0;
    if (m_pHeldWrites->Holding()) {
        // Read inside the spin box's key or focus handling: the selection is made once that is over,
        // and the box then shows the item it chose. Meanwhile the index stays.
        m_pHeldWrites->Write([this, result] {
            if (!m_pSelectionValue
                || !SurvivesWrite(this, [this, result] { m_pSelectionValue->SelectValue(result, this, true); }))
                return;
            if (m_pSelectionValue)
                Update(ObservableOf(m_pSelectionValue), ValueChanged);
        });
        return value();
    }
    if (!SurvivesWrite(this, [this, result] { m_pSelectionValue->SelectValue(result, this, true); })
        || !m_pSelectionValue)
        return 0;
    return int(m_pSelectionValue->GetCurrentIndex());
}

QString VCSpinSelectionBox::mapValueToText(int)
{
    if (!m_pSelectionValue)
        return QString();
    // Only a move is written. The selection notifies also a write of the current item, and a second
    // box on the same selection redraws on that notification, which writes again: the two boxes
    // would call each other without end.
    values::SelectionItem* item = m_pSelectionValue->GetItemAt(value());
    if (!item || m_bTakingOver || m_pSelectionValue->GetCurrentIndex() == value())
        return m_pSelectionValue->GetValueString();
    // The text of the item about to be selected, which is what the selection will give as its own.
    const QString shown = item->GetName();
    const long key = item->GetKey();
    m_pHeldWrites->Write([this, key] {
        if (m_pSelectionValue)
            m_pSelectionValue->SelectKey(key, this);
    });
    return shown;
}
