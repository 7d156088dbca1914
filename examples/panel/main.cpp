// A receiver's front panel in code: values in the tree, controls bound to them by path, an undo
// button for the branch, an application edit that can be undone like a user's, a value whose state
// follows another, and a value that goes and comes back.
//
// With --quit the panel starts, runs each of its actions once and leaves (for the test run).

#include <vandrel/vandrel.h>

#include <QApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QMainWindow>
#include <QPushButton>
#include <QStringList>
#include <QTimer>

namespace {

//! [values]
// The tree owns every value it accepts. It refuses a taken or malformed path, and the caller then still
// owns the value.
bool add(const QString& path, values::ValueBase* value)
{
    if (values::Tree::Instance()->Add(path, value))
        return true;
    delete value;
    return false;
}

values::ValueBase* makeFrequency()
{
    // In kHz, from 100 kHz to 30 MHz; a spin box steps by the value's step.
    return new values::DoubleNumeric(/*value*/ 6070.0, /*minimum*/ 100.0, /*maximum*/ 30000.0, /*step*/ 5.0);
}

bool createValues()
{
    // A number with limits and a step: writes are clamped into 0..60, and rounded since it is an int.
    bool ok = add(QStringLiteral("/receiver/gain"), new values::IntNumeric(20, 0, 60, 1));
    ok = add(QStringLiteral("/receiver/frequency"), makeFrequency()) && ok;

    // A selection: keyed items, one of them current. The first item added becomes current.
    auto* mode = new values::ValueSelection;
    const QStringList modes = {QStringLiteral("AM"), QStringLiteral("USB"), QStringLiteral("LSB"), QStringLiteral("CW")};
    for (int key = 0; key < modes.size(); ++key)
        mode->AddItem(modes.at(key), double(key), key, nullptr);
    ok = add(QStringLiteral("/receiver/mode"), mode) && ok;

    ok = add(QStringLiteral("/receiver/squelch"), new values::BoolValue(false)) && ok;
    return ok;
}
//! [values]

//! [preset]
// An edit the application makes for its user. Writes outside a span are not recorded; this span, opened
// with a switch of the application's own, makes both writes one undo recording.
void applyPreset()
{
    static UndoRecordingControlBase presets; // recording is on by default
    values::Tree* tree = values::Tree::Instance();
    GuiUndoRecordingHelper span(&presets, QString());
    // No originator: every control bound to these values hears of the writes.
    if (auto* gain = dynamic_cast<values::IValueNumeric*>(tree->Find(QStringLiteral("/receiver/gain"))))
        gain->SetValue(35, nullptr);
    if (auto* mode = dynamic_cast<values::ValueSelection*>(tree->Find(QStringLiteral("/receiver/mode"))))
        mode->SelectKey(1, nullptr);
}
//! [preset]

//! [state]
// The squelch works in AM only. The application says so through the squelch value's state, and every
// control bound to that value greys out and back by itself.
class SquelchFollowsMode : public IObserver
{
public:
    explicit SquelchFollowsMode(values::ValueSelection* mode)
        : m_pMode(mode)
    {
        if (!m_pMode)
            return;
        m_pMode->Attach(this);
        Update(ObservableOf(m_pMode), ValueChanged);
    }
    ~SquelchFollowsMode() override
    {
        if (m_pMode)
            m_pMode->Detach(this);
    }

    void Update(Observable* source, TChangeCode code) override
    {
        if (!m_pMode || source != ObservableOf(m_pMode))
            return;
        if (code == ValueDestroyed) {
            m_pMode = nullptr; // it is going: forget it, without Detach
            return;
        }
        if (code == StateChanged && m_pMode->GetState() == Removed) {
            m_pMode->Detach(this);
            m_pMode = nullptr;
            return;
        }
        if (code != ValueChanged)
            return;
        if (values::ValueBase* squelch = values::Tree::Instance()->Find(QStringLiteral("/receiver/squelch")))
            squelch->SetState(m_pMode->GetCurrentKey() == 0 ? Enabled : Disabled, this);
    }

private:
    values::ValueSelection* m_pMode;
};
//! [state]

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (!createValues())
        return 1;

