/*
 * The page of the station: two coordinate fields on the receiving site and a reference transmitter,
 * which share the application's position format, the receiver's filter stepped through its list, and
 * the reception to watch while stepping it.
 */
#include "gallerywindow.h"

#include <plinthor/plinthorapp.h>
#include <vandrel/vandrel.h>

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

QWidget* GalleryWindow::makePositionPage()
{
    QVBoxLayout* layout = newPageLayout(tr("Positions are typed in the format shown and taken with Return. Right-click a position "
                                         "for another format: both fields show it, since they share the application's "
                                         "position format."));
    QWidget* page = layout->parentWidget();

    auto* station = new QGroupBox(tr("Station position"), page);
    auto* stationGrid = newControlGrid(station);
    struct Position
    {
        QString caption;
        const char* name;
        QString branch;
        QString toolTip;
    };
    const Position positions[] = {
        {tr("Receiving site"), "siteCoordEdit", QStringLiteral("/receiver/site"), tr("Where the receiver stands")},
        {tr("Reference transmitter"), "transmitterCoordEdit", QStringLiteral("/receiver/transmitter"),
         tr("A transmitter of known position, for bearings and propagation")},
    };
    for (const Position& p : positions) {
        auto* edit = new VCCoordEdit(station, p.name);
        edit->setToolTip(p.toolTip);
        const QString branch = p.branch;
        bind([edit, branch] {
            edit->SetLatitude_ValuePath(branch + QStringLiteral("/latitude"));
            edit->SetLongitude_ValuePath(branch + QStringLiteral("/longitude"));
        });
        addControlRow(stationGrid, p.caption, edit, nullptr);
    }
    // The format is no value of the receiver: it belongs to the application, and every coordinate
    // field follows it unless told otherwise.
    ValueReadout* format = readout(Plinthor::PositionFormatPath());
    format->setToolTip(tr("The application's position format, %1").arg(Plinthor::PositionFormatPath()));
    addControlRow(stationGrid, tr("Format"), format, nullptr);
    layout->addWidget(station);

    auto* filter = new QGroupBox(tr("Bandwidth"), page);
    auto* filterGrid = newControlGrid(filter);
    auto* bandwidth = new VCSpinSelectionBox(filter, "bandwidthSpinBox");
    bandwidth->setToolTip(tr("The receiver's filter: the arrows, the keys Up and Down and the wheel step through "
                             "the filters; or type a width such as 6k or 2400 (Hz) and press Return. A new mode "
                             "brings its own."));
    // The item numbers are in kHz. The box is made read-only; typing a width such as "6k" or "2400"
    // (hertz) and Return selects that filter, so the gallery opens its field for typing.
    bandwidth->setOrderOfMagnitudeVSValues(L'k');
    if (auto* field = bandwidth->findChild<QLineEdit*>())
        field->setReadOnly(false);
    bandwidth->setMinimumWidth(bandwidth->fontMetrics().horizontalAdvance(QStringLiteral("15.0 kHz")) + 48);
    bandwidth->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    bind([bandwidth] { bandwidth->SetValueSelection_ValuePath(QStringLiteral("/receiver/bandwidth")); });
    addControlRow(filterGrid, tr("Filter"), bandwidth, readout(QStringLiteral("/receiver/bandwidth")));
    // Aligned, the narrow box leaves its cell's width to the layout instead of pushing the column.
    filterGrid->itemAtPosition(filterGrid->rowCount() - 1, 1)->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    addControlRow(filterGrid, tr("Mode"), readout(QStringLiteral("/receiver/mode")), nullptr);
    // How far off-tune a station still comes through: watch the level while stepping.
    layout->addWidget(filter);

    // What the filter does, to watch while stepping it: tune a little off a station and the level
    // falls, the carrier closes; a wider filter brings it back.
    auto* reception = new QGroupBox(tr("Reception"), page);
    auto* receptionGrid = newControlGrid(reception);
    auto* tuning = new VCScrollBar(reception, "stationTuningScrollBar");
    tuning->setOrientation(Qt::Horizontal);
    tuning->setPageStep(10);
    tuning->setToolTip(tr("Tuning in kHz: step off a station and back"));
    auto* meter = new VCSlider(reception, "stationLevelSlider");
    meter->setOrientation(Qt::Horizontal);
    meter->setTickPosition(QSlider::TicksBelow);
    meter->setTickInterval(10);
    meter->setToolTip(tr("The signal level the instrument measures"));
    auto* carrier = new VCLED(reception, "stationCarrierLed", false);
    carrier->SetText(tr("open"));
    bind([tuning, meter, carrier] {
        tuning->Set_ValuePath(QStringLiteral("/receiver/frequency"));
        meter->SetNumeric_ValuePath(QStringLiteral("/receiver/level"));
        carrier->SetBool_ValuePath(QStringLiteral("/receiver/carrier"));
    });
    addControlRow(receptionGrid, tr("Frequency"), tuning,
                  readout(QStringLiteral("/receiver/frequency"), numberIn(QStringLiteral("MHz"), 3, 0.001)));
    addControlRow(receptionGrid, tr("Signal"), meter, readout(QStringLiteral("/receiver/level"), numberIn(QStringLiteral("dBm"))));
    addControlRow(receptionGrid, tr("Carrier"), carrier, readout(QStringLiteral("/receiver/carrier")));
    layout->addWidget(reception);
    layout->addStretch(1);
    // One column of controls through both boxes: the filter's captions as wide as the longest here.
    int captions = 0;
    for (const Position& p : positions)
        captions = qMax(captions, page->fontMetrics().horizontalAdvance(p.caption));
    filterGrid->setColumnMinimumWidth(0, captions);
    receptionGrid->setColumnMinimumWidth(0, captions);
    return page;
}
