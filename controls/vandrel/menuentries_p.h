#pragma once

// Not installed: what the menu controls share.

#include <QAction>
#include <QList>
#include <QMenu>
#include <QtGlobal>

namespace vandrel {

/**
 * Empties \a menu as QMenu::clear() does. While \a picking, Qt may still be inside the triggering of one
 * of the entries (a pick whose write made an observer rebuild the menu): the entries then leave the menu
 * at once, and those it owns are deleted on the next turn of the event loop instead of under Qt's feet.
 */
inline void ClearMenu(QMenu* menu, bool picking)
{
    if (!picking) {
        menu->clear();
        return;
    }
    const QList<QAction*> present = menu->actions();
    for (QAction* action : present) {
        menu->removeAction(action);
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
        const bool shownElsewhere = !action->associatedObjects().isEmpty();
#else
        const bool shownElsewhere = !action->associatedWidgets().isEmpty();
#endif
        if (action->parent() == menu && !shownElsewhere)
            action->deleteLater();
    }
}

} // namespace vandrel
