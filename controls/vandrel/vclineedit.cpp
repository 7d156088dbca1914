#include <vandrel/vclineedit.h>

#include <vandrel/binding/binding.h>
#include <vandrel/binding/useraction_p.h>

#include <plinthor/plinthorapp.h>
#include <plinthor/suffixeddouble.h>
#include <plinthor/timetoaxisstring.h>

#include <QCoreApplication>
#include <QEvent>
#include <QMessageBox>
#include <QPointer>
#include <QRegExp>
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QRegExpValidator>
#else
#include <QValidator>
#endif
#include <QScopedValueRollback>

#include <algorithm>
#include <cmath>

namespace {

const QString kSourceUnit = QStringLiteral("controls/vandrel/vclineedit");

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
using RegExpValidator = QRegExpValidator;
#else
// Qt 6 keeps QRegExp in its compatibility module but not QRegExpValidator: this answers as that did.
class RegExpValidator : public QValidator
{
public:
    RegExpValidator(const QRegExp& pattern, QObject* parent) : QValidator(parent), m_pattern(pattern) {}

    State validate(QString& input, int& pos) const override
    {
        if (m_pattern.exactMatch(input))
            return Acceptable;
        // A text that ran out while still matching may yet become acceptable.
        if (m_pattern.matchedLength() == input.size())
            return Intermediate;
        pos = int(input.size());
        return Invalid;
    }

private:
    QRegExp m_pattern;
};
#endif

bool isKnownType(int type)
{
    return type >= VCLineEdit::PlainEdit && type <= VCLineEdit::TimeAxis;
}

// The frequency types that keep one fixed prefix, and which.
bool fixedPrefix(VCLineEdit::LineEditType type, SuffixedDouble::ESuffix& suffix)
{
    switch (type) {
    case VCLineEdit::FrequencySuffix2:
        suffix = SuffixedDouble::SuffixKilo;
        return true;
    case VCLineEdit::FrequencySuffix3:
        suffix = SuffixedDouble::SuffixMega;
        return true;
    case VCLineEdit::FrequencySuffix4:
        suffix = SuffixedDouble::SuffixGiga;
        return true;
    default:
        return false;
    }
}

// The field went while its range box stood: the value, if it is still there, gets the limit that the
// box announced all the same.
void writeLimitOfGoneField(const QString& path, bool maximum, bool suffixed)
{
    values::Tree* tree = values::Tree::Instance();
    auto* value = tree && !path.isEmpty() ? dynamic_cast<values::IValueNumeric*>(tree->Find(path)) : nullptr;
    if (!value)
        return;
    double limit = maximum ? value->GetMaximum() : value->GetMinimum();
    if (suffixed && !maximum)
        limit = std::max(0.0, limit);
    value->SetValue(limit, nullptr);
}

// A factor of 0 or 1 means "no scaling".
bool scales(double factor)
{
    return factor != 1.0 && factor != 0.0;
}

} // namespace