    //! [window]
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("Receiver"));
    auto* panel = new QWidget(&window);
    auto* form = new QFormLayout(panel);
    window.setCentralWidget(panel);
    //! [window]

    //! [controls]
    // These controls start disabled and unbound. Binding by path finds the value, attaches the control
    // to it and shows it; from then on the value's state enables and disables the control.
    auto* gain = new VCSlider(panel, "gain");
    gain->setOrientation(Qt::Horizontal);
    gain->SetNumeric_ValuePath(QStringLiteral("/receiver/gain"));

    auto* gainReadout = new VCLabel(panel, "gainReadout", 0);
    gainReadout->SetFormat(/*digits*/ 2, /*decimals*/ 0, /*factor*/ 1.0);
    gainReadout->SetSuffix(QStringLiteral("dB"));
    gainReadout->SetText_ValuePath(QStringLiteral("/receiver/gain"), /*observe*/ true);

    auto* frequency = new VCNumericFloatSpin(panel, "frequency");
    frequency->setSuffix(QStringLiteral(" kHz"));
    frequency->SetNumericInt_ValuePath(QStringLiteral("/receiver/frequency"));

    auto* mode = new VCComboBoxClassic(panel, "mode");
    mode->SetValueSelection_ValuePath(QStringLiteral("/receiver/mode"));

    auto* squelch = new VCCheckBox(panel, "squelch");
    squelch->SetText(QStringLiteral("Squelch"));
    squelch->Set_ValuePath(QStringLiteral("/receiver/squelch"));
    //! [controls]

    //! [undo]
    // One undo button for everything under /receiver: a click undoes the newest recording there.
    auto* undo = new VCUndo(panel, "undo");
    undo->SetUndoRecordings_BasePath(QStringLiteral("/receiver"));

    auto* preset = new QPushButton(QStringLiteral("Preset"), panel);
    QObject::connect(preset, &QPushButton::clicked, preset, [] { applyPreset(); });
    //! [undo]

    //! [follow]
    SquelchFollowsMode squelchFollowsMode(
        dynamic_cast<values::ValueSelection*>(values::Tree::Instance()->Find(QStringLiteral("/receiver/mode"))));
    //! [follow]

    //! [remove]
    // The tuner goes away and comes back, and its frequency with it. Disabled first, the spin box shows
    // that it has nothing to set: a removed value leaves its controls as they were. Coming back, the
    // value is new, so the spin box is bound to it again.
    auto* tuner = new QPushButton(QStringLiteral("Tuner"), panel);
    tuner->setCheckable(true);
    tuner->setChecked(true);
    QObject::connect(tuner, &QPushButton::toggled, frequency, [frequency](bool on) {
        values::Tree* tree = values::Tree::Instance();
        const QString path = QStringLiteral("/receiver/frequency");
        if (!on) {
            if (values::ValueBase* value = tree->Find(path))
                value->SetState(Disabled);
            tree->Remove(path);
        } else if (add(path, makeFrequency())) {
            frequency->SetNumericInt_ValuePath(path);
        }
    });
    //! [remove]

    auto* gainRow = new QHBoxLayout;
    gainRow->addWidget(gain);
    gainRow->addWidget(gainReadout);
    form->addRow(QStringLiteral("Gain"), gainRow);
    auto* frequencyRow = new QHBoxLayout;
    frequencyRow->addWidget(frequency);
    frequencyRow->addWidget(tuner);
    form->addRow(QStringLiteral("Frequency"), frequencyRow);
    form->addRow(QStringLiteral("Mode"), mode);
    form->addRow(QString(), squelch);
    auto* actions = new QHBoxLayout;
    actions->addWidget(preset);
    actions->addStretch();
    actions->addWidget(undo);
    form->addRow(actions);

    window.show();
    if (app.arguments().contains(QStringLiteral("--quit"))) {
        QTimer::singleShot(0, &app, [&app, preset, tuner] {
            preset->click();
            tuner->toggle();
            tuner->toggle();
            app.quit();
        });
    }
    const int result = app.exec();

    //! [teardown]
    // Values may go before their controls or after them. Here they go first: each announces it, and
    // every control bound to it lets go. Recordings that touched them leave the undo list.
    values::Tree::Instance()->Clear();
    //! [teardown]
    return result;
}
