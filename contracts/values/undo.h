#pragma once

#include <values/command.h>
#include <values/korthane_export.h>
#include <values/observable.h>

#include <QString>
#include <QStringList>

#include <deque>
#include <list>
#include <memory>
#include <vector>

namespace values {

class ValueBase;

/// \brief Is told when the list of undo recordings changed.
class KORTHANE_EXPORT IUndoRecordingsListener
{
public:
    virtual ~IUndoRecordingsListener();
    /// Called after the list of recordings may have changed; read it again from here.
    virtual void NotifyUndoRecordingsChanged() = 0;
};

/// \brief Keeps listeners of undo recordings and tells them of changes.
class KORTHANE_EXPORT UndoRecordingsListenerNotifier
{
public:
    UndoRecordingsListenerNotifier();
    virtual ~UndoRecordingsListenerNotifier();
    /// Adds \a listener; adding it twice changes nothing. The caller keeps ownership.
    void AddUndoRecordingsListener(IUndoRecordingsListener* listener);
    /// Removes \a listener; one not added is ignored. Safe from inside a notification.
    void RemoveUndoRecordingsListener(IUndoRecordingsListener* listener);

protected:
    /// Calls NotifyUndoRecordingsChanged on every listener; listeners may remove themselves meanwhile.
    void NotifyListeners();

private:
    std::vector<IUndoRecordingsListener*> m_listeners;
};

/**
 * \brief The recorder of user edits: spans, recordings and their undo.
 *
 * A span is opened for one user edit (GuiUndoRecordingHelper does this). While a span is open and
 * enabled, every write to a value records a pair of commands (undo and redo); when the outermost span
 * closes, the pairs of the span form one recording, with a description such as
 * "/receiver/gain: 10 → 20" made from the first value it changed. Writes outside a span are not
 * recorded, and neither are the writes of an undo.
 *
 * The history keeps at most HistoryLimit() recordings (100 by default); the oldest drop out. A value
 * that is destroyed takes the recordings that touched it with it.
 */
class KORTHANE_EXPORT UndoRecorder
{
public:
    /// The one recorder of the process.
    static UndoRecorder& Instance();

    /// Opens a span; \a enabled false makes a span whose writes are not recorded.
    void BeginSpan(bool enabled, const QString& description = QString());
    /// Closes the innermost span; the outermost one turns what it gathered into a recording.
    void EndSpan();
    /// True while writes are being recorded.
    bool IsRecording() const;
    /// True while an undo runs.
    bool IsUndoing() const { return m_bUndoing; }

    /// Takes a pair of commands of one write of \a value; see ValueBase::RecordCommand.
    void Record(ValueBase* value, Command* redo, Command* undo, const QString& textBefore);

    /// The descriptions of the recordings touching values on or under \a basePath, newest first.
    std::list<QString> Descriptions(const QString& basePath) const;
    /// Undoes the \a count newest recordings under \a basePath, newest first. False when fewer exist
    /// or a command failed.
    bool Undo(const QString& basePath, unsigned int count);
    /// The number of recordings in the history.
    int Count() const { return int(m_recordings.size()); }
    /// Drops every recording.
    void Clear();

    /// The largest number of recordings kept.
    int HistoryLimit() const { return m_nLimit; }
    /// Sets how many recordings are kept (at least 1); older ones drop out at once.
    void SetHistoryLimit(int limit);

    /// Drops the recordings that touched \a value (called as the value goes).
    void ForgetValue(const ValueBase* value);

    /**
     * \brief Registers \a client, whose \a changed is called after every change of the history (a
     * recording added, undone, dropped or cleared). Registering it again replaces its function. The
     * caller keeps ownership and must remove the client before it goes.
     */
    void AddClient(UndoRecordingsListenerNotifier* client, void (*changed)(UndoRecordingsListenerNotifier*));
    /// Unregisters \a client; an unknown client is ignored.
    void RemoveClient(UndoRecordingsListenerNotifier* client);

private:
    UndoRecorder();
    struct Step
    {
        ValueBase* value;
        std::unique_ptr<Command> redo;
        std::unique_ptr<Command> undo;
        QString textBefore;
        QString textAfter;
        QString path; // the value's path at its first write in the span
    };
    struct Recording
    {
        std::vector<Step> steps;
        mutable QString description; // made from the first step when first read, unless given
        QStringList formerPaths;     // paths of steps dropped as their values went during the span
    };
    void changed();
    static QString describe(const Recording& recording);
    bool touches(const Recording& recording, const QString& basePath) const;

    std::deque<Recording> m_recordings; // oldest first
    Recording m_open;
    std::vector<bool> m_spans; // enabled flag of each open span, outermost first
    int m_nLimit = 100;
    bool m_bUndoing = false;
    std::vector<Recording>* m_pExecuting = nullptr; // the recordings an undo is running
    struct ClientEntry
    {
        UndoRecordingsListenerNotifier* client;
        void (*changed)(UndoRecordingsListenerNotifier*);
    };
    std::vector<ClientEntry> m_clients;
};

/**
 * \brief The undo recordings of one branch of the tree.
 *
 * Lists the recordings that changed a value on or under the base path, newest first, and undoes
 * them. Its listeners are told whenever that list may have changed.
 */
class KORTHANE_EXPORT UndoRecordingsToValueClient : public IObserver, public UndoRecordingsListenerNotifier
{
public:
    /// Lists the recordings under \a basePath and registers with the recorder to hear of changes.
    explicit UndoRecordingsToValueClient(const QString& basePath);
    ~UndoRecordingsToValueClient() override;

    /// Undoes the \a recording newest recordings (1 is the newest alone), newest first.
    bool ExecuteUndo(unsigned int recording);
    /// The descriptions of the recordings under the base path, newest first.
    std::list<QString> GetUndoRecordingDescriptions();
    /// Reimplemented to do nothing: the recorder, not the values, tells this client of changes.
    void Update(Observable* source, TChangeCode code) override;

    /// The base path whose recordings this client lists.
    QString GetBasePath() const { return m_strBasePath; }

private:
    static void recordingsChanged(UndoRecordingsListenerNotifier* self);
    QString m_strBasePath;
};

} // namespace values
