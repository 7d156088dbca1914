#include <plinthor/resortpopupmenu.h>

#include "naturalorder_p.h"

#include <QActionEvent>
#include <QMetaMethod>
#include <QShowEvent>

#include <algorithm>
#include <climits>

namespace {

// The index an entry was given by insertItem(); entries without one carry none.
const char* const kIndexProperty = "plinthor_resortIndex";

// The id findItem() knows an entry by: an integer data on an entry that is no separator.
bool idOf(const QAction* action, int& id)
{
    if (action->isSeparator())
        return false;
    bool ok = false;
    id = action->data().toInt(&ok);
    return ok;
}

int sortIndexOf(const QAction* action)
{
    bool ok = false;
    const int index = action->property(kIndexProperty).toInt(&ok);
    return ok && index >= 0 ? index : INT_MAX;
}

// The text as it reads on screen: "&&" is a literal ampersand, a single '&' marks the mnemonic.
QString withoutMnemonic(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) != QLatin1Char('&'))
            result += text.at(i);
        else if (i + 1 < text.size() && text.at(i + 1) == QLatin1Char('&'))
            result += text.at(++i);
    }
    return result;
}

} // namespace

ResortPopupMenu::ResortPopupMenu()
    : QMenu(nullptr)
{
    init();
}

ResortPopupMenu::ResortPopupMenu(QWidget* parent, const char* name)
    : QMenu(parent)
{
    if (name)
        setObjectName(QString::fromUtf8(name));
    init();
}

ResortPopupMenu::~ResortPopupMenu() = default;

void ResortPopupMenu::init()
{
    connect(this, SIGNAL(triggered(QAction*)), this, SLOT(slotSignalRouter(QAction*)));
}

QAction* ResortPopupMenu::insertItem(QString text, int id, int index)
{
    auto* action = new QAction(text, this);
    action->setData(id);
    action->setProperty(kIndexProperty, index);
    const QList<QAction*> present = actions();
    if (index >= 0 && index < present.size())
        insertAction(present.at(index), action);
    else
        addAction(action);
    return action;
}

QAction* ResortPopupMenu::insertItem(QString text, const QObject* receiver, const char* member,
                                     const QKeySequence& accelerator, int id, int index)
{
    QAction* action = insertItem(text, id, index);
    if (!accelerator.isEmpty())
        action->setShortcut(accelerator);
    if (receiver && member && *member) {
        // The receiver is only ever called, never changed through the menu; QPointer needs it mutable.
        m_routes.insert(action, Route{QPointer<QObject>(const_cast<QObject*>(receiver)), QByteArray(member)});
    }
    return action;
}

QAction* ResortPopupMenu::findItem(int id)
{
    if (m_bIdIndexStale) {
        m_idIndex.clear();
        m_idOf.clear();
        const QList<QAction*> present = actions();
        for (QAction* action : present) {
            int actionId = 0;
            if (!idOf(action, actionId))
                continue;
            m_idOf.insert(action, actionId);
            if (!m_idIndex.contains(actionId))
                m_idIndex.insert(actionId, action);
        }
        m_bIdIndexStale = false;
    }
    return m_idIndex.value(id, nullptr);
}

void ResortPopupMenu::setItemChecked(int id, bool checked)
{
    if (QAction* action = findItem(id)) {
        action->setCheckable(true);
        action->setChecked(checked);
    }
}

void ResortPopupMenu::RemoveAllEntries()
{
    clear();
}

void ResortPopupMenu::EnableAllEntries(bool enable)
{
    const QList<QAction*> present = actions();
    for (QAction* action : present)
        action->setEnabled(enable);
}

void ResortPopupMenu::EnableEntry(QString text, bool enable)
{
    const QList<QAction*> present = actions();
    for (QAction* action : present) {
        if (!action->isSeparator() && action->text() == text)
            action->setEnabled(enable);
    }
}

void ResortPopupMenu::setSortMode(SortMode mode)
{
    m_eSortMode = mode;
}