VCLineEdit::VCLineEdit(QWidget* parent, const char* name, LineEditType type)
    : QLineEdit(parent)
    , m_pTextValue(nullptr)
    , m_pNumericValue(nullptr)
    , m_pSelectionValue(nullptr)
    , m_eType(isKnownType(type) ? type : PlainEdit)
    , m_bInCommit(false)
    , m_bShowEdited(false)
    , m_nIntegerDigits(-1)
    , m_nDecimals(-1)
    , m_fFactor(1.0)
    , m_strSuffix(QLatin1String(""))
    , m_strPrefixLetters(QLatin1String(""))
    , m_bNumericUsed(false)
    , m_fNumeric(0.0)
    , m_bSuppressError(false)
    , m_strStyleError(QStringLiteral("QLineEdit{ color: white; background-color: red }"))
    , m_strStyleEdited(QStringLiteral("QLineEdit{ color: gray; background-color: white }"))
    , m_bDirty(false)
    , m_strName(QString::fromUtf8(name))
    , m_pHeldWrites(new HeldWrites)
{
    FollowOptionalRecordingDefault();
    setObjectName(m_strName);
    connect(&Plinthor::Instance(), SIGNAL(endEdit(QWidget*)), this, SLOT(onForceFinishEdit(QWidget*)));
    m_strStyleNormal = styleSheet();

    const QRegExp frequencyPattern(QStringLiteral("\\s*\\d*[.,]?\\d*\\s*[MmKkGg]?(?:[Hh][Zz]?)?"), Qt::CaseSensitive,
                                   QRegExp::RegExp);
    connect(this, SIGNAL(textEdited(QString)), this, SLOT(slotEdited(QString)));
    setDragEnabled(false);

    switch (m_eType) {
    case Frequency:
    case FrequencySuffix2:
    case FrequencyFollowing:
    case FrequencySuffix3:
    case FrequencySuffix4: {
        setMaxLength(20);
        m_pSuffixedDouble.reset(new SuffixedDouble(QStringLiteral("Hz"), 1000, false));
        // Only the following type keeps the application's frequency unit.
        if (m_eType != FrequencyFollowing)
            m_pSuffixedDouble->SetSuffix_ValuePath(QString());
        SuffixedDouble::ESuffix suffix = SuffixedDouble::SuffixAuto;
        if (fixedPrefix(m_eType, suffix))
            m_pSuffixedDouble->SetSuffix(suffix);
        setValidator(new RegExpValidator(frequencyPattern, this));
        break;
    }
    case SuffixedNumber:
        m_pSuffixedDouble.reset(new SuffixedDouble(QString(), 1000, true));
        m_pSuffixedDouble->SetSuffix_ValuePath(QString());
        break;
    case TimeAxis:
        m_pTimeToAxis.reset(new TimeToAxisString);
        break;
    case PlainEdit:
        break;
    }

    connect(this, SIGNAL(editingFinished()), this, SLOT(SetTextFromControl()));
    setToolTip(m_strName);
    setEnabled(false);
    installEventFilter(this);
}

VCLineEdit::~VCLineEdit()
{
    // An edit the user left is committed; a text that only missed the value's newest change would
    // write the old content back over it.
    const bool stale = !isModified() && (m_pTextValue || m_pNumericValue || m_pSelectionValue) && heldNow() != m_strHeldSeen;
    if (!QCoreApplication::closingDown() && isVisible() && !stale) {
        // The parent may be half destroyed already: a range box shown now must not run an event loop.
        const QScopedValueRollback<bool> destroying(m_bDestroying, true);
        commit();
        emit signalTextFinallyChanged(text());
    }
    DetachValue(m_pTextValue, this);
    DetachValue(m_pNumericValue, this);
    DetachValue(m_pSelectionValue, this);
    m_pSuffixedDouble.reset();
    m_pTimeToAxis.reset();
}

bool VCLineEdit::SetText_ValuePath(const QString& path)
{
    DetachValue(m_pTextValue, this);
    DetachValue(m_pNumericValue, this);
    DetachValue(m_pSelectionValue, this);

    // A value that is a number and something else binds as a number.
    // Showing a text value writes it back: an observer of that write may delete the field.
    const QPointer<VCLineEdit> alive(this);
    m_pNumericValue = FindAndAttach<values::IValueNumeric>(path, nullptr, this);
    if (m_pNumericValue) {
        SyncObserver(m_pNumericValue, this);
    } else if ((m_pTextValue = FindAndAttach<values::Value<QString>>(path, nullptr, this))) {
        SyncObserver(m_pTextValue, this);
    } else if ((m_pSelectionValue = FindAndAttach<values::ValueSelection>(path, nullptr, this))) {
        SyncObserver(m_pSelectionValue, this);
    } else {
        return false;
    }
    if (!alive)
        return true;
    // The first picture of a value is not a change.
    m_bDirty = false;
    return true;
}

bool VCLineEdit::SetValueBase(values::ValueBase* value)
{
    DetachValue(m_pTextValue, this);
    DetachValue(m_pNumericValue, this);
    DetachValue(m_pSelectionValue, this);
    if (!value)
        return false;

    const QPointer<VCLineEdit> alive(this);
    if ((m_pNumericValue = dynamic_cast<values::IValueNumeric*>(value))) {
        ObservableOf(m_pNumericValue)->Attach(this);
        SyncObserver(m_pNumericValue, this);
    } else if ((m_pTextValue = dynamic_cast<values::Value<QString>*>(value))) {
        ObservableOf(m_pTextValue)->Attach(this);
        SyncObserver(m_pTextValue, this);
    } else if ((m_pSelectionValue = dynamic_cast<values::ValueSelection*>(value))) {
        ObservableOf(m_pSelectionValue)->Attach(this);
        SyncObserver(m_pSelectionValue, this);
    } else {
        return false;
    }
    if (!alive)
        return true;
    m_bDirty = false;
    return true;
}

