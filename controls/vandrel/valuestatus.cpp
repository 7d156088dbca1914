#include <vandrel/valuestatus.h>

#include <values/values.h>

#include <QCoreApplication>
#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QPointer>
#include <QToolTip>
#include <QWidget>

#include <algorithm>
#include <unordered_map>
#include <vector>

bool vandrel::detail::g_valueStatusShown = false;

namespace {

enum class Kind { NotFound, Removed, Disabled };

struct Line
{
    const void* slot; // null when a lookup came without a detach before it
    QString path;
    Kind kind;
};

// A value a lookup found, remembered so that its destruction can be told to the right control.
struct Bound
{
    const void* slot;
    const Observable* observable;
    QString path;
};

// The warning frame: paints over the control and lets every input through.
class Frame : public QWidget
{
public:
    explicit Frame(QWidget* control)
        : QWidget(control)
    {
        setObjectName(QStringLiteral("vandrel_value_status_frame"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_NoSystemBackground);
        setFocusPolicy(Qt::NoFocus);
        setGeometry(control->rect());
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        QPen pen(QColor(225, 90, 0), 2);
        pen.setJoinStyle(Qt::MiterJoin);
        painter.setPen(pen);
        painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
    }
};

// Answers the control's tool-tip events with its own tool-tip plus the status lines, and keeps the
// frame over the whole control.
class Filter : public QObject
{
public:
    explicit Filter(QWidget* control)
        : QObject(control)
        , m_pControl(control)
    {
        setObjectName(QStringLiteral("vandrel_value_status_filter"));
        control->installEventFilter(this);
    }
    ~Filter() override { delete m_pFrame.data(); }

    void ShowFrame(bool show)
    {
        m_bFrameWanted = show;
        if (!show) {
            delete m_pFrame.data();
            return;
        }
        if (m_pFrame) {
            m_pFrame->raise();
            m_pFrame->show();
            return;
        }
        // The frame is made on the next turn of the event loop: a value may go while a window that
        // holds the control is being destroyed (a control removing its own value in its destructor),
        // and a widget made then would join the focus chain of a window that is half gone.
        if (!m_bFrameQueued) {
            m_bFrameQueued = true;
            QMetaObject::invokeMethod(this, [this] { makeFrame(); }, Qt::QueuedConnection);
        }
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched != m_pControl)
            return false;
        switch (event->type()) {
        case QEvent::ToolTip: {
            const QString status = vandrel::ValueStatusText(m_pControl);
            const QString own = m_pControl->toolTip();
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                               own.isEmpty() ? status : own + QLatin1Char('\n') + status, m_pControl);
            return true;
        }
        case QEvent::Resize:
            if (m_pFrame)
                m_pFrame->setGeometry(m_pControl->rect());
            break;
        case QEvent::ChildAdded: // a child made later must not cover the frame
            if (m_pFrame)
                m_pFrame->raise();
            break;
        default:
            break;
        }
        return false;
    }

private:
    QWidget* m_pControl;
    void makeFrame()
    {
        m_bFrameQueued = false;
        if (!m_bFrameWanted)
            return;
        if (!m_pFrame)
            m_pFrame = new Frame(m_pControl);
        m_pFrame->raise();
        m_pFrame->show();
    }

    QPointer<Frame> m_pFrame;
    bool m_bFrameWanted = false;
    bool m_bFrameQueued = false;
};

struct ControlStatus
{
    QMetaObject::Connection destroyed;
    const void* pendingSlot = nullptr; // the slot detached last: the one the next lookup fills
    std::vector<Line> lines;
    std::vector<Bound> bound;
    QPointer<Filter> filter;
};

std::unordered_map<const QWidget*, ControlStatus>& controls()
{
    static std::unordered_map<const QWidget*, ControlStatus> map;
    return map;
}

QWidget* controlOf(IObserver* observer)
{
    return dynamic_cast<QWidget*>(observer);
}

ControlStatus& statusOf(QWidget* control)
{
    auto found = controls().find(control);
    if (found != controls().end())
        return found->second;
    ControlStatus& status = controls()[control];
    status.destroyed = QObject::connect(control, &QObject::destroyed, [control] { controls().erase(control); });
    return status;
}

template <class Item, class Pred>
void eraseIf(std::vector<Item>& items, Pred pred)
{
    items.erase(std::remove_if(items.begin(), items.end(), pred), items.end());
}

void forgetSlot(ControlStatus& status, const void* slot)
{
    if (!slot)
        return;
    eraseIf(status.lines, [slot](const Line& line) { return line.slot == slot; });
    eraseIf(status.bound, [slot](const Bound& bound) { return bound.slot == slot; });
}

// Brings the filter and the frame in line with the lines.
void refresh(QWidget* control, ControlStatus& status)
{
    if (status.lines.empty()) {
        delete status.filter.data();
        return;
    }
    if (!status.filter)
        status.filter = new Filter(control);
    status.filter->ShowFrame(std::any_of(status.lines.begin(), status.lines.end(),
                                         [](const Line& line) { return line.kind != Kind::Disabled; }));
}

