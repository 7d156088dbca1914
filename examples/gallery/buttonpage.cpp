/*
 * The page of the controls that a click switches or cycles: check boxes on booleans, on a selection and
 * on the items of a multi-selection, item buttons with a picture per item, auto-repeat step buttons, and
 * the undo button that takes back the edits of all of them.
 */
#include "gallerywindow.h"

#include "instrument.h"

#include <vandrel/vandrel.h>

#include <QCoreApplication>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QVBoxLayout>

#include <cmath>
#include <functional>

namespace {

constexpr int kPictureSize = 16;
const QColor kInk(0x2b, 0x34, 0x3d);
const QColor kSignal(0x1f, 0x8a, 0x70);

/// A transparent square picture drawn by \a draw with an antialiased painter.
QPixmap picture(const std::function<void(QPainter&)>& draw)
{
    QPixmap pixmap(kPictureSize, kPictureSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    draw(painter);
    return pixmap;
}

/// The spectrum of each mode as a receiver's panorama shows it, by the keys of /receiver/mode.
QPixmap modePicture(long key)
{
    return picture([key](QPainter& p) {
        const qreal base = 14.5;
        p.setPen(QPen(kInk, 1));
        if (key != 1 && key != 4)
            p.drawLine(QPointF(0.5, base), QPointF(15.5, base));
        p.setPen(Qt::NoPen);
        p.setBrush(kSignal);
        auto polygon = [&p](std::initializer_list<QPointF> points) { p.drawPolygon(QPolygonF(points)); };
        switch (key) {
        case 0: // AM: a carrier between two sidebands
            polygon({{1.5, base}, {2.5, 8.0}, {7.0, 8.0}, {7.0, base}});
            polygon({{9.0, base}, {9.0, 8.0}, {13.5, 8.0}, {14.5, base}});
            p.setPen(QPen(kInk, 1.5));
            p.drawLine(QPointF(8.0, base), QPointF(8.0, 2.0));
            break;
        case 1: { // FM: a swinging wave
            QPainterPath wave;
            wave.moveTo(0.5, 8.0);
            for (qreal x = 0.5; x <= 15.5; x += 0.5)
                wave.lineTo(x, 8.0 - 5.0 * std::sin((x - 0.5) * (0.5 + x / 24.0)));
            p.setBrush(Qt::NoBrush);
            p.setPen(QPen(kSignal, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            p.drawPath(wave);
            break;
        }
        case 2: // USB: the upper sideband only
            polygon({{6.0, base}, {6.0, 3.0}, {14.5, base}});
            break;
        case 3: // LSB: the lower sideband only
            polygon({{10.0, base}, {10.0, 3.0}, {1.5, base}});
            break;
        case 4: // CW: dit dah
            p.drawEllipse(QPointF(3.5, 8.0), 2.2, 2.2);
            p.drawRoundedRect(QRectF(7.5, 6.0, 7.5, 4.0), 1.5, 1.5);
            break;
        default:
            break;
        }
    });
}

/// The fall of the gain control after a burst: a long tail when slow, a quick drop when fast.
QPixmap agcPicture(bool fast)
{
    return picture([fast](QPainter& p) {
        p.setPen(QPen(kInk, 1));
        p.drawLine(QPointF(0.5, 14.5), QPointF(15.5, 14.5));
        QPainterPath curve;
        curve.moveTo(1.0, 2.5);
        const qreal tau = fast ? 1.6 : 6.0;
        for (qreal x = 1.0; x <= 15.0; x += 0.5)
            curve.lineTo(x, 13.0 - 10.5 * std::exp(-(x - 1.0) / tau));
        p.setPen(QPen(kSignal, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawPath(curve);
    });
}

enum class Glyph { Minus, Plus, Left, Right };

QPixmap stepPicture(Glyph glyph)
{
    return picture([glyph](QPainter& p) {
        p.setPen(QPen(kInk, 2.0, Qt::SolidLine, Qt::RoundCap));
        p.setBrush(kInk);
        switch (glyph) {
        case Glyph::Plus:
            p.drawLine(QPointF(8.0, 3.5), QPointF(8.0, 12.5));
            Q_FALLTHROUGH();
        case Glyph::Minus:
            p.drawLine(QPointF(3.5, 8.0), QPointF(12.5, 8.0));
            break;
        case Glyph::Left:
            p.setPen(Qt::NoPen);
            p.drawPolygon(QPolygonF({QPointF(4.0, 8.0), QPointF(11.5, 3.0), QPointF(11.5, 13.0)}));
            break;
        case Glyph::Right:
            p.setPen(Qt::NoPen);
            p.drawPolygon(QPolygonF({QPointF(12.0, 8.0), QPointF(4.5, 3.0), QPointF(4.5, 13.0)}));
            break;
        }
    });
}

/// A scale with \a ticks marks: many close ticks read as a fine step, few as a coarse one.
QPixmap stepSizePicture(int ticks)
{
    return picture([ticks](QPainter& p) {
        p.setPen(QPen(kInk, 1));
        p.drawLine(QPointF(0.5, 12.5), QPointF(15.5, 12.5));
        p.setPen(QPen(kSignal, 1.4, Qt::SolidLine, Qt::FlatCap));
        for (int i = 0; i < ticks; ++i) {
            const qreal x = 1.5 + 13.0 * i / qMax(1, ticks - 1);
            p.drawLine(QPointF(x, 12.0), QPointF(x, i % (ticks > 4 ? 4 : 1) == 0 ? 3.0 : 8.0));
        }
    });
}

/// Adds \a delta to the number at \a path as an edit of \a button, so that the undo button takes it back.
void stepNumber(VCButton* button, const QString& path, double delta)
{
    auto* number = dynamic_cast<values::IValueNumeric*>(values::Tree::Instance()->Find(path));
    if (!number)
        return;
    // At an end of the range a step changes nothing, and must not leave an empty edit to undo.
    const double target = qBound(number->GetMinimum(), number->GetValue() + delta, number->GetMaximum());
    if (target == number->GetValue())
        return;
    GuiUndoRecordingHelper span(button, QString());
    number->SetValue(target, nullptr);
}

/**
 * The newest undo recordings of a branch, newest first, so that the user sees what the undo button
 * will take back next.
 */
class UndoHistory : public QLabel, public values::IUndoRecordingsListener
{
public:
    UndoHistory(const QString& basePath, int lines, QWidget* parent)
        : QLabel(parent)
        , m_client(basePath)
        , m_nLines(lines)
    {
        setTextFormat(Qt::PlainText);
        setAlignment(Qt::AlignLeft | Qt::AlignTop);
        setWordWrap(true);
        m_client.AddUndoRecordingsListener(this);
        NotifyUndoRecordingsChanged();
    }

    ~UndoHistory() override { m_client.RemoveUndoRecordingsListener(this); }

    void NotifyUndoRecordingsChanged() override
    {
        QStringList shown;
        int count = 0;
        for (const QString& description : m_client.GetUndoRecordingDescriptions()) {
            if (count++ < m_nLines)
                shown << description;
        }
        if (count > m_nLines)
            shown << GalleryWindow::tr("… and %n older", nullptr, count - m_nLines);
        setText(shown.isEmpty() ? GalleryWindow::tr("Nothing to undo yet.") : shown.join(QLatin1Char('\n')));
    }

private:
    values::UndoRecordingsToValueClient m_client;
    int m_nLines;
};

/// A row of controls with no margins, as one cell of a grid.
QWidget* row(std::initializer_list<QWidget*> widgets, QWidget* parent)
{
    auto* box = new QWidget(parent);
    auto* layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    for (QWidget* widget : widgets) {
        widget->setParent(box);
        layout->addWidget(widget);
    }
    layout->addStretch(1);
    return box;
}

} // namespace

QWidget* GalleryWindow::makeButtonPage()
{
    QVBoxLayout* layout = newPageLayout(tr("A click switches or cycles a value. Every click here is an edit that the undo "
                                         "button takes back, newest first; the list under it shows what comes next."));
    QWidget* page = layout->parentWidget();

    // Check boxes: booleans, a selection read as "is it Fast", and one box per item of the options.
    auto* switches = new QGroupBox(tr("Check boxes"), page);
    auto* switchGrid = newControlGrid(switches);

    auto* attenuator = new VCCheckBox(switches, "attenuatorCheckBox");
    attenuator->SetText(tr("−20 dB"));
    attenuator->setToolTip(tr("Takes 20 dB off the antenna signal"));
    bind([attenuator] { attenuator->Set_ValuePath(QStringLiteral("/receiver/attenuator")); });
    addControlRow(switchGrid, tr("Attenuator"), attenuator, readout(QStringLiteral("/receiver/attenuator")));

    auto* scan = new VCCheckBox(switches, "scanActiveCheckBox");
    scan->SetText(tr("Running"));
    scan->setToolTip(tr("Let the receiver scan its band; turning the dial stops it"));
    bind([scan] { scan->Set_ValuePath(QStringLiteral("/receiver/scan/active")); });
    addControlRow(switchGrid, tr("Scan"), scan, readout(QStringLiteral("/receiver/scan/active")));

    auto* agcFast = new VCCheckBox(switches, "agcFastCheckBox");
    agcFast->SetText(tr("Fast"));
    agcFast->setToolTip(tr("Checked while the AGC selection stands on Fast; follows the AGC button"));
    bind([agcFast] { agcFast->Set_ValuePath(QStringLiteral("/receiver/agc")); });
    addControlRow(switchGrid, tr("AGC"), agcFast, readout(QStringLiteral("/receiver/agc")));

    struct Option
    {
        int key;
        const char* name;
        QString text;
    };
    const Option options[] = {
        {1, "noiseBlankerCheckBox", tr("Noise blanker")},
        {2, "notchCheckBox", tr("Notch")},
        {3, "preampCheckBox", tr("Preamp")},
    };
    auto* optionBoxes = new QWidget(switches);
    auto* optionLayout = new QVBoxLayout(optionBoxes);
    optionLayout->setContentsMargins(0, 0, 0, 0);
    optionLayout->setSpacing(4);
    for (const Option& option : options) {
        auto* box = new VCCheckBox(optionBoxes, option.name);
        box->SetText(option.text);
        box->setToolTip(tr("One item of the options"));
        const int key = option.key;
        bind([box, key] { box->SetMultiSelection_ValuePath(QStringLiteral("/receiver/options"), key); });
        optionLayout->addWidget(box);
    }
    ValueReadout* optionsReadout = readout(QStringLiteral("/receiver/options"));
    addControlRow(switchGrid, tr("Options"), optionBoxes, optionsReadout);
    // The options take three lines; their caption and readout stand by the first.
    const int optionsRow = switchGrid->rowCount() - 1;
    switchGrid->itemAtPosition(optionsRow, 0)->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    switchGrid->itemAtPosition(optionsRow, 2)->setAlignment(Qt::AlignRight | Qt::AlignTop);
    switchGrid->setRowStretch(switchGrid->rowCount(), 1);

    // Item buttons: one click, the next item, its picture.
    auto* buttons = new QGroupBox(tr("Buttons"), page);
    auto* buttonGrid = newControlGrid(buttons);

    auto* mode = new VCButton(buttons, QStringLiteral("modeButton"));
    mode->setToolTip(tr("Click for the next mode; the mode brings its filter"));
    mode->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    mode->setFixedSize(68, 26);
    mode->setIconSize(QSize(kPictureSize, kPictureSize));
    for (long key = 0; key < 5; ++key)
        mode->SetSpecialPicture(int(key), modePicture(key), false);
    bind([mode] { mode->SetValueSelection_ValuePath(QStringLiteral("/receiver/mode")); });
    addControlRow(buttonGrid, tr("Mode"), mode, readout(QStringLiteral("/receiver/mode")));

    // Two items, and Fast holds the button down: a toggle.
    auto* agc = new VCButton(buttons, QStringLiteral("agcButton"));
    agc->setToolTip(tr("Automatic gain control: up is slow, down is fast"));
    agc->SetSpecialPicture(0, agcPicture(false), false);
    agc->SetSpecialPicture(1, agcPicture(true), true);
    bind([agc] { agc->SetValueSelection_ValuePath(QStringLiteral("/receiver/agc")); });
    addControlRow(buttonGrid, tr("AGC"), agc, readout(QStringLiteral("/receiver/agc")));

    // Plain push buttons that repeat while held; they take their state from the number they step.
    struct Stepper
    {
        const char* name;
        QString path;
        double delta;
        Glyph glyph;
        QString toolTip;
    };
    auto makeSteppers = [this, buttons](std::initializer_list<Stepper> steppers) {
        QList<QWidget*> made;
        for (const Stepper& s : steppers) {
            auto* button = new VCButton(buttons, QString::fromLatin1(s.name));
            button->setToolTip(s.toolTip);
            button->SetDefaultPicture(stepPicture(s.glyph));
            button->setAutoRepeat(true);
            const QString path = s.path;
            const double delta = s.delta;
            connect(button, &QAbstractButton::clicked, button, [button, path, delta] { stepNumber(button, path, delta); });
            bind([button, path] { button->SetState_ValuePath(path); });
            made << button;
        }
        return made;
    };
    const QList<QWidget*> volume = makeSteppers({
        {"volumeDownButton", QStringLiteral("/receiver/volume"), -1, Glyph::Minus, tr("Softer; hold to keep going")},
        {"volumeUpButton", QStringLiteral("/receiver/volume"), 1, Glyph::Plus, tr("Louder; hold to keep going")},
    });
    addControlRow(buttonGrid, tr("Volume"), row({volume.at(0), volume.at(1)}, buttons),
                  readout(QStringLiteral("/receiver/volume"), numberIn(QStringLiteral("%"))));
    const QList<QWidget*> tuning = makeSteppers({
        {"tuneDownButton", QStringLiteral("/receiver/frequency"), -1, Glyph::Left, tr("1 kHz down; hold to sweep")},
        {"tuneUpButton", QStringLiteral("/receiver/frequency"), 1, Glyph::Right, tr("1 kHz up; hold to sweep")},
    });
    addControlRow(buttonGrid, tr("Tuning"), row({tuning.at(0), tuning.at(1)}, buttons),
                  readout(QStringLiteral("/receiver/frequency"), numberIn(QStringLiteral("MHz"), 3, 0.001)));
    buttonGrid->setRowStretch(buttonGrid->rowCount(), 1);

    auto* upper = new QHBoxLayout;
    upper->setSpacing(10);
    upper->addWidget(switches, 1);
    upper->addWidget(buttons, 1);
    layout->addLayout(upper);

    // Compounds: buttons that each own one band, a radio group on the same band behind the preselector's
    // switch, a mode button whose menu chooses which pair of modes it toggles, and a step button with a menu.
    auto* compounds = new QGroupBox(tr("Compounds"), page);
    auto* compoundGrid = newControlGrid(compounds);

    QList<QWidget*> bandButtons;
    for (const char* band : {"LW", "MW", "SW", "VHF"}) {
        const QString name = QString::fromLatin1(band);
        // Shown in the language of the window; the button owns the item by its English name.
        const QString shown = QCoreApplication::translate("Gallery", band);
        auto* button = new VCOneOfButton(shown, compounds, static_cast<const char* const*>(nullptr), nullptr,
                                         QStringLiteral("band%1Button").arg(name));
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        button->setFixedSize(38, 24);
        button->setToolTip(tr("Switch to the %1 band").arg(shown));
        bind([button, name] { button->SetSelection_ValuePath(QStringLiteral("/receiver/band"), name, QString()); });
        bandButtons << button;
    }
    addControlRow(compoundGrid, tr("Band"), row({bandButtons.at(0), bandButtons.at(1), bandButtons.at(2), bandButtons.at(3)}, compounds),
                  readout(QStringLiteral("/receiver/band")));

    auto* bandGroup = new VCButtonGroup(compounds, "bandGroup", Qt::Horizontal);
    bandGroup->setTitle(tr("Preselector"));
    bandGroup->setToolTip(tr("The preselector's band; its check box switches the preselector on and off"));
    bandGroup->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed); // as wide as its buttons
    bind([bandGroup] {
        bandGroup->SetValueSelection_ValuePath(QStringLiteral("/receiver/band"));
        bandGroup->SetCheckable_ValuePath(QStringLiteral("/receiver/preselector"));
    });
    addControlRow(compoundGrid, tr("Band group"), bandGroup, readout(QStringLiteral("/receiver/preselector")));

    auto* modePair = new VCOneOfButtonCombo(compounds, "modePairCombo", false);
    modePair->SetToolTipText(tr("Click to toggle within the pair; the arrow picks the pair"));
    bind([modePair] {
        modePair->SetSelection_ValuePath(QStringLiteral("/receiver/mode"), QStringLiteral("AM"), QStringLiteral("FM"),
                                         modePicture(0), modePicture(1));
        modePair->AddSelection(QStringLiteral("USB"), QStringLiteral("LSB"), modePicture(2), modePicture(3));
        modePair->AddSelection(QStringLiteral("CW"), QString(), modePicture(4), modePicture(4));
    });
    addControlRow(compoundGrid, tr("Mode pair"), modePair, readout(QStringLiteral("/receiver/mode")));

    auto* step = new VCButtonCombo(compounds, QStringLiteral("step"), false, false);
    step->SetToolTipText(tr("Tuning step: click for the next, or pick from the arrow's menu"));
    const int stepTicks[] = {12, 8, 5, 3, 2};
    for (int key = 0; key < 5; ++key)
        step->GetButton()->SetSpecialPicture(key, stepSizePicture(stepTicks[key]), false);
    bind([step] { step->SetValueSelection_ValuePath(QStringLiteral("/receiver/step")); });
    addControlRow(compoundGrid, tr("Step"), step, readout(QStringLiteral("/receiver/step")));
    compoundGrid->setRowStretch(compoundGrid->rowCount(), 1);
    layout->addWidget(compounds);

    // Undo: the whole receiver is one branch, so every recorded edit of the gallery is in its list.
    auto* undoBox = new QGroupBox(tr("Undo"), page);
    auto* undoLayout = new QHBoxLayout(undoBox);
    undoLayout->setSpacing(12);
    auto* undo = new VCUndo(undoBox, "undo");
    undo->SetUndoRecordings_BasePath(Instrument::root());
    undo->setFixedHeight(24);
    auto* history = new UndoHistory(Instrument::root(), 6, undoBox);
    history->setObjectName(QStringLiteral("undoHistory"));
    history->setFont(GalleryWindow::fixedFont());
    undoLayout->addWidget(undo, 0, Qt::AlignTop);
    undoLayout->addWidget(history, 1);
    layout->addWidget(undoBox);
    layout->addStretch(1);
    return page;
}
