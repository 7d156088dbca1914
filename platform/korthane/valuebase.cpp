#include <values/tree.h>
#include <values/undo.h>
#include <values/valuebase.h>

#include <brevanbase/errorhandler.h>

namespace values {

ValueBase::ValueBase() = default;

ValueBase::~ValueBase()
{
    AnnounceDestruction();
}

void ValueBase::AnnounceDestruction()
{
    if (m_bDestructionAnnounced)
        return;
    m_bDestructionAnnounced = true;
    // Transactions still open on this value must not touch it when they end.
    if (m_pTransaction)
        m_pTransaction->m_pValue = nullptr;
    UndoRecorder::Instance().ForgetValue(this);
    // Nothing may follow ValueDestroyed, a merged value change least of all.
    if (m_bInWindow)
        Tree::Instance()->closeWindow(this);
    NotifyObservers(ValueDestroyed, nullptr);
}

int ValueBase::GetState() const
{
    return m_nState;
}

bool ValueBase::Notify(TChangeCode code, IObserver* originator)
{
    // Changes of content merge into the transaction's one notification; a change of state is news of
    // its own that observers must not miss (a removal most of all).
    if (m_nTransactionDepth > 0 && code != StateChanged)
        return true;
    if (Q_UNLIKELY(Tree::s_bMerging))
        return Tree::Instance()->notifyMerged(this, code, originator);
    return NotifyObservers(code, originator);
}

bool ValueBase::deliverWaitingChange()
{
    const IObserver* originator = m_pWaitingOriginator;
    m_bChangeWaiting = false;
    m_pWaitingOriginator = nullptr;
    return NotifyObservers(ValueChanged, originator);
}

QString ValueBase::GetPathName() const
{
    return m_strPath;
}

const char* ValueBase::GetTranslationNamespace() const
{
    return m_nameSpace.constData();
}

void ValueBase::SetTranslationNamespace(const char* nameSpace)
{
    m_nameSpace = QByteArray(nameSpace);
}

void ValueBase::SetState(int state, IObserver* originator)
{
    if (state != Enabled && state != Disabled && state != Removed) {
        BREVAN_TRACE_FAILURE(QStringLiteral("SetState: no such state %1 for %2").arg(state).arg(m_strPath));
        return;
    }
    if (state == m_nState)
        return;
    m_nState = state;
    Notify(StateChanged, originator);
}

ValueTransaction ValueBase::CreateTransaction(TChangeCode code, const IObserver* originator)
{
    return ValueTransaction(this, code, originator);
}

bool ValueBase::Record()
{
    return UndoRecorder::Instance().IsRecording();
}

void ValueBase::RecordCommand(Command* command)
{
    UndoRecorder::Instance().Record(this, command, nullptr, QString());
}

void ValueBase::RecordCommand(Command* redo, Command* undo, const QString& textBefore)
{
    UndoRecorder::Instance().Record(this, redo, undo, textBefore);
}

Command* ValueBase::CreateRestoreCommand()
{
    return nullptr;
}

ValueBase::UndoStep::UndoStep(ValueBase* value)
    : m_pValue(value)
{
    if (value->Record()) {
        m_pUndo.reset(value->CreateRestoreCommand());
        if (m_pUndo)
            m_strBefore = value->GetValueString();
    }
}

ValueBase::UndoStep::~UndoStep() = default;

void ValueBase::UndoStep::Done()
{
    if (!m_pUndo)
        return;
    Command* redo = m_pValue->CreateRestoreCommand();
    m_pValue->RecordCommand(redo, m_pUndo.release(), m_strBefore);
}

ValueTransaction::ValueTransaction(ValueBase* value, TChangeCode code, const IObserver* originator)
    : m_pValue(value)
    , m_code(code)
    , m_pOriginator(originator)
    , m_pOuter(value ? value->m_pTransaction : nullptr)
{
    if (!m_pValue)
        return;
    ++m_pValue->m_nTransactionDepth;
    if (!m_pOuter)
        m_pValue->m_pTransaction = this;
}

ValueTransaction::~ValueTransaction()
{
    if (m_pOuter) {
        // Nested: only the outermost notifies. Its value pointer is null once the value has gone.
        if (m_pOuter->m_pValue)
            --m_pOuter->m_pValue->m_nTransactionDepth;
        return;
    }
    if (!m_pValue)
        return;
    --m_pValue->m_nTransactionDepth;
    m_pValue->m_pTransaction = nullptr;
    m_pValue->Notify(m_code, const_cast<IObserver*>(m_pOriginator));
}

ValueBase::CommandOnValue::CommandOnValue(int commandId, ValueBase* value, IObserver* originator)
    : Command(commandId)
    , m_pValue(value)
    , m_pOriginator(originator)
{
}

ValueBase::CommandOnValue::~CommandOnValue() = default;

void ValueBase::CommandOnValue::AddCommandString(std::string& out, int format)
{
    Command::AddCommandString(out, format);
    if (m_pValue)
        out += m_pValue->GetPathName().toStdString();
    AddSemicolon(out, format);
}

} // namespace values