values::ValueBase* VCLineEdit::GetValuePtr() const
{
    if (m_pTextValue)
        return m_pTextValue;
    if (m_pNumericValue)
        return dynamic_cast<values::ValueBase*>(m_pNumericValue);
    return m_pSelectionValue;
}

bool VCLineEdit::SetText(QString text)
{
    // Shown before it is written: should an observer of the write delete the field, the destructor's
    // commit then writes this text again, not the one it replaced.
    QLineEdit::setText(text);
    if (m_pTextValue && !SurvivesWrite(this, [this, &text] { m_pTextValue->SetValue(text, this); }))
        return true;
    m_bDirty = true;
    return true;
}

QString VCLineEdit::GetText() const
{
    return QLineEdit::text();
}

void VCLineEdit::SetNumeric(double value)
{
    m_bNumericUsed = true;

    if (m_pNumericValue) {
        if (std::isnan(value) && (ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Failures))
            _Q_Trace(QStringLiteral("value = NaN , parentname :") + m_strName, kSourceUnit,
                     static_cast<unsigned short>(__LINE__));
        if (!SurvivesWrite(this, [this, value] { m_pNumericValue->SetValue(value, nullptr); }))
            return;
        // Show what the value kept after its own clamping and rounding.
        value = m_pNumericValue->GetValue();
    }

    if (m_pSuffixedDouble) {
        m_pSuffixedDouble->SetValue(value);
        QLineEdit::setText(m_pSuffixedDouble->GetString(SuffixedDouble::HeldValue));
    } else if (m_pTimeToAxis) {
        QLineEdit::setText(m_pTimeToAxis->convertSuffixed(value));
    } else {
        if (scales(m_fFactor))
            value *= m_fFactor;
        QString text;
        if (m_nDecimals != -1 && m_nIntegerDigits != -1) {
            // No double has digits beyond 323 decimals, and Qt's formatter aborts on a far larger
            // precision; no field holds a text wider than its maxLength(). The sum must not overflow.
            const int decimals = qMin(m_nDecimals, 323);
            const int width = int(qBound(qint64(-maxLength()), qint64(m_nIntegerDigits) + decimals, qint64(maxLength())));
            text = QStringLiteral("%1").arg(value, width, 'f', decimals, QLatin1Char(' '));
        } else
            text = QStringLiteral("%1").arg(value, 0, 'g', -1, QLatin1Char(' '));
        AddSuffix(text);
        if (!SurvivesWrite(this, [this, &text] { SetText(text); }))
            return;
    }

    m_bDirty = true;
    m_fNumeric = value;
}

double VCLineEdit::GetNumeric() const
{
    if (m_pNumericValue)
        return m_pNumericValue->GetValue();
    if (m_pSuffixedDouble)
        return m_pSuffixedDouble->GetValue();
    return text().toDouble();
}

void VCLineEdit::SetFormat(int integerDigits, int decimals, QString suffix, QString prefixLetters, double factor)
{
    m_nIntegerDigits = integerDigits;
    m_nDecimals = decimals;
    m_strSuffix = suffix;
    m_strPrefixLetters = prefixLetters;
    m_fFactor = factor;
}

bool VCLineEdit::SetFactor(int factor)
{
    if (!(m_eType & 4))
        return false;
    // A time field passes the type test but owns no such formatter.
    if (m_pSuffixedDouble)
        m_pSuffixedDouble->SetFactor(factor);
    if (m_pNumericValue)
        SetNumeric(m_pNumericValue->GetValue());
    return true;
}

bool VCLineEdit::SetStringSuffix(QString suffix)
{
    if (!(m_eType & 4))
        return false;
    if (m_pSuffixedDouble)
        m_pSuffixedDouble->SetStringSuffix(suffix);
    if (m_pNumericValue)
        SetNumeric(m_pNumericValue->GetValue());
    return true;
}

void VCLineEdit::ShowEdited(bool show)
{
    m_bShowEdited = show;
}

void VCLineEdit::SuppressErrorMessage(bool suppress)
{
    m_bSuppressError = suppress;
}

bool VCLineEdit::GetDirty() const
{
    return m_bDirty;
}

void VCLineEdit::SetDirty(bool dirty)
{
    m_bDirty = dirty;
}

