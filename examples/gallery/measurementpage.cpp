/*
 * The measurement page: the receiver's results as blocks of name, value and unit, its alarms as lamps,
 * labels that scale, offset and invalidate numbers, a short history of the stations the scan found, and
 * the acquisition's start and length.
 */
#include "gallerywindow.h"

#include <vandrel/vandrel.h>

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <iterator>
#include <utility>

QWidget* GalleryWindow::makeMeasurementPage()
{
    QVBoxLayout* layout = newPageLayout(tr("Results, lamps and labels follow the receiver as it scans. Tick \"Level invalid\" "
                                         "and the level shows \"- - -\", or its last number in gray; click the "
                                         "recording lamp to switch it."));
    QWidget* page = layout->parentWidget();

    // Result blocks: each is one branch of the tree, its name and unit translated once bound.
    // The blocks and the date-time edits have fixed widths: a smaller type lets their texts fit.
    QFont small = page->font();
    small.setPointSizeF(small.pointSizeF() * 0.75);
    auto* results = new QGroupBox(tr("Results"), page);
    auto* resultRow = new QHBoxLayout(results);
    const char* const branches[] = {"level", "fieldstrength", "offset", "bandwidth"};
    for (const char* branch : branches) {
        auto* block = new VCMeasurementWidget(results, VCMeasurementWidget::MeasurementWidgetType(0));
        block->setFont(small);
        const QString path = QStringLiteral("/receiver/results/") + QLatin1String(branch);
        bind([block, path] { block->SetValueTreePath(path); });
        resultRow->addWidget(block);
    }
    resultRow->addStretch(1);

    auto* lamps = new QGroupBox(tr("Alarms"), page);
    auto* lampRow = new QVBoxLayout(lamps);
    auto* status = new VCLED(lamps, "status", false);
    status->SetText(tr("Status"));
    auto* overload = new VCLED(lamps, "overload", false);
    overload->SetText(tr("Overload"));
    auto* carrier = new VCLED(lamps, "carrier", false);
    carrier->SetText(tr("Carrier"));
    auto* record = new VCLED(lamps, "record", true);
    record->SetText(tr("Recording (click the lamp)"));
    bind([status, overload, carrier, record] {
        status->SetColorIndex_ValuePath(QStringLiteral("/receiver/alarms/status"));
        overload->SetBool_ValuePath(QStringLiteral("/receiver/alarms/overload"));
        carrier->SetBool_ValuePath(QStringLiteral("/receiver/carrier"));
        record->SetBool_ValuePath(QStringLiteral("/receiver/alarms/record"));
    });
    for (QWidget* lamp : {static_cast<QWidget*>(status), static_cast<QWidget*>(overload), static_cast<QWidget*>(carrier),
                          static_cast<QWidget*>(record)})
        lampRow->addWidget(lamp, 0, Qt::AlignLeft);
    lampRow->addStretch(1);
    auto* top = new QHBoxLayout;
    top->addWidget(results, 1);
    top->addWidget(lamps);
    layout->addLayout(top);

    auto* labels = new QGroupBox(tr("Labels"), page);
    auto* labelGrid = new QGridLayout(labels);
    labelGrid->setHorizontalSpacing(12);
    auto makeLabel = [labels](const char* name, int decimals, double factor, const QString& suffix) {
        auto* label = new VCLabel(labels, name, 0);
        label->SetSuffix(suffix);
        label->SetFormat(3, decimals, factor);
        return label;
    };
    VCLabel* frequency = makeLabel("frequencyLabel", 3, 0.001, QStringLiteral("MHz"));
    VCLabel* level = makeLabel("levelLabel", 0, 1.0, QStringLiteral("dBm"));
    // The level above the squelch: the squelch is subtracted before the number is shown.
    VCLabel* margin = makeLabel("marginLabel", 0, 1.0, QStringLiteral("dB"));
    VCLabel* invalid = makeLabel("invalidLabel", 1, 1.0, QStringLiteral("dBm"));
    VCLabel* glowing = makeLabel("luminescentLabel", 1, 1.0, QStringLiteral("dBm"));
    glowing->SetLuminescence(true);
    // Luminescence starts gray; the label's own colours are those it returns to after an invalid number.
    glowing->SetColors(page->palette().color(QPalette::WindowText), page->palette().color(QPalette::Window));
    auto* invalidSwitch = new VCCheckBox(labels, "levelInvalidCheckBox");
    invalidSwitch->setText(tr("Level invalid"));
    bind([=] {
        frequency->SetText_ValuePath(QStringLiteral("/receiver/frequency"), true);
        level->SetText_ValuePath(QStringLiteral("/receiver/level"), true);
        margin->SetText_ValuePath(QStringLiteral("/receiver/level"), true);
        margin->SetNumericOffset_ValuePath(QStringLiteral("/receiver/squelch"), true);
        for (VCLabel* label : {invalid, glowing}) {
            label->SetText_ValuePath(QStringLiteral("/receiver/results/level/VALUE"), true);
            label->SetNoValue_ValuePath(QStringLiteral("/receiver/results/level/INVALID"));
        }
        invalidSwitch->Set_ValuePath(QStringLiteral("/receiver/results/level/INVALID"));
    });
    // Two columns of caption and label.
    const std::pair<QString, QWidget*> rows[] = {
        {tr("Frequency"), frequency},         {tr("Level"), level},
        {tr("Above squelch"), margin},        {QString(), invalidSwitch},
        {tr("Level, no value"), invalid},     {tr("Level, last value gray"), glowing},
    };
    for (int i = 0; i < int(std::size(rows)); ++i) {
        auto* caption = new QLabel(rows[i].first, labels);
        labelGrid->addWidget(caption, i / 2, (i % 2) * 2);
        labelGrid->addWidget(rows[i].second, i / 2, (i % 2) * 2 + 1);
    }
    labelGrid->setColumnStretch(1, 1);
    labelGrid->setColumnStretch(3, 1);
    layout->addWidget(labels);

    // The history: the newest station on the left; each new one moves the others one label to the right,
    // and a copy label repeats the newest in large type.
    auto* history = new QGroupBox(tr("Stations found by the scan"), page);
    auto* historyRow = new QHBoxLayout(history);
    auto* newest = new VCLabel(history, "foundLabel0", 0);
    newest->SetSuffix(QStringLiteral("kHz"));
    newest->SetFormat(5, 0, 1.0);
    VCLabel* previous = newest;
    historyRow->addWidget(newest);
    for (int i = 1; i < 4; ++i) {
        auto* older = new VCLabel(history, QStringLiteral("foundLabel%1").arg(i).toLatin1().constData(), 0);
        older->SetGray(true);
        previous->SetPreviousLabel(older);
        historyRow->addWidget(older);
        previous = older;
    }
    auto* copy = new VCLabel(history, "foundCopyLabel", 2);
    copy->SetHeight(32);
    QFont large = copy->font();
    large.setPointSize(large.pointSize() * 3 / 2);
    copy->setFont(large);
    newest->SetCopyLabel(copy);
    historyRow->addWidget(copy, 1);
    bind([newest] { newest->SetText_ValuePath(QStringLiteral("/receiver/scan/found"), true); });
    layout->addWidget(history);

    auto* acquisition = new QGroupBox(tr("Acquisition"), page);
    auto* acquisitionRow = new QHBoxLayout(acquisition);
    auto* start = new VCDateTimeEdit(acquisition, "acquisitionStart");
    start->SetDifferential(false);
    auto* length = new VCDateTimeEdit(acquisition, "acquisitionLength");
    // The mode first: a change of mode writes the edit's moment, which must reach no value.
    length->SetDifferential(true);
    length->setReadOnly(true);
    bind([start, length] {
        start->SetDateTime_ValuePath(QStringLiteral("/receiver/acquisition/start"));
        length->SetDateTime_ValuePath(QStringLiteral("/receiver/acquisition/length"));
    });
    // Their widths are fixed: the room of the arrows goes to the digits.
    for (VCDateTimeEdit* edit : {start, length}) {
        edit->setFont(small);
        edit->setButtonSymbols(QAbstractSpinBox::NoButtons);
    }
    acquisitionRow->addWidget(new QLabel(tr("Started"), acquisition));
    acquisitionRow->addWidget(start);
    acquisitionRow->addSpacing(16);
    acquisitionRow->addWidget(new QLabel(tr("Running for"), acquisition));
    acquisitionRow->addWidget(length);
    acquisitionRow->addStretch(1);
    layout->addWidget(acquisition);
    auto* line = new VCLine(page, "measurementLine");
    line->setFixedHeight(2);
    layout->addWidget(line);
    layout->addStretch(1);
    return page;
}
