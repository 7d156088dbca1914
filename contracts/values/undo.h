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
 *
 * What an undo takes back waits on a redo list until the next new recording, which drops the whole
 * list. A redo replays a recording's writes and puts it back on the undo list.
 *
 * One user action may run over several events (a drag from press to release): its spans carry one
 * group number from NewGroup(), and each span of the group that closes while the group's recording is
 * still the newest adds its writes to that recording instead of making a new one.
 */
class KORTHANE_EXPORT UndoRecorder
{
public:
    /// The one recorder of the process.
    static UndoRecorder& Instance();

    /// Opens a span; \a enabled false makes a span whose writes are not recorded. A non-zero \a group
    /// (from NewGroup()) joins the span to the newest recording when that was made by the same group.
    void BeginSpan(bool enabled, const QString& description = QString(), unsigned long long group = 0);
    /// A number, never 0 and never given twice, for the spans of one user action.
    unsigned long long NewGroup() { return ++m_nLastGroup; }
    /// Closes the innermost span; the outermost one turns what it gathered into a recording.
    void EndSpan();
    /// True while writes are being recorded.
    bool IsRecording() const;
    /// True while an undo or a redo runs.
    bool IsUndoing() const { return m_bUndoing; }

    /// Takes a pair of commands of one write of \a value; see ValueBase::RecordCommand.
    void Record(ValueBase* value, Command* redo, Command* undo, const QString& textBefore);

    /// The descriptions of the recordings touching values on or under \a basePath, newest first.
    std::list<QString> Descriptions(const QString& basePath) const;
    /// Undoes the \a count newest recordings under \a basePath, newest first. False when fewer exist
    /// or a command failed.
    bool Undo(const QString& basePath, unsigned int count);
    /// The descriptions of the undone recordings touching values on or under \a basePath that can be
    /// redone, the most recently undone first; each reads as it did in the undo list.
    std::list<QString> RedoDescriptions(const QString& basePath) const;
    /// Redoes the \a count most recently undone recordings under \a basePath, the most recently undone
    /// first, and puts them back on the undo list. False when fewer exist or a command failed.
    bool Redo(const QString& basePath, unsigned int count);
    /// The number of recordings in the history.
    int Count() const { return int(m_recordings.size()); }
    /// The number of recordings that can be redone.
    int RedoCount() const { return int(m_undone.size()); }
    /// Drops every recording, also those waiting for a redo.
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
        mutable bool made = false;    // description was made, not given: a later merge remakes it
        QStringList formerPaths;     // paths of steps dropped as their values went during the span
        unsigned long long group = 0; // the user action still adding to it, 0 once closed for it
    };
    void changed();
    static QString describe(const Recording& recording);
    static const QString& textOf(const Recording& recording);
    bool touches(const Recording& recording, const QString& basePath) const;
    std::vector<Recording> takeNewest(std::deque<Recording>& from, const QString& basePath, unsigned int count) const;
    bool run(std::vector<Recording>& batch, bool undo);
    // Undo() (\a undo true) or Redo(): runs the \a count newest of \a from under \a basePath and puts
    // them on \a to.
    bool move(std::deque<Recording>& from, std::deque<Recording>& to, const QString& basePath, unsigned int count,
              bool undo);
    static void merge(Recording& into, Recording&& from);
    void trim();

    std::deque<Recording> m_recordings; // oldest first
    std::deque<Recording> m_undone;     // the recordings a redo can bring back, most recently undone last
    Recording m_open;
    std::vector<bool> m_spans; // enabled flag of each open span, outermost first
    unsigned long long m_nLastGroup = 0;
    int m_nLimit = 100;
    bool m_bUndoing = false;
    std::vector<Recording>* m_pExecuting = nullptr; // the recordings an undo or redo is running
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
    /**
     * \brief Redoes the \a recording most recently undone recordings under the base path (1 is the
     * last one undone alone), that one first. They return to the undo list. A new recording anywhere
     * drops everything a redo could bring back; so does a value's leaving for the recordings touching it.
     */
    bool ExecuteRedo(unsigned int recording);
    /// The descriptions of the recordings that ExecuteRedo() can bring back, the most recently undone
    /// first; each reads as it did in the undo list.
    std::list<QString> GetRedoRecordingDescriptions();
    /// Reimplemented to do nothing: the recorder, not the values, tells this client of changes.
    void Update(Observable* source, TChangeCode code) override;

    /// The base path whose recordings this client lists.
    QString GetBasePath() const { return m_strBasePath; }

private:
    static void recordingsChanged(UndoRecordingsListenerNotifier* self);
    QString m_strBasePath;
};

} // namespace values