void VCLineEdit::endEdit()
{
    if (commit())
        emit signalTextFinallyChanged(text());
}

void VCLineEdit::Update(Observable* source, TChangeCode code)
{
    if (code == StateChanged) {
        // An unbound field is a null Observable; the state helper has nothing to do with it.
        if (source == ObservableOf(m_pTextValue))
            ApplyValueState(m_pTextValue, this);
        else if (source == ObservableOf(m_pNumericValue))
            ApplyValueState(m_pNumericValue, this);
        else if (source == ObservableOf(m_pSelectionValue))
            ApplyValueState(m_pSelectionValue, this);
        return;
    }
    if (code == ValueDestroyed) {
        ForgetDestroyedValue(m_pTextValue, source);
        ForgetDestroyedValue(m_pNumericValue, source);
        ForgetDestroyedValue(m_pSelectionValue, source);
        return;
    }

    const bool wholeTextSelected = hasSelectedText() && selectedText() == text();
    if (code != ValueChanged)
        return;

    // Showing a value may write it back, and an observer of that write may delete the field: one
    // watch serves every step below.
    const QPointer<VCLineEdit> alive(this);
    bool shown = false;
    if (m_pTextValue && source == ObservableOf(m_pTextValue)) {
        if (m_bFollowingValue) {
            // The echo of another field on this value: show it, don't answer, or two fields would
            // write to each other without end (a text value notifies every write).
            QLineEdit::setText(m_pTextValue->GetValue());
        } else {
            // Not a rollback: the field may not outlive the answer it writes.
            m_bFollowingValue = true;
            SetText(m_pTextValue->GetValue());
            if (!alive)
                return;
            m_bFollowingValue = false;
        }
        shown = true;
    }
    if (m_pNumericValue && source == ObservableOf(m_pNumericValue)) {
        SetNumeric(m_pNumericValue->GetValue());
        if (!alive)
            return;
        shown = true;
    }
    if (m_pSelectionValue && source == ObservableOf(m_pSelectionValue)) {
        if (values::SelectionItem* item = m_pSelectionValue->GetCurrentItem()) {
            SetText(item->GetName());
            if (!alive)
                return;
            shown = true;
        }
    }
    if (shown) {
        m_strHeldSeen = heldNow();
        // A value change during a select-all keeps the whole text selected.
        if (wholeTextSelected)
            selectAll();
        m_bDirty = true;
    }
}

void VCLineEdit::SetTextFromControl()
{
    // Qt's editingFinished() comes from inside its key and focus handling, which goes on using the
    // field afterwards: a commit whose write may delete the field waits until that handling is over.
    if (m_pHeldWrites->Holding()) {
        m_pHeldWrites->Write([this] { commit(); });
        return;
    }
    commit();
}

bool VCLineEdit::event(QEvent* event)
{
    return vandrel::DeliverUserAction(this, this, m_undoAction, event, [this, event] {
        return m_pHeldWrites->Deliver(this, [this, event] { return QLineEdit::event(event); });
    });
}

// The commit; false when an observer of the write, or the application during the range box, deleted
// the field, which then must not be touched again.
bool VCLineEdit::commit()
{
    if (m_bInCommit)
        return true;
    setStyleSheet(m_strStyleNormal);
    m_bInCommit = true;

    if (m_pTextValue) {
        // The text goes over as it stands; the type's formatter has no part in it.
        if (!SurvivesWrite(this, [this] { m_pTextValue->SetValue(GetText(), this); }))
            return false;
        if (!SurvivesWrite(this, [this] { Update(ObservableOf(m_pTextValue), ValueChanged); }))
            return false;
    } else if (m_pNumericValue) {
        if (!checkRangeAndWrite())
            return false;
        m_strHeldSeen = heldNow();
        return true;
    } else if (m_pSelectionValue) {
        if (!SurvivesWrite(this, [this] { m_pSelectionValue->SetValueFromText(GetText(), this); }))
            return false;
        if (!SurvivesWrite(this, [this] { Update(ObservableOf(m_pSelectionValue), ValueChanged); }))
            return false;
    } else if (m_bNumericUsed) {
        m_fNumeric = text().toDouble();
        if (m_pSuffixedDouble) {
            m_pSuffixedDouble->SetFrequencyString(text());
            m_fNumeric = m_pSuffixedDouble->GetValue();
            setText(m_pSuffixedDouble->GetString(SuffixedDouble::HeldValue));
        } else {
            // Read back as shown: the factor is applied once more, and a unit reads as 0.
            if (!SurvivesWrite(this, [this] { SetNumeric(m_fNumeric); }))
                return false;
        }
    }

    m_bInCommit = false;
    m_bDirty = true;
    m_strHeldSeen = heldNow();
    return true;
}