QString kindText(Kind kind)
{
    switch (kind) {
    case Kind::NotFound:
        return QCoreApplication::translate("vandrel::ValueStatus", "not found");
    case Kind::Removed:
        return QCoreApplication::translate("vandrel::ValueStatus", "removed");
    case Kind::Disabled:
        return QCoreApplication::translate("vandrel::ValueStatus", "disabled");
    }
    return QString();
}

} // namespace

namespace vandrel {

void SetValueStatusShown(bool on)
{
    detail::g_valueStatusShown = on;
    if (on)
        return;
    std::unordered_map<const QWidget*, ControlStatus> all;
    all.swap(controls());
    for (auto& entry : all) {
        QObject::disconnect(entry.second.destroyed);
        delete entry.second.filter.data();
    }
}

bool IsValueStatusShown()
{
    return detail::g_valueStatusShown;
}

QString ValueStatusText(const QWidget* control)
{
    const auto found = controls().find(control);
    if (found == controls().end())
        return QString();
    QStringList lines;
    for (const Line& line : found->second.lines)
        lines << (line.path.isEmpty() ? QCoreApplication::translate("vandrel::ValueStatus", "(no path)") : line.path) + QStringLiteral(": ") + kindText(line.kind);
    return lines.join(QLatin1Char('\n'));
}

namespace detail {

void StatusSlotDetached(IObserver* observer, const void* slot)
{
    QWidget* control = controlOf(observer);
    if (!control)
        return;
    ControlStatus& status = statusOf(control);
    status.pendingSlot = slot;
    forgetSlot(status, slot);
    refresh(control, status);
}

void StatusSlotNamed(IObserver* observer, const void* slot)
{
    if (QWidget* control = controlOf(observer))
        statusOf(control).pendingSlot = slot;
}

void StatusLookedUp(IObserver* observer, const QString& path, const Observable* found)
{
    QWidget* control = controlOf(observer);
    if (!control)
        return;
    ControlStatus& status = statusOf(control);
    const void* slot = status.pendingSlot;
    // A control that tries one kind after another at the same path failed only if all fail.
    if (!found && std::any_of(status.bound.begin(), status.bound.end(), [&path](const Bound& b) { return b.path == path; }))
        return;
    forgetSlot(status, slot);
    if (found) {
        // The path is bound again: whatever it showed goes, also where no detach named the slot.
        eraseIf(status.lines, [&path](const Line& line) { return line.path == path; });
        status.bound.push_back(Bound{slot, found, path});
    } else {
        eraseIf(status.lines, [&path](const Line& line) { return line.kind == Kind::NotFound && line.path == path; });
        status.lines.push_back(Line{slot, path, Kind::NotFound});
    }
    refresh(control, status);
}

void StatusStateSeen(QWidget* control, IObserver* observer, const void* slot, values::ValueBase* value)
{
    if (!control)
        control = controlOf(observer);
    if (!control || !value)
        return;
    const int state = value->GetState();
    if (state != Removed && state != Disabled && controls().find(control) == controls().end())
        return; // nothing to show nor to take away
    ControlStatus& status = statusOf(control);
    const QString path = value->GetPathName();
    eraseIf(status.lines, [slot](const Line& line) { return line.slot == slot; });
    if (state == Removed) {
        eraseIf(status.bound, [slot](const Bound& bound) { return bound.slot == slot; });
        status.lines.push_back(Line{slot, path, Kind::Removed});
    } else if (state == Disabled) {
        status.lines.push_back(Line{slot, path, Kind::Disabled});
    }
    refresh(control, status);
}

void StatusValueDestroyed(const void* slot, const Observable* source, values::ValueBase* value)
{
    // The control is not named here. The slot is a member of it: the one that bound this value there,
    // or detached that slot last (a value bound by pointer); else any control that bound the value, each
    // of them forgetting it in turn.
    auto& all = controls();
    auto owner = all.end();
    auto bound = [&](ControlStatus& status, bool exact) {
        return std::find_if(status.bound.begin(), status.bound.end(), [&](const Bound& b) {
            return b.observable == source && (!exact || b.slot == slot);
        });
    };
    for (auto it = all.begin(); it != all.end() && owner == all.end(); ++it)
        if (bound(it->second, true) != it->second.bound.end() || it->second.pendingSlot == slot)
            owner = it;
    for (auto it = all.begin(); it != all.end() && owner == all.end(); ++it)
        if (bound(it->second, false) != it->second.bound.end())
            owner = it;
    if (owner == all.end())
        return;
    ControlStatus& status = owner->second;
    QString path = value ? value->GetPathName() : QString();
    auto match = bound(status, true);
    if (match == status.bound.end())
        match = bound(status, false);
    if (match != status.bound.end()) {
        if (path.isEmpty())
            path = match->path;
        status.bound.erase(match);
    }
    eraseIf(status.lines, [slot](const Line& line) { return line.slot == slot; });
    status.lines.push_back(Line{slot, path, Kind::Removed});
    refresh(const_cast<QWidget*>(owner->first), status);
}

} // namespace detail

} // namespace vandrel
