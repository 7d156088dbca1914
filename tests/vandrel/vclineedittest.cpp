#include <vandrel/vclineedit.h>

#include <brevanbase/brevanbase.h>
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
#include <memory>

namespace {

const QString kRoot = QStringLiteral("/panel");
const QString kPath = QStringLiteral("/panel/x");
const QString kRed = QStringLiteral("QLineEdit{ color: white; background-color: red }");
const QString kGray = QStringLiteral("QLineEdit{ color: gray; background-color: white }");

values::Tree& tree()
{
    return *values::Tree::Instance();
}

values::DoubleNumeric* addNumber(double value, double minimum, double maximum, const QString& path = kPath)
{
    auto* number = new values::DoubleNumeric(value, minimum, maximum);
    tree().Add(path, number);
    return number;
}

// Counts the ValueChanged calls that reach the field, from the value or from the field itself.
class CountingLineEdit : public VCLineEdit
{
public:
    using VCLineEdit::VCLineEdit;
    void Update(Observable* source, TChangeCode code) override
    {
        if (code == ValueChanged)
            ++valueChanges;
        VCLineEdit::Update(source, code);
    }
    int valueChanges = 0;
};

// A field and a second widget to take the focus, in an active window, the field focused.
struct Panel
{
    explicit Panel(VCLineEdit::LineEditType type = VCLineEdit::PlainEdit)
    {
        auto* layout = new QVBoxLayout(&window);
        field = new CountingLineEdit(&window, "field", type);
        other = new QLineEdit(&window);
        layout->addWidget(field);
        layout->addWidget(other);
        window.show();
        QApplication::setActiveWindow(&window);
        if (QTest::qWaitForWindowActive(&window))
            field->setFocus();
    }
    // Hidden first, so that tearing down commits nothing more.
    ~Panel() { window.hide(); }
    // What the user does: focus the field, select all and type over it.
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

// Closes every message box that comes up, as its user would, and keeps what it said.
class BoxCloser : public QObject
{
public:
    explicit BoxCloser(QLineEdit* field)
        : m_field(field)
    {
        connect(&m_timer, &QTimer::timeout, this, &BoxCloser::poll);
        m_timer.start(5);
    }
    int count = 0;
    QString title, text, sheetWhileShown;
    int buttons = 0;

private:
    void poll()
    {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return;
        ++count;
        title = box->windowTitle();
        text = box->text();
        buttons = box->buttons().size();
        sheetWhileShown = m_field ? m_field->styleSheet() : QString();
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    }
    QPointer<QLineEdit> m_field;
    QTimer m_timer;
};

int recordingCount()
{
    return int(values::UndoRecordingsToValueClient(kRoot).GetUndoRecordingDescriptions().size());
}

} // namespace

class VCLineEditTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
    }

    void construction_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("maxLength");
        QTest::addColumn<bool>("validated");
        QTest::addColumn<bool>("factorTakes");
        const int none = QLineEdit().maxLength();
        QTest::newRow("plain") << 0 << none << false << false;
        QTest::newRow("frequency") << 1 << 20 << true << false;
        QTest::newRow("frequency kHz") << 2 << 20 << true << false;
        QTest::newRow("frequency following") << 3 << 20 << true << false;
        QTest::newRow("suffixed number") << 4 << none << false << true;
        QTest::newRow("frequency MHz") << 5 << 20 << true << true;
        QTest::newRow("frequency GHz") << 6 << 20 << true << true;
        QTest::newRow("time") << 7 << none << false << true;
        QTest::newRow("unknown number") << 12 << none << false << false;
    }
    void construction()
    {
        QFETCH(int, type);
        QFETCH(int, maxLength);
        QFETCH(bool, validated);
        QFETCH(bool, factorTakes);
        VCLineEdit field(nullptr, "Gain", VCLineEdit::LineEditType(type));
        QCOMPARE(field.objectName(), QStringLiteral("Gain"));
        QCOMPARE(field.toolTip(), QStringLiteral("Gain"));
        QVERIFY(!field.isEnabled());
        QVERIFY(!field.GetDirty());
        QVERIFY(!field.dragEnabled());
        QCOMPARE(field.maxLength(), maxLength);
        QCOMPARE(field.validator() != nullptr, validated);
        if (validated)
            QCOMPARE(field.validator()->parent(), &field);
        // The bit of value 4 of the type number decides, not whether the type has a suffix.
        QCOMPARE(field.SetFactor(1024), factorTakes);
        QCOMPARE(field.SetStringSuffix(QStringLiteral("B")), factorTakes);
        QVERIFY(!field.GetValuePtr());
    }

    void frequencyValidator()
    {
        // No sign, no exponent, one separator, one prefix letter, then H or Hz.
        Panel p(VCLineEdit::Frequency);
        p.field->setEnabled(true);
        p.type(QStringLiteral("-1,5e3 kHzx9"));
        QCOMPARE(p.field->text(), QStringLiteral("1,53 kHz"));
        p.type(QStringLiteral("123456789012345678901234"));
        QCOMPARE(p.field->text().size(), 20);
    }

    void onlyTheFollowingTypeFollowsTheUnit()
    {
        // Both start in the application's unit; only one goes on following it.
        auto* unit = new values::StringValue(QStringLiteral("kHz"));
        tree().Add(SuffixedDouble::DefaultUnitPath(), unit);
        VCLineEdit fixed(nullptr, "a", VCLineEdit::Frequency);
        VCLineEdit following(nullptr, "f", VCLineEdit::FrequencyFollowing);
        unit->SetValue(QStringLiteral("GHz"), nullptr);
        fixed.SetNumeric(2.5e9);
        following.SetNumeric(2.5e9);
        QCOMPARE(fixed.text(), QStringLiteral("2500000 kHz"));
        QCOMPARE(following.text(), QStringLiteral("2.500 GHz"));
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
        QTest::newRow("frequency, refused keys dropped") << 1 << "-12e3" << 123.0 << "123 Hz";
        QTest::newRow("frequency kHz") << 2 << "12" << 12e3 << "12 kHz";
        QTest::newRow("frequency kHz keeps kHz") << 2 << "1 MHz" << 1e6 << "1000 kHz";
        QTest::newRow("frequency following") << 3 << "2.5 k" << 2500.0 << "2.500 kHz";
        QTest::newRow("suffixed number") << 4 << "4.7k" << 4700.0 << "4.7k";
        QTest::newRow("frequency MHz") << 5 << "3" << 3e6 << "3 MHz";
        QTest::newRow("frequency GHz") << 6 << "1.5" << 1.5e9 << "1.500 GHz";
        QTest::newRow("time writes 0") << 7 << "90" << 0.0 << "1 min 30 s";
    }
    void commitByType()
    {
        QFETCH(int, type);
        QFETCH(QString, typed);
        QFETCH(double, stored);
        QFETCH(QString, shown);
        // A suffixed field never goes below 0, so its box would name 0 and not -1e12.
        auto* number = addNumber(5.0, type == 0 || type == 7 ? -1e12 : 0.0, 1e12);
        Panel p{VCLineEdit::LineEditType(type)};
        BoxCloser boxes(p.field);
        QVERIFY(p.field->SetText_ValuePath(kPath));
        QVERIFY(p.field->isEnabled());
        p.field->SetDirty(false);

        p.type(typed);
        QTest::keyClick(p.field, Qt::Key_Return);
        QCOMPARE(number->GetValue(), stored);
        QCOMPARE(p.field->text(), shown);
        QCOMPARE(p.field->GetNumeric(), stored);
        QVERIFY(p.field->GetDirty());
        QCOMPARE(boxes.count, 0);
        // The field's edits are not undo recordings.
        QCOMPARE(recordingCount(), 0);
    }

    void plainParsing_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<QString>("letters");
        QTest::addColumn<double>("factor");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("stored");
        QTest::newRow("unit cut, factor divides") << "Hz" << "" << 1000.0 << "2000 Hz" << 2.0;
        QTest::newRow("no suffix, factor skipped") << "" << "" << 1000.0 << "2000" << 2000.0;
        QTest::newRow("no unit typed") << "Hz" << "" << 10.0 << "50" << 5.0;
        QTest::newRow("factor 0 does not scale") << "dB" << "" << 0.0 << "7 dB" << 7.0;
        QTest::newRow("prefix letter scales 0") << "Hz" << "k" << 1.0 << "12kHz" << 0.0;
        QTest::newRow("suffix is case sensitive") << "Hz" << "" << 1.0 << "12 hz" << 0.0;
    }
    void plainParsing()
    {
        QFETCH(QString, suffix);
        QFETCH(QString, letters);
        QFETCH(double, factor);
        QFETCH(QString, typed);
        QFETCH(double, stored);
        auto* number = addNumber(1.0, -1e9, 1e9);
        Panel p;
        p.field->SetFormat(-1, -1, suffix, letters, factor);
        QVERIFY(p.field->SetText_ValuePath(kPath));
        p.type(typed);
        QTest::keyClick(p.field, Qt::Key_Return);
        QCOMPARE(number->GetValue(), stored);
    }

    void plainDisplay_data()
    {
        QTest::addColumn<int>("digits");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<double>("factor");
        QTest::addColumn<double>("number");
        QTest::addColumn<QString>("shown");
        QTest::newRow("width counts no point") << 3 << 2 << "dB" << 1.0 << 1.5 << " 1.50 dB";
        QTest::newRow("shortest form") << -1 << -1 << "" << 1.0 << 0.5 << "0.5";
        QTest::newRow("one of the two unset") << 3 << -1 << "" << 1.0 << 0.25 << "0.25";
        QTest::newRow("factor multiplies") << -1 << -1 << "" << 1000.0 << 2.5 << "2500";
        QTest::newRow("factor 0 does not") << -1 << -1 << "" << 0.0 << 2.5 << "2.5";
        QTest::newRow("six digits") << -1 << -1 << "V" << 1.0 << 1234567.0 << "1.23457e+06 V";
    }
    void plainDisplay()
    {
        QFETCH(int, digits);
        QFETCH(int, decimals);
        QFETCH(QString, suffix);
        QFETCH(double, factor);
        QFETCH(double, number);
        QFETCH(QString, shown);
        auto* value = addNumber(0.0, -1e9, 1e9);
        VCLineEdit field(nullptr, "f");
        QVERIFY(field.SetText_ValuePath(kPath));
        QCOMPARE(field.text(), QStringLiteral("0"));
        // The format shows from the next number on.
        field.SetFormat(digits, decimals, suffix, QString(), factor);
        QCOMPARE(field.text(), QStringLiteral("0"));
        value->SetValue(number, nullptr);
        QCOMPARE(field.text(), shown);
        QCOMPARE(value->GetValue(), number);
        QCOMPARE(field.GetNumeric(), number);
    }

    void rangeCheck_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<double>("minimum");
        QTest::addColumn<double>("maximum");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("message");
        QTest::addColumn<double>("stored");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("selfCalls"); // ValueChanged calls the field gets from the commit
        // The box takes the focus, and the focus loss tells the text that stood before the clamping.
        QTest::addColumn<QString>("told");
        const QString over = QStringLiteral("Input exceeds maximum, value set to %1.\nAllowed range from %2 to %3.");
        const QString under = QStringLiteral("Input underruns minimum, value set to %1.\nAllowed range from %2 to %3.");
        QTest::newRow("plain over") << 0 << 10.0 << 20.0 << "25" << "Input Error" << over.arg(20).arg(10).arg(20)
                                    << 20.0 << "20" << 2 << "25";
        QTest::newRow("plain under") << 0 << 10.0 << 20.0 << "5" << "Range Check Error"
                                     << under.arg(10).arg(10).arg(20) << 10.0 << "10" << 2 << "5";
        QTest::newRow("plain at maximum") << 0 << 10.0 << 20.0 << "20" << "" << "" << 20.0 << "20" << 0 << "";
        QTest::newRow("plain at minimum") << 0 << 10.0 << 20.0 << "10" << "" << "" << 10.0 << "10" << 0 << "";
        // The suffixed overrun writes with no originator, the underrun as the field itself.
        QTest::newRow("frequency over") << 1 << 1000.0 << 2000.0 << "5k" << "Input Error"
                                        << over.arg("2 kHz", "1 kHz", "2 kHz") << 2000.0 << "2 kHz" << 2 << "5 kHz";
        QTest::newRow("frequency under") << 1 << 1000.0 << 2000.0 << "500" << "Range Check Error"
                                         << under.arg("1 kHz", "1 kHz", "2 kHz") << 1000.0 << "1 kHz" << 1 << "500 Hz";
        QTest::newRow("suffixed floor is 0") << 4 << -10.0 << 100.0 << "-5" << "Range Check Error"
                                             << under.arg("0", "0", "100") << 0.0 << "0" << 1 << "-5";
        QTest::newRow("time over") << 7 << -100.0 << -1.0 << "5" << "Input Error"
                                   << over.arg(-1).arg(-100).arg(-1) << -1.0 << "-1 s" << 2 << "5 s";
    }
    void rangeCheck()
    {
        QFETCH(int, type);
        QFETCH(double, minimum);
        QFETCH(double, maximum);
        QFETCH(QString, typed);
        QFETCH(QString, title);
        QFETCH(QString, message);
        QFETCH(double, stored);
        QFETCH(QString, shown);
        QFETCH(int, selfCalls);
        QFETCH(QString, told);
        auto* number = addNumber(minimum + 1.0, minimum, maximum);
        Counter counter;
        counter.watch(number);
        Panel p{VCLineEdit::LineEditType(type)};
        QVERIFY(p.field->SetText_ValuePath(kPath));
        BoxCloser boxes(p.field);

        p.type(typed);
        p.field->valueChanges = 0;
        QSignalSpy finally(p.field, &VCLineEdit::signalTextFinallyChanged);
        QTest::keyClick(p.field, Qt::Key_Return);
        QCOMPARE(number->GetValue(), stored);
        QCOMPARE(finally.count(), told.isEmpty() ? 0 : 1);
        if (!told.isEmpty())
            QCOMPARE(finally.first().at(0).toString(), told);
        QCOMPARE(p.field->text(), shown);
        QCOMPARE(p.field->valueChanges, selfCalls);
        QCOMPARE(counter.count(ValueChanged), 1);
        QCOMPARE(p.field->styleSheet(), QString());
        QCOMPARE(boxes.count, title.isEmpty() ? 0 : 1);
        QCOMPARE(boxes.title, title);
        QCOMPARE(boxes.text, message);
        if (boxes.count) {
            QCOMPARE(boxes.sheetWhileShown, kRed);
            QCOMPARE(boxes.buttons, 1);
        }

        // Silenced, the same input clamps the same way, with no box and no red flash.
        number->SetValue(minimum + 1.0, nullptr);
        p.field->SuppressErrorMessage(true);
        p.type(typed);
        QTest::keyClick(p.field, Qt::Key_Return);
        QCOMPARE(number->GetValue(), stored);
        QCOMPARE(p.field->text(), shown);
        QCOMPARE(boxes.count, title.isEmpty() ? 0 : 1);
    }

    void focusLossAndOtherEnds()
    {
        auto* text = new values::StringValue(QStringLiteral("old"));
        tree().Add(kPath, text);
        Counter counter;
        counter.watch(text);
        Panel p(VCLineEdit::FrequencySuffix3); // the type plays no part for text
        QVERIFY(p.field->SetText_ValuePath(kPath));
        QCOMPARE(p.field->text(), QStringLiteral("old"));
        QSignalSpy finally(p.field, &VCLineEdit::signalTextFinallyChanged);

        // Focus loss commits twice: the filter's commit with the signal, then Qt's editingFinished().
        p.type(QStringLiteral("12 k"));
        p.field->valueChanges = 0;
        p.other->setFocus();
        QCOMPARE(text->GetValue(), QStringLiteral("12 k"));
        QCOMPARE(counter.count(ValueChanged), 2);
        QCOMPARE(p.field->valueChanges, 2);
        QCOMPARE(finally.count(), 1);
        QCOMPARE(finally.takeFirst().at(0).toString(), QStringLiteral("12 k"));

        // Return commits with no signal; Escape cancels nothing.
        p.type(QStringLiteral("3"));
        QTest::keyClick(p.field, Qt::Key_Escape);
        QCOMPARE(text->GetValue(), QStringLiteral("12 k"));
        QTest::keyClick(p.field, Qt::Key_Enter);
        QCOMPARE(text->GetValue(), QStringLiteral("3"));
        QCOMPARE(finally.count(), 0);

        // The singleton's request counts only for this field and a modified text.
        p.field->setText(QStringLiteral("4"));
        Plinthor::Instance().EndEdit(p.field);
        Plinthor::Instance().EndEdit(p.other);
        QCOMPARE(text->GetValue(), QStringLiteral("3"));
        p.type(QStringLiteral("5"));
        Plinthor::Instance().EndEdit(p.other);
        QCOMPARE(text->GetValue(), QStringLiteral("3"));
        Plinthor::Instance().EndEdit(p.field);
        QCOMPARE(text->GetValue(), QStringLiteral("5"));
        QCOMPARE(finally.count(), 1);

        // endEdit() always commits and tells.
        p.field->setText(QStringLiteral("6"));
        p.field->endEdit();
        QCOMPARE(text->GetValue(), QStringLiteral("6"));
        QCOMPARE(finally.count(), 2);
        QCOMPARE(recordingCount(), 0);

        // A value change shows at once, and keeps a select-all.
        p.field->selectAll();
        text->SetValue(QStringLiteral("from the value"), nullptr);
        QCOMPARE(p.field->text(), QStringLiteral("from the value"));
        QCOMPARE(p.field->selectedText(), p.field->text());
    }

    void twoFieldsOnOneText()
    {
        auto* text = new values::StringValue;
        tree().Add(kPath, text);
        Panel p;
        VCLineEdit second(nullptr, "second");
        QVERIFY(p.field->SetText_ValuePath(kPath));
        QVERIFY(second.SetText_ValuePath(kPath));
        p.type(QStringLiteral("shared"));
        QTest::keyClick(p.field, Qt::Key_Return);
        QCOMPARE(second.text(), QStringLiteral("shared"));
        text->SetValue(QStringLiteral("again"), nullptr);
        QCOMPARE(p.field->text(), QStringLiteral("again"));
        QCOMPARE(second.text(), QStringLiteral("again"));
    }

    void doubleClickSelectsAll()
    {
        Panel p;
        p.field->setEnabled(true);
        p.field->setText(QStringLiteral("hello world"));
        p.field->deselect();
        QTest::mouseDClick(p.field, Qt::LeftButton, Qt::NoModifier, QPoint(8, p.field->height() / 2));
        QCOMPARE(p.field->selectedText(), QStringLiteral("hello world"));
        QTest::keyRelease(p.field, Qt::Key_A);
        QCOMPARE(p.field->text(), QStringLiteral("hello world"));
    }

    void selection()
    {
        auto* selection = new values::ValueSelection;
        tree().Add(kPath, selection);
        selection->AddItem(QStringLiteral("Low"), 1.0, 1, nullptr);
        selection->AddItem(QStringLiteral("High"), 2.0, 2, nullptr);
        selection->SelectKey(1, nullptr);
        Panel p;
        QVERIFY(p.field->SetText_ValuePath(kPath));
        QCOMPARE(p.field->text(), QStringLiteral("Low"));
        QCOMPARE(p.field->GetValuePtr(), static_cast<values::ValueBase*>(selection));

        p.type(QStringLiteral("High"));
        QTest::keyClick(p.field, Qt::Key_Return);
        QCOMPARE(selection->GetCurrentKey(), 2L);

        // With no current item the text stays.
        selection->ClearItems(nullptr);
        selection->Notify(ValueChanged, nullptr);
        QCOMPARE(p.field->text(), QStringLiteral("High"));
    }

    void bindingAndState()
    {
        auto* number = addNumber(3.0, 0.0, 10.0);
        auto* text = new values::StringValue(QStringLiteral("t"));
        tree().Add(QStringLiteral("/panel/t"), text);
        VCLineEdit field(nullptr, "f");
        QVERIFY(field.SetValueBase(number));
        QCOMPARE(field.GetValuePtr(), static_cast<values::ValueBase*>(number));
        QVERIFY(!field.GetDirty());
        QCOMPARE(field.text(), QStringLiteral("3"));

        number->SetState(Disabled);
        QVERIFY(!field.isEnabled());
        number->SetState(Enabled);
        QVERIFY(field.isEnabled());

        // Rebinding lets go of the old value.
        QVERIFY(field.SetText_ValuePath(QStringLiteral("/panel/t")));
        QCOMPARE(field.text(), QStringLiteral("t"));
        number->SetValue(4.0, nullptr);
        QCOMPARE(field.text(), QStringLiteral("t"));

        // A failed binding leaves the field unbound with its text and state.
        QVERIFY(!field.SetText_ValuePath(QStringLiteral("/nowhere")));
        values::BoolValue flag;
        QVERIFY(!field.SetValueBase(&flag));
        QVERIFY(!field.GetValuePtr());
        QVERIFY(field.isEnabled());
        QCOMPARE(field.text(), QStringLiteral("t"));
        text->SetValue(QStringLiteral("u"), nullptr);
        QCOMPARE(field.text(), QStringLiteral("t"));

        // A removed value leaves the field unbound, enabled and with its text.
        QVERIFY(field.SetText_ValuePath(kPath));
        QVERIFY(tree().Remove(kPath));
        QVERIFY(!field.GetValuePtr());
        QVERIFY(field.isEnabled());
        QCOMPARE(field.text(), QStringLiteral("4"));
    }

    void dirtyFlag()
    {
        auto* number = addNumber(1.0, 0.0, 10.0);
        Panel p;
        QVERIFY(p.field->SetText_ValuePath(kPath));
        QVERIFY(!p.field->GetDirty());
        number->SetValue(2.0, nullptr);
        QVERIFY(p.field->GetDirty());
        p.field->SetDirty(false);
        // A commit with no change still writes and marks the field.
        p.field->endEdit();
        QVERIFY(p.field->GetDirty());
        p.field->SetDirty(false);
        p.type(QStringLiteral("7"));
        QVERIFY(p.field->GetDirty());
        p.field->SetDirty(false);
        p.field->SetText(QStringLiteral("x"));
        QVERIFY(p.field->GetDirty());
        // A value change from a source the field does not know changes nothing.
        p.field->SetDirty(false);
        values::StringValue stranger;
        p.field->Update(&stranger, ValueChanged);
        QVERIFY(!p.field->GetDirty());
        QCOMPARE(p.field->text(), QStringLiteral("x"));
    }

    void editColouring()
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
        QCOMPARE(p.field->styleSheet(), kGray);
        // Every commit goes back to the field's own sheet.
        p.field->endEdit();
        QCOMPARE(p.field->styleSheet(), QString());
    }

    void unboundNumbers()
    {
        // Each commit reads the shown text back through the factor once more.
        Panel p;
        p.field->setEnabled(true);
        p.field->SetFormat(-1, -1, QString(), QString(), 10.0);
        p.field->SetNumeric(2.0);
        QCOMPARE(p.field->text(), QStringLiteral("20"));
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

        // Never given a number, the field keeps the typed text.
        Panel t;
        t.field->setEnabled(true);
        t.type(QStringLiteral("abc"));
        QTest::keyClick(t.field, Qt::Key_Return);
        QCOMPARE(t.field->text(), QStringLiteral("abc"));
        QCOMPARE(t.field->GetNumeric(), 0.0);
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

        auto hidden = std::make_unique<VCLineEdit>(nullptr, "hidden");
        QVERIFY(hidden->SetText_ValuePath(kPath));
        hidden->setText(QStringLiteral("lost"));
        hidden.reset();
        QCOMPARE(text->GetValue(), QStringLiteral("pending"));
    }
};

QTEST_MAIN(VCLineEditTest)
#include "vclineedittest.moc"