QString VCLineEdit::heldNow() const
{
    if (m_pTextValue)
        return m_pTextValue->GetValueString();
    if (m_pNumericValue)
        return ValueBaseOf(m_pNumericValue)->GetValueString();
    if (m_pSelectionValue)
        return m_pSelectionValue->GetValueString();
    return QString();
}

bool VCLineEdit::checkRangeAndWrite()
{
    values::IValueNumeric* value = m_pNumericValue;
    const double maximum = value->GetMaximum();
    double minimum = value->GetMinimum();
    double entered = 0.0;

    if (m_pSuffixedDouble) {
        m_pSuffixedDouble->SetFrequencyString(text());
        // Parsing a typed prefix would make it the fixed one; these types keep theirs.
        SuffixedDouble::ESuffix suffix = SuffixedDouble::SuffixAuto;
        if (fixedPrefix(m_eType, suffix))
            m_pSuffixedDouble->SetSuffix(suffix);
        entered = m_pSuffixedDouble->GetValue();
        setText(m_pSuffixedDouble->GetString(SuffixedDouble::HeldValue));
        // A suffixed field knows no numbers below zero.
        minimum = std::max(0.0, minimum);
    } else if (m_pTimeToAxis) {
        // The typed number only reformats the display; the value sees 0.
        setText(m_pTimeToAxis->convertSuffixed(text().toDouble()));
    } else {
        entered = GetNumericFromSuffixedText();
    }

    // Strict tests, so NaN counts as in range.
    const QString path = ValueBaseOf(value) ? ValueBaseOf(value)->GetPathName() : QString();
    const bool suffixed = m_pSuffixedDouble != nullptr;
    if (entered > maximum) {
        if (!m_bSuppressError
            && !reportRange(tr("Input Error"),
                            tr("Input exceeds maximum, value set to %1.\nAllowed range from %2 to %3."), maximum,
                            minimum, maximum)) {
            writeLimitOfGoneField(path, true, suffixed);
            return false;
        }
        // The box runs an event loop, in which the value may have gone.
        value = m_pNumericValue;
        if (value) {
            if (m_pSuffixedDouble) {
                m_pSuffixedDouble->SetValue(value->GetMaximum());
                const double fixed = m_pSuffixedDouble->GetValue();
                setText(m_pSuffixedDouble->GetString(SuffixedDouble::HeldValue));
                if (!SurvivesWrite(this, [value, fixed] { value->SetValue(fixed, nullptr); }))
                    return false;
            } else {
                if (m_pTimeToAxis)
                    setText(m_pTimeToAxis->convertSuffixed(value->GetMaximum()));
                if (!SurvivesWrite(this, [value] { value->SetValue(value->GetMaximum(), nullptr); }))
                    return false;
            }
            if (!SurvivesWrite(this, [this] { Update(ObservableOf(m_pNumericValue), ValueChanged); }))
                return false;
        }
        m_bInCommit = false;
    } else if (entered < minimum) {
        if (!m_bSuppressError
            && !reportRange(tr("Range Check Error"),
                            tr("Input underruns minimum, value set to %1.\nAllowed range from %2 to %3."), minimum,
                            minimum, maximum)) {
            writeLimitOfGoneField(path, false, suffixed);
            return false;
        }
        value = m_pNumericValue;
        if (value) {
            // An underrun writes as the field itself, an overrun with no originator; both redraw below.
            if (m_pSuffixedDouble) {
                m_pSuffixedDouble->SetValue(minimum);
                const double fixed = m_pSuffixedDouble->GetValue();
                setText(m_pSuffixedDouble->GetString(SuffixedDouble::HeldValue));
                if (!SurvivesWrite(this, [this, value, fixed] { value->SetValue(fixed, this); }))
                    return false;
            } else {
                if (m_pTimeToAxis)
                    setText(m_pTimeToAxis->convertSuffixed(minimum));
                if (!SurvivesWrite(this, [value, minimum] { value->SetValue(minimum, nullptr); }))
                    return false;
            }
            if (!SurvivesWrite(this, [this] { Update(ObservableOf(m_pNumericValue), ValueChanged); }))
                return false;
        }
        m_bInCommit = false;
    } else {
        if (!SurvivesWrite(this, [this, value, entered] { value->SetValue(entered, this); }))
            return false;
        m_bInCommit = false;
        m_bDirty = true;
    }
    return true;
}

