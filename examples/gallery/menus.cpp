/*
 * The menus: a menu bar of switches on how the level is viewed, a popup menu generated from the
 * display's markers, and a context menu on the level readout that picks its unit and range.
 */
#include "gallerywindow.h"
#include "instrument.h"

#include <vandrel/vandrel.h>
#include <values/undo.h>

#include <QApplication>
#include <QFontMetrics>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeySequence>
#include <QMenu>
#include <QPushButton>
#include <QTimer>

#include <list>
#include <utility>

namespace {

values::ValueSelection* selectionAt(const char* path)
{
    return dynamic_cast<values::ValueSelection*>(values::Tree::Instance()->Find(QString::fromLatin1(path)));
}

// Calls back whenever the undo history changes.
class HistoryListener : public values::IUndoRecordingsListener
{
public:
    explicit HistoryListener(std::function<void()> changed)
        : m_changed(std::move(changed))
    {
    }
    void NotifyUndoRecordingsChanged() override { m_changed(); }

private:
    std::function<void()> m_changed;
};

// A description fit for a menu entry: recordings of long texts describe them whole.
QString entryText(const QString& description)
{
    QString line = description;
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return QFontMetrics(QApplication::font()).elidedText(line, Qt::ElideMiddle, 420).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

const int kListedEdits = 10;

} // namespace

void GalleryWindow::makeEditMenu(QMenuBar* bar)
{
    if (!m_pHistory) {
        m_pHistory = std::make_unique<values::UndoRecordingsToValueClient>(Instrument::root());
        m_pHistoryListener = std::make_unique<HistoryListener>([this] { followHistory(); });
        m_pHistory->AddUndoRecordingsListener(m_pHistoryListener.get());
    }
    auto* edit = new QMenu(tr("&Edit"), bar);
    edit->setObjectName(QStringLiteral("editMenu"));
    m_pUndo = edit->addAction(QIcon::fromTheme(QStringLiteral("edit-undo")), tr("Undo"));
    m_pUndo->setObjectName(QStringLiteral("undoAction"));
    m_pUndo->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    connect(m_pUndo, &QAction::triggered, this, [this] { m_pHistory->ExecuteUndo(1); });
    m_pRedo = edit->addAction(QIcon::fromTheme(QStringLiteral("edit-redo")), tr("Redo"));
    m_pRedo->setObjectName(QStringLiteral("redoAction"));
    m_pRedo->setShortcuts({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    connect(m_pRedo, &QAction::triggered, this, [this] { m_pHistory->ExecuteRedo(1); });
    // Window-wide, so that Ctrl+Z reaches the history from any control, the menu closed.
    addAction(m_pUndo);
    addAction(m_pRedo);
    edit->addSeparator();
    QMenu* undoList = edit->addMenu(tr("Undo back to"));
    undoList->setObjectName(QStringLiteral("undoList"));
    QMenu* redoList = edit->addMenu(tr("Redo up to"));
    redoList->setObjectName(QStringLiteral("redoList"));
    // The lists are made as they open: entry n takes back (or does again) the n newest edits.
    const auto fill = [this](QMenu* list, bool redo) {
        list->clear();
        const std::list<QString> descriptions =
            redo ? m_pHistory->GetRedoRecordingDescriptions() : m_pHistory->GetUndoRecordingDescriptions();
        unsigned int n = 0;
        for (const QString& description : descriptions) {
            if (++n > unsigned(kListedEdits))
                break;
            QAction* entry = list->addAction(QStringLiteral("%1  %2").arg(n).arg(entryText(description)));
            connect(entry, &QAction::triggered, this, [this, n, redo] {
                if (redo)
                    m_pHistory->ExecuteRedo(n);
                else
                    m_pHistory->ExecuteUndo(n);
            });
        }
        if (n == 0)
            list->addAction(redo ? tr("Nothing to redo") : tr("Nothing to undo"))->setEnabled(false);
    };
    connect(undoList, &QMenu::aboutToShow, this, [fill, undoList] { fill(undoList, false); });
    connect(redoList, &QMenu::aboutToShow, this, [fill, redoList] { fill(redoList, true); });
    bar->addMenu(edit);
    followHistory();
}

void GalleryWindow::followHistory()
{
    if (!m_pUndo || !m_pRedo || !m_pHistory)
        return;
    const std::list<QString> undo = m_pHistory->GetUndoRecordingDescriptions();
    const std::list<QString> redo = m_pHistory->GetRedoRecordingDescriptions();
    m_pUndo->setEnabled(!undo.empty());
    m_pUndo->setText(undo.empty() ? tr("Undo") : tr("Undo %1").arg(entryText(undo.front())));
    m_pRedo->setEnabled(!redo.empty());
    m_pRedo->setText(redo.empty() ? tr("Redo") : tr("Redo %1").arg(entryText(redo.front())));
}

void GalleryWindow::makeMenuBar()
{
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
    // The Edit menu follows the switches: the bar's entries are known by their places, which a menu
    // put in front would move.
    makeEditMenu(bar);
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
