/*
 * The menus: a menu bar of switches on how the level is viewed, a popup menu generated from the
 * display's markers, and a context menu on the level readout that picks its unit and range.
 */
#include "gallerywindow.h"

#include <vandrel/vandrel.h>

#include <QGridLayout>
#include <QGroupBox>
#include <QPushButton>
#include <QTimer>

namespace {

values::ValueSelection* selectionAt(const char* path)
{
    return dynamic_cast<values::ValueSelection*>(values::Tree::Instance()->Find(QString::fromLatin1(path)));
}

} // namespace

void GalleryWindow::makeMenuBar()
{
    // The place of an Edit menu (undo and redo) is in front of the switches, as in any window: it goes
    // in with bar->insertMenu(bar->actions().value(0), ...) at the end of this function. The bar binds
    // by place, so the switches are bound again at the places they have then.
    // Each entry switches a selection between its "On" and "Off" items; checkable, it shows which.
    auto* bar = new VCMenuBar(this, "viewSwitches");
    bar->InsertItem(tr("Hold"), 0, QStringLiteral("/receiver/view/hold"), QStringLiteral("On"), QStringLiteral("Off"));
    bar->InsertItem(tr("Averaging"), 1, QStringLiteral("/receiver/view/averaging"), QStringLiteral("On"),
                    QStringLiteral("Off"));
    const QStringList paths = {QStringLiteral("/receiver/view/hold"), QStringLiteral("/receiver/view/averaging")};
    for (int place = 0; place < bar->actions().size(); ++place) {
        QAction* entry = bar->actions().at(place);
        entry->setCheckable(true);
        entry->setToolTip(tr("Switches %1").arg(paths.value(place)));
    }
    // Made checkable after binding: the marks are taken again, and again after every restore.
    QAction* hold = bar->actions().at(0);
    QAction* averaging = bar->actions().at(1);
    bind([bar, hold, averaging] {
        bar->SetSelection_ValuePath(bar->actions().indexOf(hold), QStringLiteral("/receiver/view/hold"), QStringLiteral("On"),
                                    QStringLiteral("Off"));
        bar->SetSelection_ValuePath(bar->actions().indexOf(averaging), QStringLiteral("/receiver/view/averaging"),
                                    QStringLiteral("On"), QStringLiteral("Off"));
    });
    setMenuBar(bar);
}

QWidget* GalleryWindow::makeMenuGroup(QWidget* page)
{
    auto* box = new QGroupBox(tr("Menus"), page);
    QGridLayout* grid = newControlGrid(box);

    // The display's markers: a menu made from the multi-selection, one checkable entry per marker.
    auto* markersButton = new QPushButton(tr("Markers..."), box);
    markersButton->setObjectName(QStringLiteral("markersButton"));
    auto* markers = new VCPopupMenu(markersButton, "markers");
    bind([markers] { markers->SetValue1Selection_String_ValuePath(QStringLiteral("/receiver/view/markers")); });
    connect(markersButton, &QPushButton::clicked, markers,
            [markers, markersButton] { markers->popup(markersButton->mapToGlobal(markersButton->rect().bottomLeft())); });
    addControlRow(grid, tr("Markers"), markersButton, readout(QStringLiteral("/receiver/view/markers")));

    // The level in the unit that the readout's context menu picks, with the range it is viewed in.
    ValueReadout* level = readout(QStringLiteral("/receiver/level"), [](values::ValueBase& value) {
        auto* number = dynamic_cast<values::IValueNumeric*>(&value);
        if (!number)
            return value.GetValueString();
        values::ValueSelection* unit = selectionAt("/receiver/view/unit");
        values::ValueSelection* range = selectionAt("/receiver/view/range");
        const bool microvolts = unit && unit->GetCurrentKey() == 1;
        // 0 dBm across 50 ohms is 107 dB above a microvolt.
        const double shown = number->GetValue() + (microvolts ? 107.0 : 0.0);
        return tr("%1 %2 (%3)")
            .arg(QString::number(shown, 'f', 0).replace(QLatin1Char('-'), QChar(0x2212)))
            .arg(microvolts ? QStringLiteral("dB\u00b5V") : QStringLiteral("dBm"))
            .arg(range && range->GetCurrentItem() ? range->GetCurrentItem()->GetName() : QStringLiteral("-"));
    });
    level->setObjectName(QStringLiteral("levelReadout"));
    level->setToolTip(tr("Right-click for the unit and the range"));
    level->setContextMenuPolicy(Qt::CustomContextMenu);
    auto* viewMenu = new VCSelectionPopup(level, "levelView");
    bind([viewMenu] {
        viewMenu->SetFirstSelection_ValuePath(QStringLiteral("/receiver/view/unit"));
        viewMenu->SetSecondSelection_ValuePath(QStringLiteral("/receiver/view/range"));
    });
    viewMenu->AddAdditionalItem(tr("Reset view"), this, SLOT(resetView()));
    connect(level, &QWidget::customContextMenuRequested, viewMenu,
            [viewMenu, level](const QPoint& at) { viewMenu->popup(level->mapToGlobal(at)); });
    // A pick is written once the menu is done with it: the readout shows it then, also while paused.
    connect(viewMenu, &QMenu::triggered, level, [level] {
        QTimer::singleShot(0, level, [level] { level->bind(QStringLiteral("/receiver/level")); });
    });
    addControlRow(grid, tr("Level (right-click)"), level, readout(QStringLiteral("/receiver/view/unit")));
    return box;
}

void GalleryWindow::resetView()
{
    // One edit of the context menu that holds the command, so that the undo button takes it back.
    auto* menu = qobject_cast<VCSelectionPopup*>(findChild<VCSelectionPopup*>(QStringLiteral("levelView")));
    GuiUndoRecordingHelper recording(menu, QString());
    if (values::ValueSelection* unit = selectionAt("/receiver/view/unit"))
        unit->SelectIndex(0, nullptr);
    if (values::ValueSelection* range = selectionAt("/receiver/view/range"))
        range->SelectIndex(0, nullptr);
}