// Shows the range box; false when the field was deleted while the box stood (its event loop runs
// the application: a timer may close the panel, a value may go and the panel be rebuilt).
bool VCLineEdit::reportRange(const QString& title, const QString& message, double setTo, double minimum,
                             double maximum)
{
    const QString text = message.arg(rangeNumber(setTo)).arg(rangeNumber(minimum)).arg(rangeNumber(maximum));
    if (m_bDestroying) {
        // From the destructor the box gets no event loop and no parent, both of which may be half
        // destroyed: it stands on its own and goes when the user closes it.
        auto* box = new QMessageBox(QMessageBox::Information, title, text, QMessageBox::Ok);
        box->setDefaultButton(QMessageBox::NoButton);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->show();
        return true;
    }
    const QPointer<VCLineEdit> alive(this);
    setStyleSheet(m_strStyleError);
    // What QMessageBox::information() shows, but on the heap: a box on the stack would be deleted
    // with its parent, this field, while its event loop still runs.
    const QPointer<QMessageBox> box = new QMessageBox(QMessageBox::Information, title, text, QMessageBox::Ok, this);
    box->exec();
    delete box.data();
    if (!alive)
        return false;
    setStyleSheet(m_strStyleNormal);
    return true;
}

QString VCLineEdit::rangeNumber(double number) const
{
    if (m_pSuffixedDouble)
        return QStringLiteral("%1").arg(m_pSuffixedDouble->GetShortestString(number), 0, QLatin1Char(' '));
    return QStringLiteral("%1").arg(number, 0, 'g', -1, QLatin1Char(' '));
}

double VCLineEdit::GetNumericFromSuffixedText()
{
    double result = text().toDouble();
    if (m_strSuffix.isEmpty())
        return result;

    QString s = text().trimmed();
    const int at = s.indexOf(m_strSuffix);
    if (at >= 0) {
        s.truncate(at);
        result = s.toDouble();
    }
    if (scales(m_fFactor))
        result /= m_fFactor;

    // The letter is looked for after the unit was cut off, where toDouble() has already failed on it:
    // a typed letter scales 0.
    const QChar last = s.isEmpty() ? QChar() : s.at(s.size() - 1);
    if (m_strPrefixLetters.contains(QLatin1Char('k')) && last == QLatin1Char('k'))
        return result * 1000.0;
    if (m_strPrefixLetters.contains(QLatin1Char('m')) && last == QLatin1Char('m'))
        return result / 1000.0;
    if (m_strPrefixLetters.contains(QChar(0xFFB5)) && last == QChar(0x00B5))
        result /= 1000000.0;
    return result;
}

void VCLineEdit::AddSuffix(QString& text)
{
    if (!m_strSuffix.isEmpty())
        text += QLatin1Char(' ') + m_strSuffix;
}

void VCLineEdit::onForceFinishEdit(QWidget* widget)
{
    if (widget != this || !isModified())
        return;
    if (commit())
        emit signalTextFinallyChanged(text());
}

void VCLineEdit::slotEdited(QString)
{
    if (!hasAcceptableInput())
        setStyleSheet(m_strStyleError);
    else if (isModified() && m_bShowEdited)
        setStyleSheet(m_strStyleEdited);
    else
        setStyleSheet(m_strStyleNormal);
    m_bDirty = true;
}

bool VCLineEdit::eventFilter(QObject*, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonDblClick:
        selectAll();
        return true;
    case QEvent::FocusIn:
        selectAll();
        return false;
    case QEvent::FocusOut: {
        // A field deleted by its commit, or by a listener of its signal, eats the event: nothing of it
        // is left to receive it.
        if (!vandrel::InUserEditSpan(this, [this] { return commit(); }))
            return true;
        return !SurvivesWrite(this, [this] { emit signalTextFinallyChanged(text()); });
    }
    default:
        return false;
    }
}

void VCLineEdit::keyReleaseEvent(QKeyEvent*)
{
}