void ResortPopupMenu::Resort()
{
    if (m_eSortMode == NoSorting)
        return;
    const QList<QAction*> present = actions();
    QList<QAction*> ordered;
    ordered.reserve(present.size());

    auto sortSection = [&](QList<QAction*>::const_iterator begin, QList<QAction*>::const_iterator end) {
        QList<QAction*> section(begin, end);
        if (m_eSortMode == SortByIndex) {
            std::stable_sort(section.begin(), section.end(),
                             [](const QAction* a, const QAction* b) { return sortIndexOf(a) < sortIndexOf(b); });
        } else {
            std::stable_sort(section.begin(), section.end(), [](const QAction* a, const QAction* b) {
                return plinthor::naturalCompare(withoutMnemonic(a->text()), withoutMnemonic(b->text())) < 0;
            });
        }
        ordered += section;
    };

    auto sectionStart = present.constBegin();
    for (auto it = present.constBegin(); it != present.constEnd(); ++it) {
        if ((*it)->isSeparator()) {
            sortSection(sectionStart, it);
            ordered += *it;
            sectionStart = it + 1;
        }
    }
    sortSection(sectionStart, present.constEnd());

    if (ordered == present)
        return;
    // Moving an action takes it out of the menu and puts it back; its route must survive that.
    const QHash<QAction*, Route> routes = m_routes;
    for (QAction* action : qAsConst(ordered)) {
        removeAction(action);
        addAction(action);
    }
    m_routes = routes;
}

void ResortPopupMenu::showEvent(QShowEvent* event)
{
    Resort();
    QMenu::showEvent(event);
}

void ResortPopupMenu::actionEvent(QActionEvent* event)
{
    QMenu::actionEvent(event);
    if (event->type() == QEvent::ActionRemoved)
        m_routes.remove(event->action());
    noteActionChange(event);
}

void ResortPopupMenu::noteActionChange(QActionEvent* event)
{
    if (m_bIdIndexStale)
        return;
    if (event->type() != QEvent::ActionChanged) {
        m_bIdIndexStale = true;
        return;
    }
    // Most changes are check marks, texts and enabled flags, which leave the index as it is.
    int id = 0;
    const bool hasId = idOf(event->action(), id);
    const auto known = m_idOf.constFind(event->action());
    if (hasId != (known != m_idOf.constEnd()) || (hasId && known.value() != id))
        m_bIdIndexStale = true;
}

void ResortPopupMenu::slotSignalRouter(QAction* action)
{
    if (!action)
        return;
    const auto found = m_routes.constFind(action);
    if (found == m_routes.constEnd())
        return;
    // Copied: the receiver may rebuild this menu, which deletes the action and its route.
    const Route route = found.value();
    QObject* receiver = route.receiver.data();
    if (!receiver)
        return;

    const char* member = route.member.constData();
    if (*member >= '0' && *member <= '2') // the code that SLOT() and SIGNAL() put in front
        ++member;
    const QByteArray signature = QMetaObject::normalizedSignature(member);
    const QMetaObject* meta = receiver->metaObject();
    const int methodIndex = meta->indexOfMethod(signature.constData());
    if (methodIndex < 0)
        return;
    const QMetaMethod method = meta->method(methodIndex);

    bool ok = false;
    const int id = action->data().toInt(&ok);
    if (method.parameterCount() == 0) {
        method.invoke(receiver, Qt::DirectConnection);
    } else if (method.parameterCount() == 1) {
        const int type = method.parameterType(0);
        if (type == QMetaType::Int)
            method.invoke(receiver, Qt::DirectConnection, Q_ARG(int, id));
        else if (type == QMetaType::Long)
            method.invoke(receiver, Qt::DirectConnection, Q_ARG(long, id));
        else if (type == QMetaType::UInt)
            method.invoke(receiver, Qt::DirectConnection, Q_ARG(unsigned int, static_cast<unsigned int>(id)));
    }
}
