#pragma once

#include <values/command.h>
#include <values/korthane_export.h>
#include <values/observable.h>

#include <QByteArray>
#include <QString>

#include <memory>

namespace values {

class Tree;
class ValueTransaction;

/**
 * \brief The base of every value in the tree.
 *
 * A value knows its path in the tree, its state (Enabled, Disabled, Removed) and the translation
 * namespace of its item names. Every write names an originator, the observer on whose behalf it
 * happens, and that observer is not notified of it.
 *
 * While a user edit is being recorded (see GuiUndoRecordingHelper) each write also records how to undo
 * it; the undo list is read through UndoRecordingsToValueClient.
 */
class KORTHANE_EXPORT ValueBase : public virtual Observable
{
public:
    class CommandOnValue;

    ValueBase();
    /// Notifies ValueDestroyed to the observers still attached and drops the value's undo recordings.
    ~ValueBase() override;

    /// Sets the value from its text form; false when the text does not fit the value.
    virtual bool SetValueFromText(const QString& text, IObserver* originator) = 0;
    /// The current value as text. For a selection: the name of the current item.
    virtual QString GetValueString() const = 0;
    /// Enabled, Disabled or Removed.
    virtual int GetState() const;
    /**
     * \brief Calls Update(observable part, code) on each attached observer but \a originator.
     *
     * Inside an open ValueTransaction the call is held back and merged into the transaction's single
     * notification. Returns false when an observer destroyed the value during the call.
     */
    virtual bool Notify(TChangeCode code, IObserver* originator);

    /// The path of the value in the tree; empty while it is not in the tree.
    QString GetPathName() const;
    /// The translation namespace of the value's item names; never null ("" when none is set).
    const char* GetTranslationNamespace() const;
    /// Sets the translation namespace of the value's item names.
    void SetTranslationNamespace(const char* nameSpace);
    /// Sets Enabled, Disabled or Removed and notifies StateChanged when the state changes.
    void SetState(int state, IObserver* originator = nullptr);

    /**
     * \brief Opens a scope in which observers see one notification with \a code, skipping
     * \a originator, however many changes the value makes in it. The scope ends with the returned
     * object.
     */
    ValueTransaction CreateTransaction(TChangeCode code, const IObserver* originator);

protected:
    /// True when writes are recorded for undo now.
    bool Record();
    /// Hands a command that redoes the write just made to the recorder, which takes ownership.
    void RecordCommand(Command* command);
    /**
     * \brief Hands the recorder the pair of commands of one write: \a redo repeats it, \a undo restores
     * what stood before, and \a textBefore is the value's text before the write. The recorder owns both.
     */
    void RecordCommand(Command* redo, Command* undo, const QString& textBefore);

    /**
     * \brief Undo bookkeeping of one write, kept on the stack of the writing function.
     *
     * Made before the write, it captures how to restore the value when recording is on; Done() after
     * a write that changed something records the pair. A step not Done() records nothing.
     */
    class KORTHANE_EXPORT UndoStep
    {
    public:
        /// Captures how to restore \a value now, when recording is on; otherwise the step does nothing.
        explicit UndoStep(ValueBase* value);
        ~UndoStep();
        UndoStep(const UndoStep&) = delete;
        UndoStep& operator=(const UndoStep&) = delete;
        /// Records the pair of commands of the write just made; does nothing when nothing was captured.
        void Done();

    private:
        ValueBase* m_pValue;
        std::unique_ptr<Command> m_pUndo;
        QString m_strBefore;
    };

    /// A command that restores the present state of the value; null for a value that cannot be restored.
    virtual Command* CreateRestoreCommand();

    /**
     * \brief Tells the observers still attached that the value goes (ValueDestroyed) and drops its
     * undo recordings; only the first call acts.
     *
     * The destructor of each value class calls it first thing, while every view of the value
     * (IValueNumeric, IValueMultiSelection, ...) is still whole, so that an observer may still compare
     * the source with any pointer it holds. ValueBase's own destructor calls it for classes that don't.
     */
    void AnnounceDestruction();

private:
    friend class Tree;
    friend class ValueTransaction;

    QString m_strPath;
    QByteArray m_nameSpace;
    int m_nState = Enabled;
    int m_nTransactionDepth = 0;
    ValueTransaction* m_pTransaction = nullptr; // outermost open transaction
    bool m_bDestructionAnnounced = false;
    // Merging of ValueChanged (Tree::SetUpdateInterval): in an open window, a change waiting, and the
    // originator of every waiting change (null when several made them). The originator is only compared,
    // never used, and an observer attached after the write has already read the value it announces.
    bool m_bInWindow = false;
    bool m_bChangeWaiting = false;
    const IObserver* m_pWaitingOriginator = nullptr;

    bool deliverWaitingChange();
};

/**
 * \brief The scope of a transaction on a value (see ValueBase::CreateTransaction).
 *
 * Not copyable or movable: it lives where CreateTransaction's result is stored. Nested transactions
 * on the same value merge into the outermost one.
 */
class KORTHANE_EXPORT ValueTransaction
{
public:
    /**
     * \brief Opens a transaction on \a value; the outermost one notifies \a code, skipping \a originator,
     * when it ends. A null \a value gives a scope that does nothing.
     */
    ValueTransaction(ValueBase* value, TChangeCode code, const IObserver* originator);
    ~ValueTransaction();
    ValueTransaction(const ValueTransaction&) = delete;
    ValueTransaction& operator=(const ValueTransaction&) = delete;

private:
    friend class ValueBase;
    ValueBase* m_pValue;
    TChangeCode m_code;
    const IObserver* m_pOriginator;
    ValueTransaction* m_pOuter; // the outermost transaction of the value, null for that one itself
};

/**
 * \brief A command on one value, with the originator its write names.
 *
 * Its text form begins with the head "<command id>;<path>;".
 */
class KORTHANE_EXPORT ValueBase::CommandOnValue : public Command
{
public:
    /// A command of kind \a commandId on \a value, written on behalf of \a originator (may be null).
    CommandOnValue(int commandId, ValueBase* value, IObserver* originator);
    ~CommandOnValue() override;
    void AddCommandString(std::string& out, int format) override;

    /// The value the command acts on.
    ValueBase* GetValue() const { return m_pValue; }
    /// The observer on whose behalf the command writes; it is not notified of the write. May be null.
    IObserver* GetOriginator() const { return m_pOriginator; }

protected:
    using Command::AddSemicolon;
    /// The value the command acts on; not owned.
    ValueBase* m_pValue;
    /// The originator of the command's write; not owned, may be null.
    IObserver* m_pOriginator;
};

/**
 * \brief A command that puts a value back into a captured state (an undo or redo step).
 *
 * \a V is the value class with RestoreState(const S&), \a S the captured state.
 */
template <class V, class S>
class RestoreCommand : public ValueBase::CommandOnValue
{
public:
    enum { Id = 1 };
    /// A command that puts \a value back into \a state, on behalf of no observer.
    RestoreCommand(V* value, const S& state)
        : CommandOnValue(Id, value, nullptr)
        , m_state(state)
    {
    }
    bool Execute() override { return static_cast<V*>(m_pValue)->RestoreState(m_state); }
    Command* Clone() const override { return new RestoreCommand(static_cast<V*>(m_pValue), m_state); }
    /// The captured state the command restores.
    const S& GetState() const { return m_state; }

private:
    S m_state;
};

} // namespace values
