#include <values/tree.h>
#include <values/undo.h>
#include <values/valuebase.h>
#include <values/valueselection.h>

#include <brevanbase/errorhandler.h>

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>

namespace values {

Tree::Tree()
{
    // The recorder must outlive every value: values tell it when they go.
    UndoRecorder::Instance();
}

Tree::~Tree() = default;

Tree* Tree::Instance()
{
    // Never destroyed: values may still be held by controls that outlive static destruction order.
    static Tree* const tree = new Tree;
    return tree;
}

ValueBase* Tree::Find(const QString& path) const
{
    return m_values.value(path, nullptr);
}

bool Tree::IsValidPath(const QString& path)
{
    if (path.size() < 2 || path.at(0) != QLatin1Char('/') || path.endsWith(QLatin1Char('/')))
        return false;
    return !path.contains(QLatin1String("//"));
}

bool Tree::IsOnOrUnder(const QString& path, const QString& basePath)
{
    if (path.isEmpty())
        return false;
    QString base = basePath;
    while (base.endsWith(QLatin1Char('/')))
        base.chop(1);
    if (base.isEmpty())
        return true;
    return path == base || (path.startsWith(base) && path.at(base.size()) == QLatin1Char('/'));
}

bool Tree::Add(const QString& path, ValueBase* value)
{
    if (!value || !IsValidPath(path) || m_values.contains(path) || !value->m_strPath.isEmpty()) {
        BREVAN_TRACE_FAILURE(QStringLiteral("Tree::Add refused for path '%1'").arg(path));
        return false;
    }
    value->m_strPath = path;
    m_values.insert(path, value);
    return true;
}

bool Tree::Remove(const QString& path)
{
    // Out of the tree first, so that an observer reacting to Removed cannot remove it a second time.
    ValueBase* value = m_values.take(path);
    if (!value)
        return false;
    // A value on its way out has nothing more to show; only Removed and ValueDestroyed follow.
    closeWindow(value);
    value->SetState(Removed);
    delete value;
    return true;
}

void Tree::ReleaseValue(const QString& pathName)
{
    Remove(pathName);
}

void Tree::Clear()
{
    // Values added by observers during the clearing are cleared too.
    while (!m_values.isEmpty()) {
        QStringList paths = m_values.keys();
        std::sort(paths.begin(), paths.end());
        for (const QString& path : qAsConst(paths))
            Remove(path);
    }
}

QStringList Tree::Paths() const
{
    QStringList paths = m_values.keys();
    std::sort(paths.begin(), paths.end());
    return paths;
}

QStringList Tree::PathsUnder(const QString& basePath) const
{
    QStringList paths;
    for (auto it = m_values.cbegin(); it != m_values.cend(); ++it) {
        if (IsOnOrUnder(it.key(), basePath))
            paths << it.key();
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

bool Tree::s_bMerging = false;

namespace {
qint64 now()
{
    static QElapsedTimer clock;
    if (!clock.isValid())
        clock.start();
    return clock.elapsed();
}
} // namespace

void Tree::SetUpdateInterval(int ms)
{
    ms = std::max(ms, 0);
    const int old = m_nUpdateInterval;
    m_nUpdateInterval = ms;
    if (ms > 0 && !m_pTimer) {
        m_pTimer = new QTimer;
        m_pTimer->setSingleShot(true);
        QObject::connect(m_pTimer, &QTimer::timeout, [this] { deliverDue(); });
    }
    if (ms < old)
        deliverAll(); // windows opened under the old interval would otherwise last too long
    windowsChanged();
}

void Tree::openWindow(ValueBase* value)
{
    value->m_bInWindow = true;
    m_windows.push_back(Window{value, now() + m_nUpdateInterval});
    if (m_windows.size() == 1)
        windowsChanged();
}

void Tree::closeWindow(ValueBase* value)
{
    if (!value->m_bInWindow)
        return;
    value->m_bInWindow = false;
    value->m_bChangeWaiting = false;
    value->m_pWaitingOriginator = nullptr;
    m_windows.erase(std::find_if(m_windows.begin(), m_windows.end(),
                                 [value](const Window& w) { return w.value == value; }));
    windowsChanged();
}

void Tree::windowsChanged()
{
    s_bMerging = m_nUpdateInterval > 0 || !m_windows.empty();
    if (!m_pTimer)
        return;
    if (m_windows.empty())
        m_pTimer->stop();
    else
        m_pTimer->start(int(std::max<qint64>(0, m_windows.front().due - now())));
}

bool Tree::notifyMerged(ValueBase* value, TChangeCode code, IObserver* originator)
{
    if (code != ValueChanged) {
        // Observers must never see a later change before the value change that preceded it.
        if (value->m_bChangeWaiting && !value->deliverWaitingChange())
            return false;
        return value->NotifyObservers(code, originator);
    }
    if (value->m_bInWindow) {
        if (!value->m_bChangeWaiting) {
            value->m_bChangeWaiting = true;
            value->m_pWaitingOriginator = originator;
        } else if (value->m_pWaitingOriginator != originator) {
            value->m_pWaitingOriginator = nullptr; // several wrote: each must re-read the value
        }
        // Turned off while windows are being emptied: nothing may wait any more.
        return m_nUpdateInterval > 0 || value->deliverWaitingChange();
    }
    // A value outside the tree has no window that anything would close when it goes.
    if (m_nUpdateInterval > 0 && !value->GetPathName().isEmpty())
        openWindow(value);
    return value->NotifyObservers(ValueChanged, originator);
}

void Tree::deliverDue()
{
    // Observers may write, remove values or change the interval from their Update: each pass takes
    // the queue as it is now, and a value delivered opens its next window before it is delivered.
    const qint64 time = now();
    while (!m_windows.empty() && m_windows.front().due <= time) {
        ValueBase* value = m_windows.front().value;
        m_windows.pop_front();
        value->m_bInWindow = false;
        if (value->m_bChangeWaiting) {
            if (m_nUpdateInterval > 0)
                openWindow(value);
            value->deliverWaitingChange();
        }
    }
    windowsChanged();
}

void Tree::deliverAll()
{
    while (!m_windows.empty()) {
        ValueBase* value = m_windows.front().value;
        m_windows.pop_front();
        value->m_bInWindow = false;
        if (value->m_bChangeWaiting)
            value->deliverWaitingChange();
    }
}

UniqueValuesCreator& UniqueValuesCreator::Instance()
{
    static UniqueValuesCreator creator;
    return creator;
}

QString UniqueValuesCreator::CreateValueSelection(bool followNewest)
{
    Tree* tree = Tree::Instance();
    QString path;
    do {
        path = QStringLiteral("/.unique/selection%1").arg(++m_nNext);
    } while (tree->Find(path));
    tree->Add(path, new ValueSelection(followNewest));
    return path;
}

} // namespace values
