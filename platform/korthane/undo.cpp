#include <values/tree.h>
#include <values/undo.h>
#include <values/valuebase.h>

#include <algorithm>

namespace values {

IUndoRecordingsListener::~IUndoRecordingsListener() = default;

UndoRecordingsListenerNotifier::UndoRecordingsListenerNotifier() = default;
UndoRecordingsListenerNotifier::~UndoRecordingsListenerNotifier() = default;

void UndoRecordingsListenerNotifier::AddUndoRecordingsListener(IUndoRecordingsListener* listener)
{
    if (listener && std::find(m_listeners.begin(), m_listeners.end(), listener) == m_listeners.end())
        m_listeners.push_back(listener);
}

void UndoRecordingsListenerNotifier::RemoveUndoRecordingsListener(IUndoRecordingsListener* listener)
{
    m_listeners.erase(std::remove(m_listeners.begin(), m_listeners.end(), listener), m_listeners.end());
}

void UndoRecordingsListenerNotifier::NotifyListeners()
{
    const std::vector<IUndoRecordingsListener*> listeners = m_listeners;
    for (IUndoRecordingsListener* listener : listeners) {
        if (std::find(m_listeners.begin(), m_listeners.end(), listener) != m_listeners.end())
            listener->NotifyUndoRecordingsChanged();
    }
}

UndoRecorder::UndoRecorder() = default;

UndoRecorder& UndoRecorder::Instance()
{
    // Never destroyed: values report to it from their destructors, whenever those run.
    static UndoRecorder* const recorder = new UndoRecorder;
    return *recorder;
}

void UndoRecorder::BeginSpan(bool enabled, const QString& description, unsigned long long group)
{
    if (m_spans.empty()) {
        m_open.description = description;
        m_open.group = group;
    }
    m_spans.push_back(enabled);
}

void UndoRecorder::EndSpan()
{
    if (m_spans.empty())
        return;
    m_spans.pop_back();
    if (!m_spans.empty() || m_open.steps.empty()) {
        if (m_spans.empty())
            m_open = Recording();
        return;
    }
    Recording recording = std::move(m_open);
    m_open = Recording();
    // A new edit makes what was undone unreachable in order: redoing it now would skip this edit.
    m_undone.clear();
    if (recording.group != 0 && !m_recordings.empty() && m_recordings.back().group == recording.group) {
        merge(m_recordings.back(), std::move(recording));
    } else {
        // The text of an undescribed edit is made when someone reads it; most never are.
        m_recordings.push_back(std::move(recording));
        trim();
    }
    changed();
}

void UndoRecorder::merge(Recording& into, Recording&& from)
{
    for (Step& step : from.steps) {
        auto it = std::find_if(into.steps.begin(), into.steps.end(), [&step](const Step& s) { return s.value == step.value; });
        if (it == into.steps.end()) {
            into.steps.push_back(std::move(step));
            continue;
        }
        // The action's first write keeps what stood before it; the last one says where it ended.
        it->redo = std::move(step.redo);
        it->textAfter = step.textAfter;
        if (!it->undo)
            it->undo = std::move(step.undo);
    }
    into.formerPaths << from.formerPaths;
    if (into.made) {
        into.description.clear();
        into.made = false;
    }
}

void UndoRecorder::trim()
{
    while (int(m_recordings.size()) > m_nLimit)
        m_recordings.pop_front();
    while (int(m_undone.size()) > m_nLimit)
        m_undone.pop_front();
}

bool UndoRecorder::IsRecording() const
{
    if (m_spans.empty() || m_bUndoing)
        return false;
    return std::all_of(m_spans.begin(), m_spans.end(), [](bool enabled) { return enabled; });
}

void UndoRecorder::Record(ValueBase* value, Command* redo, Command* undo, const QString& textBefore)
{
    std::unique_ptr<Command> redoOwner(redo);
    std::unique_ptr<Command> undoOwner(undo);
    if (!value || !IsRecording())
        return;
    const QString after = value->GetValueString();
    // Several writes to one value in a span undo to what stood before the first of them.
    auto it = std::find_if(m_open.steps.begin(), m_open.steps.end(), [value](const Step& s) { return s.value == value; });
    if (it != m_open.steps.end()) {
        it->redo = std::move(redoOwner);
        it->textAfter = after;
        if (!it->undo)
            it->undo = std::move(undoOwner);
        return;
    }
    m_open.steps.push_back(Step{value, std::move(redoOwner), std::move(undoOwner), textBefore, after, value->GetPathName()});
}

QString UndoRecorder::describe(const Recording& recording)
{
    const Step& first = recording.steps.front();
    QString path = first.path;
    if (path.isEmpty())
        path = QStringLiteral("(value)");
    QString text = QStringLiteral("%1: %2 \u2192 %3").arg(path, first.textBefore, first.textAfter);
    if (recording.steps.size() > 1)
        text += QStringLiteral(" (+%1)").arg(recording.steps.size() - 1);
    return text;
}

const QString& UndoRecorder::textOf(const Recording& recording)
{
    if (recording.description.isEmpty()) {
        recording.description = describe(recording);
        recording.made = true;
    }
    return recording.description;
}

bool UndoRecorder::touches(const Recording& recording, const QString& basePath) const
{
    return std::any_of(recording.steps.begin(), recording.steps.end(),
                       [&basePath](const Step& step) { return Tree::IsOnOrUnder(step.path, basePath); })
        || std::any_of(recording.formerPaths.begin(), recording.formerPaths.end(),
                       [&basePath](const QString& path) { return Tree::IsOnOrUnder(path, basePath); });
}

std::list<QString> UndoRecorder::Descriptions(const QString& basePath) const
{
    std::list<QString> list;
    for (auto it = m_recordings.rbegin(); it != m_recordings.rend(); ++it) {
        if (touches(*it, basePath))
            list.push_back(textOf(*it));
    }
    return list;
}

std::list<QString> UndoRecorder::RedoDescriptions(const QString& basePath) const
{
    std::list<QString> list;
    for (auto it = m_undone.rbegin(); it != m_undone.rend(); ++it) {
        if (touches(*it, basePath))
            list.push_back(textOf(*it));
    }
    return list;
}

std::vector<UndoRecorder::Recording> UndoRecorder::takeNewest(std::deque<Recording>& from, const QString& basePath,
                                                               unsigned int count) const
{
    std::vector<size_t> picked; // positions, newest first
    for (size_t i = from.size(); i-- > 0 && picked.size() < count;) {
        if (touches(from[i], basePath))
            picked.push_back(i);
    }
    std::vector<Recording> batch;
    if (picked.size() < count)
        return batch;
    batch.reserve(picked.size());
    for (size_t i : picked)
        batch.push_back(std::move(from[i]));
    for (size_t i : picked) // descending, so earlier positions stay valid
        from.erase(from.begin() + std::ptrdiff_t(i));
    return batch;
}

bool UndoRecorder::run(std::vector<Recording>& batch, bool undo)
{
    bool ok = true;
    m_bUndoing = true;
    m_pExecuting = &batch;
    for (Recording& recording : batch) {
        recording.group = 0; // an action still under way starts a recording of its own from here
        const auto execute = [&ok](Step& step, const std::unique_ptr<Command>& command) {
            if (step.value && command)
                ok = command->Execute() && ok;
            else
                ok = false;
        };
        if (undo) {
            for (auto step = recording.steps.rbegin(); step != recording.steps.rend(); ++step)
                execute(*step, step->undo);
        } else {
            for (Step& step : recording.steps)
                execute(step, step.redo);
        }
    }
    m_pExecuting = nullptr;
    m_bUndoing = false;
    // A value that went during the run takes its recordings along, as it would have outside one.
    const auto gone = [](const Recording& recording) {
        return std::any_of(recording.steps.begin(), recording.steps.end(), [](const Step& s) { return !s.value; });
    };
    batch.erase(std::remove_if(batch.begin(), batch.end(), gone), batch.end());
    return ok;
}

bool UndoRecorder::Undo(const QString& basePath, unsigned int count)
{
    return move(m_recordings, m_undone, basePath, count, true);
}

bool UndoRecorder::Redo(const QString& basePath, unsigned int count)
{
    return move(m_undone, m_recordings, basePath, count, false);
}

bool UndoRecorder::move(std::deque<Recording>& from, std::deque<Recording>& to, const QString& basePath,
                        unsigned int count, bool undo)
{
    if (count == 0 || m_bUndoing)
        return false;
    // Take the recordings out first: running them writes values, and observers may react in any way.
    std::vector<Recording> batch = takeNewest(from, basePath, count);
    if (batch.empty())
        return false;
    const bool ok = run(batch, undo);
    // Newest first: the last one undone ends up last on the redo list, and the last one undone, the
    // older edit, is redone first.
    for (Recording& recording : batch)
        to.push_back(std::move(recording));
    trim();
    changed();
    return ok;
}

void UndoRecorder::Clear()
{
    m_recordings.clear();
    m_undone.clear();
    changed();
}

void UndoRecorder::SetHistoryLimit(int limit)
{
    m_nLimit = qMax(1, limit);
    if (int(m_recordings.size()) <= m_nLimit && int(m_undone.size()) <= m_nLimit)
        return;
    trim();
    changed();
}

void UndoRecorder::ForgetValue(const ValueBase* value)
{
    const auto touchesValue = [value](const Recording& recording) {
        return std::any_of(recording.steps.begin(), recording.steps.end(), [value](const Step& s) { return s.value == value; });
    };
    if (m_pExecuting) {
        for (Recording& recording : *m_pExecuting) {
            for (Step& step : recording.steps) {
                if (step.value == value)
                    step.value = nullptr;
            }
        }
    }
    for (const Step& step : m_open.steps) {
        if (step.value == value)
            m_open.formerPaths << step.path; // the edit still counts as one under that path
    }
    m_open.steps.erase(std::remove_if(m_open.steps.begin(), m_open.steps.end(), [value](const Step& s) { return s.value == value; }),
                       m_open.steps.end());
    const auto before = m_recordings.size() + m_undone.size();
    m_recordings.erase(std::remove_if(m_recordings.begin(), m_recordings.end(), touchesValue), m_recordings.end());
    m_undone.erase(std::remove_if(m_undone.begin(), m_undone.end(), touchesValue), m_undone.end());
    if (m_recordings.size() + m_undone.size() != before)
        changed();
}

void UndoRecorder::AddClient(UndoRecordingsListenerNotifier* client, void (*changedFn)(UndoRecordingsListenerNotifier*))
{
    RemoveClient(client);
    m_clients.push_back(ClientEntry{client, changedFn});
}

void UndoRecorder::RemoveClient(UndoRecordingsListenerNotifier* client)
{
    m_clients.erase(std::remove_if(m_clients.begin(), m_clients.end(), [client](const ClientEntry& e) { return e.client == client; }),
                    m_clients.end());
}

void UndoRecorder::changed()
{
    const std::vector<ClientEntry> clients = m_clients;
    for (const ClientEntry& entry : clients) {
        const bool stillThere = std::any_of(m_clients.begin(), m_clients.end(),
                                            [&entry](const ClientEntry& e) { return e.client == entry.client; });
        if (stillThere)
            entry.changed(entry.client);
    }
}

UndoRecordingsToValueClient::UndoRecordingsToValueClient(const QString& basePath)
    : m_strBasePath(basePath)
{
    UndoRecorder::Instance().AddClient(this, &UndoRecordingsToValueClient::recordingsChanged);
}

UndoRecordingsToValueClient::~UndoRecordingsToValueClient()
{
    UndoRecorder::Instance().RemoveClient(this);
}

bool UndoRecordingsToValueClient::ExecuteUndo(unsigned int recording)
{
    return UndoRecorder::Instance().Undo(m_strBasePath, recording);
}

std::list<QString> UndoRecordingsToValueClient::GetUndoRecordingDescriptions()
{
    return UndoRecorder::Instance().Descriptions(m_strBasePath);
}

bool UndoRecordingsToValueClient::ExecuteRedo(unsigned int recording)
{
    return UndoRecorder::Instance().Redo(m_strBasePath, recording);
}

std::list<QString> UndoRecordingsToValueClient::GetRedoRecordingDescriptions()
{
    return UndoRecorder::Instance().RedoDescriptions(m_strBasePath);
}

void UndoRecordingsToValueClient::Update(Observable*, TChangeCode)
{
    // The recorder tells this client of its changes directly; values have nothing to add.
}

void UndoRecordingsToValueClient::recordingsChanged(UndoRecordingsListenerNotifier* self)
{
    static_cast<UndoRecordingsToValueClient*>(self)->NotifyListeners();
}

} // namespace values
