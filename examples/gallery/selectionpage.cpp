/*
 * The selection page: the receiver's mode and filter in drop-down lists (the filter applied only on
 * demand), tool-button menus over two selections with a reset entry, over the options with their check
 * marks, and a two-way toggle, and the band monitor's few hundred channels as a list of check boxes
 * that the receiver keeps flipping.
 */
#include "gallerywindow.h"
#include "instrument.h"

#include <vandrel/vandrel.h>

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

QWidget* GalleryWindow::makeSelectionPage()
{
    QVBoxLayout* layout = newPageLayout(
        tr("Pick a mode and the receiver switches its filter. A filter picked in the second list waits for "
           "\"Apply\". The tool buttons open menus: the first holds the filter and the AGC, with \"Reset\" "
           "at the end, the second the options with their check marks; the third flips the AGC at each "
           "press. The channel list is the band monitor's: it marks the channels it hears as it passes. The "
           "menu bar's Hold and Averaging switch the view, \"Markers...\" opens a menu made from the display's "
           "markers, and a right-click on the level picks its unit and range."));
    QWidget* page = layout->parentWidget();
    auto* columns = new QHBoxLayout;
    layout->addLayout(columns, 1);
    auto* left = new QVBoxLayout;
    columns->addLayout(left, 1);

    auto* lists = new QGroupBox(tr("Drop-down lists"), page);
    QGridLayout* listGrid = newControlGrid(lists);
    auto* mode = new VCComboBoxClassic(lists, "mode");
    mode->EnableItemToolTip(true);
    // The filter list writes only on "Apply"; until then it shows the pick and the receiver keeps its filter.
    auto* filter = new VCComboBoxClassic(lists, "bandwidth");
    filter->SetAutoCommit(false);
    // The list keeps room for its widest entry, which it announces whenever its items change.
    QObject::connect(filter, &VCComboBoxClassic::MaximumContentLengthChanged, filter,
                     [filter](uint width) { filter->setMinimumWidth(int(width) + 40); });
    bind([mode, filter] {
        mode->SetValueSelection_ValuePath(QStringLiteral("/receiver/mode"));
        filter->SetValueSelection_ValuePath(QStringLiteral("/receiver/bandwidth"));
    });
    auto* apply = new QPushButton(tr("Apply"), lists);
    apply->setObjectName(QStringLiteral("applyBandwidth"));
    apply->setEnabled(false);
    QObject::connect(filter, QOverload<int>::of(&QComboBox::activated), apply, [apply] { apply->setEnabled(true); });
    QObject::connect(apply, &QPushButton::clicked, filter, [filter, apply] {
        filter->Commit();
        filter->SetDirty(false);
        apply->setEnabled(false);
    });
    auto* filterRow = new QWidget(lists);
    auto* filterLayout = new QHBoxLayout(filterRow);
    filterLayout->setContentsMargins(0, 0, 0, 0);
    filterLayout->addWidget(filter, 1);
    filterLayout->addWidget(apply);
    addControlRow(listGrid, tr("Mode"), mode, readout(QStringLiteral("/receiver/mode")));
    addControlRow(listGrid, tr("Filter"), filterRow, readout(QStringLiteral("/receiver/bandwidth")));
    left->addWidget(lists);

    auto* buttons = new QGroupBox(tr("Menu buttons"), page);
    QGridLayout* buttonGrid = newControlGrid(buttons);
    // The reset entry stays usable while the filter and the AGC are disabled.
    auto* filterAgc = new VCComboBoxButtonStyle(buttons, "filterAgc", true, false);
    filterAgc->AddMenuEntry(tr("Reset"), this, SLOT(resetReception()));
    auto* options = new VCComboBoxButtonStyle(buttons, "options", false, false);
    auto* agcToggle = new VCComboBoxButtonStyle(buttons, "agcToggle", false, true);
    for (VCComboBoxButtonStyle* button : {filterAgc, options, agcToggle})
        button->setMinimumWidth(150);
    bind([filterAgc, options, agcToggle] {
        filterAgc->SetValueSelection_ValuePath(QStringLiteral("/receiver/bandwidth"));
        filterAgc->SetSecondSelection_ValuePath(QStringLiteral("/receiver/agc"));
        options->SetValueSelection_ValuePath(QStringLiteral("/receiver/options"));
        agcToggle->SetValueSelection_ValuePath(QStringLiteral("/receiver/agc"));
    });
    addControlRow(buttonGrid, tr("Filter and AGC"), filterAgc, readout(QStringLiteral("/receiver/agc")));
    addControlRow(buttonGrid, tr("Options"), options, readout(QStringLiteral("/receiver/options")));
    addControlRow(buttonGrid, tr("AGC (press flips)"), agcToggle, readout(QStringLiteral("/receiver/agc")));
    left->addWidget(buttons);
    left->addWidget(makeMenuGroup(page));
    left->addStretch(1);

    auto* monitor = new QGroupBox(tr("Band monitor"), page);
    auto* monitorLayout = new QVBoxLayout(monitor);
    auto* channels = new VCMultipleCheck(monitor, "channels");
    bind([channels] { channels->SetCheckedStringVector_ValuePath(QStringLiteral("/receiver/channels")); });
    ValueReadout* heard = readout(QStringLiteral("/receiver/channels"), [](values::ValueBase& value) {
        auto* set = dynamic_cast<values::MultiSelectionValueBase*>(&value);
        const int count = set ? int(set->GetCheckedKeys().size()) : 0;
        return GalleryWindow::tr("%1 of %2 channels heard").arg(count).arg(set ? set->GetKeyCount() : 0);
    });
    monitorLayout->addWidget(channels, 1);
    monitorLayout->addWidget(heard);
    columns->addWidget(monitor, 1);
    return page;
}

void GalleryWindow::resetReception()
{
    // The filter of the present mode, and the slow AGC: where a receiver starts.
    auto* tree = values::Tree::Instance();
    auto* mode = dynamic_cast<values::ValueSelection*>(tree->Find(QStringLiteral("/receiver/mode")));
    auto* bandwidth = dynamic_cast<values::ValueSelection*>(tree->Find(QStringLiteral("/receiver/bandwidth")));
    auto* agc = dynamic_cast<values::ValueSelection*>(tree->Find(QStringLiteral("/receiver/agc")));
    // One edit of the menu button that holds the entry, so that the undo button takes the reset back.
    auto* button = qobject_cast<VCComboBoxButtonStyle*>(sender() ? sender()->parent() : nullptr);
    GuiUndoRecordingHelper recording(button, QString());
    if (bandwidth && mode && mode->GetCurrentKey() >= 0)
        bandwidth->SelectKey(Instrument::bandwidthKeyOfMode(mode->GetCurrentKey()), nullptr);
    if (agc)
        agc->SelectKey(0, nullptr);
}
