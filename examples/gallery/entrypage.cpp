/*
 * The page of the controls that take typed or stepped entries: a frequency field in MHz and a plain
 * field with its unit, a spin box that commits after a burst of steps, arrow buttons on the edges of
 * a slider, and the notes as a multi-line field.
 */
#include "gallerywindow.h"

#include <vandrel/vandrel.h>

#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QStatusBar>
#include <QVBoxLayout>

namespace {

/**
 * The receiver's frequency in hertz, for a frequency field whose formatter counts in hertz while the
 * receiver holds kilohertz.
 *
 * The view is a number of its own, outside the tree, that follows the frequency's number, limits and
 * state and writes each change made to it back in kilohertz. When the frequency is removed the view
 * reports itself removed, so that the field lets go; bind() takes up a re-created frequency.
 */
class HertzView : public QObject, public IObserver
{
public:
    explicit HertzView(QObject* owner)
        : QObject(owner)
        , m_hertz(0.0, 0.0, 0.0)
    {
        m_hertz.Attach(this);
    }

    ~HertzView() override
    {
        release();
        m_hertz.Detach(this);
    }

    values::DoubleNumeric* hertz() { return &m_hertz; }

    /// Follows the frequency at \a path; without one the view stands removed.
    bool bind(const QString& path)
    {
        release();
        m_pKiloHertz = dynamic_cast<values::IValueNumeric*>(values::Tree::Instance()->Find(path));
        if (!m_pKiloHertz) {
            m_hertz.SetState(Removed, this);
            return false;
        }
        ObservableOf(m_pKiloHertz)->Attach(this);
        copyRange();
        copyValue();
        m_hertz.SetState(m_pKiloHertz->GetValueBase()->GetState(), this);
        return true;
    }

    void Update(Observable* source, TChangeCode code) override
    {
        if (source == ObservableOf(&m_hertz)) {
            if (code == ValueChanged && m_pKiloHertz) {
                m_pKiloHertz->SetValue(m_hertz.GetValue() / 1000.0, this);
                // As the writer this view hears nothing back: show what the frequency kept.
                if (m_pKiloHertz)
                    copyValue();
            }
            return;
        }
        if (!m_pKiloHertz || source != ObservableOf(m_pKiloHertz))
            return;
        switch (code) {
        case StateChanged: {
            const int state = m_pKiloHertz->GetValueBase()->GetState();
            if (state == Removed)
                release();
            m_hertz.SetState(state, this);
            break;
        }
        case ValueDestroyed:
            m_pKiloHertz = nullptr; // going: no Detach
            m_hertz.SetState(Removed, this);
            break;
        case RangeChanged:
            copyRange();
            break;
        case ValueChanged:
            copyValue();
            break;
        default:
            break;
        }
    }

private:
    void release()
    {
        if (m_pKiloHertz)
            ObservableOf(m_pKiloHertz)->Detach(this);
        m_pKiloHertz = nullptr;
    }

    void copyRange()
    {
        m_hertz.SetRange(m_pKiloHertz->GetMinimum() * 1000.0, m_pKiloHertz->GetMaximum() * 1000.0,
                         m_pKiloHertz->GetStep() * 1000.0, this);
    }

    void copyValue() { m_hertz.SetValue(m_pKiloHertz->GetValue() * 1000.0, this); }

    values::DoubleNumeric m_hertz;
    values::IValueNumeric* m_pKiloHertz = nullptr;
};

/// The number in kHz as the value holds it, without trailing zeros.
QString kiloHertz(values::ValueBase& value)
{
    auto* numeric = dynamic_cast<values::IValueNumeric*>(&value);
    return numeric ? QString::number(numeric->GetValue(), 'g', 10) + QStringLiteral(" kHz") : value.GetValueString();
}

} // namespace

