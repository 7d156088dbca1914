#include <vandrel/vclineedit.h>

#include <plinthor/plinthorapp.h>
#include <plinthor/suffixeddouble.h>

#include <observercounter.h>

#include <QAbstractButton>
#include <QIntValidator>
#include <QMessageBox>
#include <QPointer>
#include <QVBoxLayout>
#include <QtTest>

#include <limits>
#include <utility>

namespace {

const QString kPath = QStringLiteral("/panel/x");
const QString kRed = QStringLiteral("QLineEdit{ color: white; background-color: red }");

values::Tree& tree() { return *values::Tree::Instance(); }

values::DoubleNumeric* addNumber(double value, double minimum, double maximum)
{
    auto* number = new values::DoubleNumeric(value, minimum, maximum);
    tree().Add(kPath, number);
    return number;
}

// Counts the ValueChanged calls that reach the field, from the value or from the field itself.
class CountingLineEdit : public VCLineEdit
{
public:
    using VCLineEdit::VCLineEdit;
    void Update(Observable* source, TChangeCode code) override
    {
        valueChanges += code == ValueChanged;
        VCLineEdit::Update(source, code);
    }
    int valueChanges = 0;
};

// A field and a second widget to take the focus, in an active window.
struct Panel
{
    explicit Panel(VCLineEdit::LineEditType type = VCLineEdit::PlainEdit)
    {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(field = new CountingLineEdit(&window, "field", type));
        layout->addWidget(other = new QLineEdit(&window));
        window.show();
        QApplication::setActiveWindow(&window);
        if (!QTest::qWaitForWindowActive(&window))
            qWarning("the panel did not become active");
    }
    ~Panel() { window.hide(); } // so that tearing down commits nothing more
    // What a user does: focus the field, select all, type over it.
    void type(const QString& text)
    {
        field->setFocus();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field, text);
    }
    QWidget window;
    CountingLineEdit* field = nullptr;
    QLineEdit* other = nullptr;
};

// Closes each message box that comes up, and keeps what it said. Nothing is checked in the timer: a
// failed check there would leave the box open and the test hanging; the test compares afterwards.
struct BoxCloser : QObject
{
    explicit BoxCloser(QLineEdit* watched)
        : field(watched)
    {
        connect(&timer, &QTimer::timeout, this, [this] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                ++count;
                said = box->windowTitle() + QLatin1Char('|') + box->text();
                sheetWhileShown = field ? field->styleSheet() : QString();
                buttons = box->buttons().size();
                if (QAbstractButton* ok = box->button(QMessageBox::Ok))
                    QTest::mouseClick(ok, Qt::LeftButton);
                else
                    box->reject();
            }
        });
        timer.start(5);
    }
    QTimer timer;
    int count = 0;
    int buttons = 0;
    QString said, sheetWhileShown;
    QPointer<QLineEdit> field;
};

} // namespace

class VCLineEditTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { tree().Clear(); }

    void construction_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("frequency");
        QTest::addColumn<bool>("factorTakes");
        QTest::newRow("plain") << 0 << false << false;
        QTest::newRow("frequency") << 1 << true << false;
        QTest::newRow("frequency kHz") << 2 << true << false;
        QTest::newRow("frequency following") << 3 << true << false;
        QTest::newRow("suffixed number") << 4 << false << true;
        QTest::newRow("frequency MHz") << 5 << true << true;
        QTest::newRow("frequency GHz") << 6 << true << true;
        QTest::newRow("time") << 7 << false << true;
        QTest::newRow("unknown number") << 12 << false << false;
    }
    void construction()
    {
        QFETCH(int, type);
        QFETCH(bool, frequency);
        VCLineEdit field(nullptr, "Gain", VCLineEdit::LineEditType(type));
        QCOMPARE(field.objectName() + field.toolTip(), QStringLiteral("GainGain"));
        QVERIFY(!field.isEnabled() && !field.GetDirty() && !field.dragEnabled() && !field.GetValuePtr());
        QCOMPARE(field.maxLength(), frequency ? 20 : QLineEdit().maxLength());
        QCOMPARE(field.validator() != nullptr, frequency);
        // The bit of value 4 of the type number decides, not whether the type has a suffix.
        QTEST(field.SetFactor(1024), "factorTakes");
        QTEST(field.SetStringSuffix(QStringLiteral("B")), "factorTakes");
    }

    // The frequency pattern: blanks, digits, one point or comma, one unit letter, "H" or "Hz"; no sign,
    // no exponent. The field's own check, so that it answers alike under each Qt.
    void frequencyValidator_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("state");
        const int ok = QValidator::Acceptable;
        const int bad = QValidator::Invalid;
        QTest::newRow("empty") << "" << ok;
        QTest::newRow("unit") << " 100,5 mhZ" << ok;
        QTest::newRow("prefix only") << "4.7k" << ok;
        QTest::newRow("two points") << "1.2.3" << bad;
        QTest::newRow("sign") << "-5" << bad;
        QTest::newRow("exponent") << "1e3" << bad;
        QTest::newRow("other letter") << "12 THz" << bad;
    }
    void frequencyValidator()
    {
        QFETCH(QString, text);
        VCLineEdit field(nullptr, "f", VCLineEdit::Frequency);
        int pos = 0;
        QTEST(int(field.validator()->validate(text, pos)), "state");
    }

    // One typed text per type, committed with Return to a number with wide limits.
    void commitByType_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("stored");
        QTest::addColumn<QString>("shown");
        QTest::newRow("plain") << 0 << "12.5" << 12.5 << "12.5";
        QTest::newRow("plain, a unit letter reads as 0") << 0 << "12k" << 0.0 << "12k";
        QTest::newRow("frequency") << 1 << "100,5 mhz" << 100.5e6 << "100.500 MHz";
        QTest::newRow("frequency refuses sign and exponent") << 1 << "-12e3 Hzx" << 123.0 << "123 Hz";
        QTest::newRow("frequency kHz") << 2 << "12" << 12e3 << "12 kHz";
        QTest::newRow("frequency kHz keeps kHz") << 2 << "1 MHz" << 1e6 << "1000 kHz";
        QTest::newRow("frequency following") << 3 << "2.5 k" << 2500.0 << "2.500 kHz";
        QTest::newRow("suffixed number") << 4 << "4.7k" << 4700.0 << "4.7k";
        QTest::newRow("frequency MHz") << 5 << "3" << 3e6 << "3 MHz";
        QTest::newRow("frequency GHz, 20 letters at most") << 6 << "1.50000000000000000009" << 1.5e9 << "1.500 GHz";
        QTest::newRow("time writes 0") << 7 << "90" << 0.0 << "1 min 30 s";
    }
    void commitByType()
    {
        QFETCH(int, type);
        QFETCH(QString, typed);
        QFETCH(double, stored);
        auto* number = addNumber(5.0, type == 0 || type == 7 ? -1e12 : 0.0, 1e12);
        Panel p{VCLineEdit::LineEditType(type)};
        BoxCloser boxes(p.field);
        QVERIFY(p.field->SetText_ValuePath(kPath));
        p.type(typed);
        QTest::keyClick(p.field, Qt::Key_Return);
        QCOMPARE(number->GetValue(), stored);
        QTEST(p.field->text(), "shown");
        QCOMPARE(p.field->GetNumeric(), stored);
        QCOMPARE(boxes.count, 0);
        // The field's edits are not undo recordings.
        QVERIFY(values::UndoRecordingsToValueClient(QStringLiteral("/")).GetUndoRecordingDescriptions().empty());
    }

    // SetFormat's number shown, then a typed text read back, on a plain field.
    void plainFormat_data()
    {
        QTest::addColumn<int>("digits");
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<double>("factor");
        QTest::addColumn<double>("number");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("stored");
        QTest::newRow("width counts no point") << 3 << "dB" << 1.0 << 1.5 << " 1.50 dB" << "7 dB" << 7.0;
        QTest::newRow("shortest form") << -1 << "" << 1.0 << 0.5 << "0.5" << "2000" << 2000.0;
        QTest::newRow("six digits") << -1 << "V" << 1.0 << 1234567.0 << "1.23457e+06 V" << "12 v" << 0.0;
        QTest::newRow("no suffix: factor only shown") << -1 << "" << 1000.0 << 2.5 << "2500" << "2000" << 2000.0;
        QTest::newRow("suffix: factor both ways") << -1 << "Hz" << 1000.0 << 2.5 << "2500 Hz" << "2000 Hz" << 2.0;
        QTest::newRow("factor 0 does not scale") << -1 << "dB" << 0.0 << 2.5 << "2.5 dB" << "7 dB" << 7.0;
    }
    void plainFormat()
    {
        QFETCH(int, digits);
        QFETCH(QString, suffix);
        QFETCH(double, factor);
        QFETCH(double, number);
        QFETCH(QString, typed);
        auto* value = addNumber(0.0, -1e9, 1e9);
        Panel p;
        QVERIFY(p.field->SetText_ValuePath(kPath));
        p.field->SetFormat(digits, 2, suffix, QStringLiteral("k"), factor);
        QCOMPARE(p.field->text(), QStringLiteral("0")); // shown from the next number on
        value->SetValue(number, nullptr);
        QTEST(p.field->text(), "shown");
        QCOMPARE(value->GetValue(), number);
        p.type(typed);
        QTest::keyClick(p.field, Qt::Key_Return);
        QTEST(value->GetValue(), "stored");
    }

    void rangeCheck_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<double>("minimum");
        QTest::addColumn<double>("maximum");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("said"); // title|text of the box
        QTest::addColumn<double>("stored");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("selfCalls"); // ValueChanged calls the field gets from the commit
        QTest::addColumn<QString>("told");  // the box's focus loss tells the text before the clamping
        const QString range = QStringLiteral(", value set to %1.\nAllowed range from %2 to %3.");
        const QString over = QStringLiteral("Input Error|Input exceeds maximum") + range;
        const QString under = QStringLiteral("Range Check Error|Input underruns minimum") + range;
        QTest::newRow("plain over") << 0 << 10.0 << 20.0 << "25" << over.arg(20).arg(10).arg(20) << 20.0 << "20" << 2 << "25";
        QTest::newRow("plain under") << 0 << 10.0 << 20.0 << "5" << under.arg(10).arg(10).arg(20) << 10.0 << "10" << 2 << "5";
        QTest::newRow("plain at maximum") << 0 << 10.0 << 20.0 << "20" << "" << 20.0 << "20" << 0 << "";
        QTest::newRow("plain at minimum") << 0 << 10.0 << 20.0 << "10" << "" << 10.0 << "10" << 0 << "";
        // The suffixed overrun writes with no originator, the underrun as the field itself.
        QTest::newRow("frequency over") << 1 << 1000.0 << 2000.0 << "5k" << over.arg("2 kHz", "1 kHz", "2 kHz") << 2000.0
                                        << "2 kHz" << 2 << "5 kHz";
        QTest::newRow("frequency under") << 1 << 1000.0 << 2000.0 << "500" << under.arg("1 kHz", "1 kHz", "2 kHz") << 1000.0
                                         << "1 kHz" << 1 << "500 Hz";
        QTest::newRow("suffixed floor is 0") << 4 << -10.0 << 100.0 << "-5" << under.arg("0", "0", "100") << 0.0 << "0" << 1 << "-5";
        QTest::newRow("time over") << 7 << -100.0 << -1.0 << "5" << over.arg(-1).arg(-100).arg(-1) << -1.0 << "-1 s" << 2 << "5 s";
    }
    void rangeCheck()
    {
        QFETCH(int, type);
        QFETCH(double, minimum);
        QFETCH(double, maximum);
        QFETCH(QString, typed);
        QFETCH(QString, said);
        QFETCH(double, stored);
        QFETCH(QString, shown);
        QFETCH(int, selfCalls);
        auto* number = addNumber(minimum + 1.0, minimum, maximum);
        Counter counter;
        counter.watch(number);
        Panel p{VCLineEdit::LineEditType(type)};
        QVERIFY(p.field->SetText_ValuePath(kPath));
        BoxCloser boxes(p.field);
        QSignalSpy finally(p.field, &VCLineEdit::signalTextFinallyChanged);

        for (bool silent : {false, true}) {
            number->SetValue(minimum + 1.0, nullptr);
            counter.codes.clear();
            p.field->SuppressErrorMessage(silent);
            p.type(typed);
            p.field->valueChanges = 0;
            QTest::keyClick(p.field, Qt::Key_Return);
            QCOMPARE(number->GetValue(), stored);
            QCOMPARE(p.field->text(), shown);
            QCOMPARE(p.field->valueChanges, selfCalls);
            QCOMPARE(counter.count(ValueChanged), 1);
            QCOMPARE(p.field->styleSheet(), QString());
            // Silenced, the same clamping with no box and no red flash.
            QCOMPARE(boxes.count, said.isEmpty() ? 0 : 1);
            QCOMPARE(boxes.said, said);
            QCOMPARE(boxes.sheetWhileShown, said.isEmpty() ? QString() : kRed);
            QCOMPARE(boxes.buttons, said.isEmpty() ? 0 : 1);
            QCOMPARE(finally.count(), said.isEmpty() ? 0 : 1);
        }
        if (!said.isEmpty())
            QTEST(finally.first().at(0).toString(), "told");
    }

    // The range box runs an event loop: the application may delete the field meanwhile (a panel closed
    // by a timer). Whatever ended the edit, nothing returns into the freed field, and the value still
    // gets the limit the box announced.
    void deletedWhileItsRangeBoxStands_data()
    {
        QTest::addColumn<int>("ending");
        QTest::newRow("Return") << 0;
        QTest::newRow("focus loss") << 1;
        QTest::newRow("endEdit") << 2;
        QTest::newRow("forced end") << 3;
    }
    void deletedWhileItsRangeBoxStands()
    {
        QFETCH(int, ending);
        auto* number = addNumber(5.0, 0.0, 10.0);
        Panel p;
        QVERIFY(p.field->SetText_ValuePath(kPath));
        QSignalSpy finally(p.field, &VCLineEdit::signalTextFinallyChanged);
        QPointer<VCLineEdit> field = p.field;
        QString said;
        QTimer closer;
        connect(&closer, &QTimer::timeout, &closer, [&] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                said = box->windowTitle();
                const QPointer<QMessageBox> standing = box;
                delete field.data(); // the box is the field's child and goes with it
                if (standing)
                    standing->reject();
            }
        });
        closer.start(5);
        p.type(QStringLiteral("70"));
        switch (ending) {
        case 0:
            QTest::keyClick(p.field, Qt::Key_Return);
            break;
        case 1:
            p.other->setFocus();
            break;
        case 2:
            p.field->endEdit();
            break;
        default:
            Plinthor::Instance().EndEdit(p.field);
            break;
        }
        QTRY_VERIFY(field.isNull());
        QCOMPARE(said, QStringLiteral("Input Error"));
        QCOMPARE(number->GetValue(), 10.0);
        // The destructor's signal, and the one of the focus the box took if the field had it: never one
        // after the box, and each with the text as it stood.
        QVERIFY(finally.count() >= 1 && finally.count() <= 2);
        for (const QList<QVariant>& told : finally)
            QCOMPARE(told.at(0).toString(), QStringLiteral("70"));
    }

    // A field destroyed with text still to commit commits it; its range box then comes without an event
    // loop of its own and without a parent, since the parent may be half destroyed already.
    void destroyedWithOutOfRangeText()
    {
        auto* number = addNumber(5.0, 0.0, 10.0);
        QWidget window;
        auto* panel = new QWidget(&window);
        auto* field = new VCLineEdit(panel, "field");
        QVERIFY(field->SetText_ValuePath(kPath));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        field->setText(QStringLiteral("-3"));
        delete panel;
        QCOMPARE(number->GetValue(), 0.0);
        QMessageBox* box = nullptr;
        for (QWidget* top : QApplication::topLevelWidgets())
            box = box ? box : qobject_cast<QMessageBox*>(top);
        QVERIFY(box);
        QVERIFY(box->isVisible()); // still standing after the deletion returned: no event loop ran
        QVERIFY(!box->parent());
        QCOMPARE(box->windowTitle(), QStringLiteral("Range Check Error"));
        QPointer<QMessageBox> gone = box;
        box->close();
        QTRY_VERIFY(gone.isNull());
    }

    void endingAnEdit()
    {
        auto* text = new values::StringValue(QStringLiteral("old"));
        tree().Add(kPath, text);
        Counter counter;
        counter.watch(text);
        Panel p(VCLineEdit::FrequencySuffix3); // the type plays no part for text
        QVERIFY(p.field->SetText_ValuePath(kPath));
        // Showing the text at binding writes it back, as every showing of a text value does.
        QCOMPARE(counter.count(ValueChanged), 1);
        counter.codes.clear();
        QSignalSpy finally(p.field, &VCLineEdit::signalTextFinallyChanged);
        p.field->valueChanges = 0;

        // Focus loss commits twice: the filter's commit with the signal, then Qt's editingFinished().
        // Each commit writes the text and, showing it again, writes it once more.
        p.type(QStringLiteral("12 k"));
        p.other->setFocus();
        QCOMPARE(text->GetValue(), QStringLiteral("12 k"));
        QCOMPARE(counter.count(ValueChanged), 4);
        QCOMPARE(p.field->valueChanges, 2); // only the field's own redraws
        QCOMPARE(finally.count(), 1);
        QCOMPARE(finally.takeFirst().at(0).toString(), QStringLiteral("12 k"));

        // A second field on the value shows what the first writes; their write-backs end after one round.
        VCLineEdit second(nullptr, "second");
        QVERIFY(second.SetText_ValuePath(kPath));
        p.type(QStringLiteral("13 k"));
        QTest::keyClick(p.field, Qt::Key_Return);
        QCOMPARE(second.text(), QStringLiteral("13 k"));
        text->SetValue(QStringLiteral("12 k"), nullptr);
        QCOMPARE(p.field->text(), QStringLiteral("12 k"));
        QCOMPARE(second.text(), QStringLiteral("12 k"));

        // Enter commits with no signal; Escape cancels nothing.
        p.type(QStringLiteral("3"));
        QTest::keyClick(p.field, Qt::Key_Escape);
        QCOMPARE(text->GetValue(), QStringLiteral("12 k"));
        QTest::keyClick(p.field, Qt::Key_Enter);
        QCOMPARE(text->GetValue(), QStringLiteral("3"));

        // The singleton's request counts only for this field and a modified text.
        p.field->setText(QStringLiteral("4"));
        Plinthor::Instance().EndEdit(p.field);
        p.type(QStringLiteral("5"));
        Plinthor::Instance().EndEdit(p.other);
        QCOMPARE(text->GetValue(), QStringLiteral("3"));
        Plinthor::Instance().EndEdit(p.field);
        QCOMPARE(text->GetValue(), QStringLiteral("5"));
        p.field->setText(QStringLiteral("6"));
        p.field->endEdit();
        QCOMPARE(text->GetValue(), QStringLiteral("6"));
        QCOMPARE(finally.count(), 2);

        // A value change shows at once and keeps a select-all; a double click is eaten and selects all.
        p.field->selectAll();
        text->SetValue(QStringLiteral("from the value"), nullptr);
        QCOMPARE(p.field->selectedText(), QStringLiteral("from the value"));
        QCOMPARE(second.text(), QStringLiteral("from the value"));
        p.field->deselect();
        QTest::mouseDClick(p.field, Qt::LeftButton, Qt::NoModifier, QPoint(8, p.field->height() / 2));
        QCOMPARE(p.field->selectedText(), QStringLiteral("from the value"));
    }

    void bindingStateAndDirt()
    {
        auto* selection = new values::ValueSelection;
        tree().Add(QStringLiteral("/panel/s"), selection);
        selection->AddItem(QStringLiteral("Low"), 1.0, 1, nullptr);
        selection->AddItem(QStringLiteral("High"), 2.0, 2, nullptr);
        selection->SelectKey(1, nullptr);
        auto* number = addNumber(3.0, 0.0, 10.0);
        Panel p;
        QVERIFY(p.field->SetValueBase(number));
        QVERIFY(p.field->isEnabled() && !p.field->GetDirty());
        QCOMPARE(p.field->text(), QStringLiteral("3"));
        number->SetValue(4.0, nullptr);
        QVERIFY(p.field->GetDirty());
        p.field->SetDirty(false);
        p.field->endEdit(); // no change, still a write and a mark
        QVERIFY(p.field->GetDirty());

        QVERIFY(p.field->SetText_ValuePath(QStringLiteral("/panel/s")));
        QVERIFY(!p.field->GetDirty());
        QCOMPARE(p.field->text(), QStringLiteral("Low"));
        number->SetValue(5.0, nullptr); // no longer followed
        p.type(QStringLiteral("High"));
        QTest::keyClick(p.field, Qt::Key_Return);
        QCOMPARE(selection->GetCurrentKey(), 2L);
        selection->ClearItems(nullptr);
        selection->Notify(ValueChanged, nullptr);
        QCOMPARE(p.field->text(), QStringLiteral("High")); // no current item: the text stays

        // A failed binding and a removed value leave the field unbound, enabled and with its text.
        values::BoolValue flag;
        QVERIFY(!p.field->SetValueBase(&flag));
        QVERIFY(!p.field->GetValuePtr() && p.field->isEnabled());
        QVERIFY(p.field->SetText_ValuePath(kPath));
        QVERIFY(tree().Remove(kPath));
        QVERIFY(!p.field->GetValuePtr() && p.field->isEnabled());
        QCOMPARE(p.field->text(), QStringLiteral("5"));
    }

    void unboundField()
    {
        Panel p;
        p.field->setEnabled(true);
        p.field->setValidator(new QIntValidator(10, 99, p.field));
        p.type(QStringLiteral("5"));
        QCOMPARE(p.field->styleSheet(), kRed);
        QTest::keyClicks(p.field, QStringLiteral("0"));
        QCOMPARE(p.field->styleSheet(), QString());
        p.field->ShowEdited(true);
        QTest::keyClick(p.field, Qt::Key_Backspace);
        QTest::keyClicks(p.field, QStringLiteral("1"));
        QCOMPARE(p.field->styleSheet(), QStringLiteral("QLineEdit{ color: gray; background-color: white }"));
        p.field->endEdit();
        QCOMPARE(p.field->styleSheet(), QString());

        // Each commit reads the shown text back through the factor once more.
        p.field->setValidator(nullptr);
        p.field->SetFormat(-1, -1, QString(), QString(), 10.0);
        p.field->SetNumeric(2.0);
        p.field->endEdit();
        QCOMPARE(p.field->text(), QStringLiteral("200"));

        Panel f(VCLineEdit::Frequency);
        f.field->setEnabled(true);
        f.field->SetNumeric(1500.0);
        QCOMPARE(f.field->text(), QStringLiteral("1.500 kHz"));
        f.type(QStringLiteral("2 M"));
        QTest::keyClick(f.field, Qt::Key_Return);
        QCOMPARE(f.field->GetNumeric(), 2e6);
        QCOMPARE(f.field->text(), QStringLiteral("2 MHz"));

        // Only the following type follows the application's unit.
        auto* unit = new values::StringValue(QStringLiteral("kHz"));
        tree().Add(SuffixedDouble::DefaultUnitPath(), unit);
        VCLineEdit fixed(nullptr, "a", VCLineEdit::Frequency), following(nullptr, "f", VCLineEdit::FrequencyFollowing);
        unit->SetValue(QStringLiteral("GHz"), nullptr);
        fixed.SetNumeric(2.5e9);
        following.SetNumeric(2.5e9);
        QCOMPARE(fixed.text(), QStringLiteral("2500000 kHz"));
        QCOMPARE(following.text(), QStringLiteral("2.500 GHz"));
    }

    void nanIsTracedAndPassedOn()
    {
        auto* number = addNumber(4.0, 0.0, 10.0);
        VCLineEdit field(nullptr, "level");
        QVERIFY(field.SetText_ValuePath(kPath));
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(QStringLiteral("^value = NaN , parentname :level .*vclineedit")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("NaN refused")));
        field.SetNumeric(std::numeric_limits<double>::quiet_NaN());
        QCOMPARE(number->GetValue(), 4.0);
        QCOMPARE(field.text(), QStringLiteral("4"));
    }

    void destructionCommitsWhenVisible()
    {
        auto* text = new values::StringValue;
        tree().Add(kPath, text);
        QStringList told;
        {
            Panel p;
            QVERIFY(p.field->SetText_ValuePath(kPath));
            connect(p.field, &VCLineEdit::signalTextFinallyChanged, [&told](const QString& t) { told << t; });
            p.field->setText(QStringLiteral("pending"));
            delete p.field;
        }
        QCOMPARE(text->GetValue(), QStringLiteral("pending"));
        QCOMPARE(told, QStringList{QStringLiteral("pending")});
        {
            VCLineEdit hidden(nullptr, "hidden");
            QVERIFY(hidden.SetText_ValuePath(kPath));
            hidden.setText(QStringLiteral("lost"));
        }
        QCOMPARE(text->GetValue(), QStringLiteral("pending"));
    }

    // Deleted by an observer told of a change before the field: the field never showed that change,
    // and writing its old text from the destructor would undo it.
    void deletedWhileItsValueNotifies()
    {
        struct Deleter : IObserver
        {
            void Update(Observable*, TChangeCode code) override
            {
                if (code == ValueChanged) // taken first: the destructor may write once more
                    delete std::exchange(victim, nullptr).data();
            }
            QPointer<QWidget> victim;
        } deleter;
        auto* number = addNumber(3.0, 0.0, 10.0);
        number->Attach(&deleter);
        Panel p;
        QVERIFY(p.field->SetText_ValuePath(kPath));
        deleter.victim = p.field;
        number->SetValue(7.0, nullptr);
        QVERIFY(!deleter.victim);
        QCOMPARE(number->GetValue(), 7.0);
        number->Detach(&deleter);
    }
};

QTEST_MAIN(VCLineEditTest)
#include "vclineedittest.moc"