QWidget* GalleryWindow::makeEntryPage()
{
    QVBoxLayout* layout = newPageLayout(tr("Each field writes its value at its own moment, noted under it. The readouts on the "
                                         "right show what reached the value."));
    QWidget* page = layout->parentWidget();

    // A note under the last row's control, across the control and readout columns.
    auto note = [](QGridLayout* grid, const QString& text) {
        QLabel* label = hint(text, grid->parentWidget());
        const int row = grid->rowCount();
        grid->addWidget(label, row, 1, 1, 2);
        // Air between the note and the next caption.
        grid->setRowMinimumHeight(row + 1, 6);
        return label;
    };
    auto makeGrid = [](QGroupBox* box) {
        auto* grid = newControlGrid(box);
        grid->setVerticalSpacing(4);
        return grid;
    };
    // The slider page has readouts of the same values; these have names of their own.
    auto entryReadout = [this](const char* name, const QString& path, ValueReadout::Formatter format) {
        ValueReadout* label = readout(path, std::move(format));
        label->setObjectName(QString::fromLatin1(name));
        return label;
    };
    // Controls keep their own width and stand at the left of their column.
    auto alignLast = [](QGridLayout* grid) {
        grid->itemAtPosition(grid->rowCount() - 1, 1)->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    };

    auto* typed = new QGroupBox(tr("Typed numbers"), page);
    QGridLayout* typedGrid = makeGrid(typed);

    // The field's formatter counts in hertz; the receiver's frequency is in kHz, so the field edits a
    // view of it in hertz.
    auto* frequency = new VCLineEdit(typed, "frequencyLineEdit", VCLineEdit::FrequencySuffix3);
    frequency->setToolTip(tr("The tuned frequency in MHz, or in kHz with a k behind the number. Typing here "
                             "stops the scan, so that the dial holds still."));
    frequency->setFixedWidth(frequency->fontMetrics().horizontalAdvance(QStringLiteral("30.000000 MHz")) + 16);
    // Only typing stops the scan: the focus alone arrives with opening the page, and the user only
    // looked. Once per edit, and said in the status bar, since the dial stops where it stood.
    connect(frequency, &QLineEdit::textEdited, this, [this] {
        auto* active = dynamic_cast<values::BoolValue*>(values::Tree::Instance()->Find(QStringLiteral("/receiver/scan/active")));
        if (!active || !active->GetValue() || active->GetState() != Enabled)
            return;
        active->SetValue(false, nullptr);
        statusBar()->showMessage(tr("Scan stopped: you are editing the frequency"), 5000);
    });
    auto* hertz = new HertzView(frequency);
    bind([frequency, hertz] {
        hertz->bind(QStringLiteral("/receiver/frequency"));
        frequency->SetValueBase(hertz->hertz());
    });
    addControlRow(typedGrid, tr("Frequency"), frequency,
                  entryReadout("frequencyEntryReadout", QStringLiteral("/receiver/frequency"), kiloHertz));
    alignLast(typedGrid);
    note(typedGrid, tr("Writes on Return or focus loss; out of range, warns and clamps."));

    // A plain field formats the number itself: three digits and the unit behind a blank.
    auto* squelch = new VCLineEdit(typed, "squelchLineEdit");
    squelch->setToolTip(tr("The carrier opens above this level, in dBm"));
    squelch->SetFormat(3, 0, QStringLiteral("dBm"), QString(), 1.0);
    squelch->setFixedWidth(frequency->width());
    bind([squelch] { squelch->SetText_ValuePath(QStringLiteral("/receiver/squelch")); });
    addControlRow(typedGrid, tr("Squelch"), squelch,
                  entryReadout("squelchEntryReadout", QStringLiteral("/receiver/squelch"), numberIn(QStringLiteral("dBm"))));
    alignLast(typedGrid);
    note(typedGrid, tr("Writes on Return or focus loss; the unit may be left out."));
    layout->addWidget(typed);

    auto* stepped = new QGroupBox(tr("Stepped numbers"), page);
    QGridLayout* steppedGrid = makeGrid(stepped);

    auto* gain = new VCNumericFloatSpin(stepped, "gainSpinBox");
    gain->setSuffix(QStringLiteral("dB"));
    gain->setToolTip(tr("Receiver gain: arrows, Up and Down, Page Up and Page Down or the wheel"));
    bind([gain] { gain->SetNumericInt_ValuePath(QStringLiteral("/receiver/gain")); });
    addControlRow(steppedGrid, tr("Gain"), gain,
                  entryReadout("gainEntryReadout", QStringLiteral("/receiver/gain"), numberIn(QStringLiteral("dB"))));
    alignLast(steppedGrid);
    note(steppedGrid, tr("Steps write 200 ms after the last one, as one undoable edit."));

    // Arrow buttons sit on the edges of the strip; the slider between them shows where the volume stands.
    auto* strip = new QWidget(stepped);
    strip->setObjectName(QStringLiteral("volumeStrip"));
    strip->setFixedSize(260, 16);
    auto* stripLayout = new QHBoxLayout(strip);
    stripLayout->setContentsMargins(36, 0, 36, 0);
    auto* volume = new VCSlider(strip, "volumeStripSlider");
    volume->setOrientation(Qt::Horizontal);
    volume->setPageStep(10);
    stripLayout->addWidget(volume);
    auto* arrows = new VCScrollButtons(strip, VCScrollButtons::ScrollButtonsTop | VCScrollButtons::ScrollButtonsLine
                                                  | VCScrollButtons::ScrollButtonsPage);
    // Owned by the strip it serves, so that both go together.
    arrows->setParent(strip);
    arrows->setObjectName(QStringLiteral("volumeScrollButtons"));
    bind([volume, arrows] {
        volume->SetNumeric_ValuePath(QStringLiteral("/receiver/volume"));
        arrows->Set_ValuePath(QStringLiteral("/receiver/volume"));
    });
    addControlRow(steppedGrid, tr("Volume"), strip,
                  entryReadout("volumeEntryReadout", QStringLiteral("/receiver/volume"), numberIn(QStringLiteral("%"))));
    alignLast(steppedGrid);
    note(steppedGrid, tr("Each click writes at once: 1 % a line, 10 % a page; held, it repeats."));
    layout->addWidget(stepped);

    auto* text = new QGroupBox(tr("Text"), page);
    QGridLayout* textGrid = makeGrid(text);
    auto* notes = new VCTextEdit(text);
    notes->setObjectName(QStringLiteral("notesTextEdit"));
    notes->setToolTip(tr("Notes of the watch"));
    notes->setFixedHeight(72);
    bind([notes] { notes->SetText_ValuePath(QStringLiteral("/receiver/notes")); });
    ValueReadout* notesReadout = entryReadout("notesEntryReadout", QStringLiteral("/receiver/notes"), {});
    addControlRow(textGrid, tr("Notes"), notes, notesReadout);
    alignLast(textGrid);
    // Notes are text, not numbers: read from the top, wrapped in the readout column.
    notesReadout->setWordWrap(true);
    notesReadout->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    textGrid->itemAtPosition(textGrid->rowCount() - 1, 0)->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    note(textGrid, tr("Return starts a new line; writes when the field loses focus."));
    layout->addWidget(text);
    layout->addStretch(1);

    // One column of controls through the three boxes.
    int captions = 0;
    for (const QString& caption : {tr("Frequency"), tr("Squelch"), tr("Gain"), tr("Volume"), tr("Notes")})
        captions = qMax(captions, page->fontMetrics().horizontalAdvance(caption));
    for (QGridLayout* grid : {typedGrid, steppedGrid, textGrid})
        grid->setColumnMinimumWidth(0, captions);
    return page;
}
