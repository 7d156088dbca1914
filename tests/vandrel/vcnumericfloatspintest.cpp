#include <vandrel/vcnumericfloatspin.h>

#include "observercounter.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QtTest>

namespace {

const QString kRoot = QStringLiteral("/panel");
const QString kPath = QStringLiteral("/panel/gain");

int recordingCount()
{
    return int(values::UndoRecordingsToValueClient(kRoot).GetUndoRecordingDescriptions().size());
}

values::DoubleNumeric* addNumber(double value, double minimum = 0, double maximum = 100, double step = 1)
{
    auto* number = new values::DoubleNumeric(value, minimum, maximum, step);
    values::Tree::Instance()->Add(kPath, number);
    return number;
}

// Opens what a user reaches only through the screen: the field and the arrows' state.
class Spin : public VCNumericFloatSpin
{
public:
    using VCNumericFloatSpin::stepEnabled;
    using VCNumericFloatSpin::VCNumericFloatSpin;
    QLineEdit* edit() const { return lineEdit(); }
    double internal() const { return QDoubleSpinBox::value(); }
    bool bind(const QString& path = kPath)
    {
        show();
        return SetNumeric_ValuePath(path) && QTest::qWaitForWindowExposed(this);
    }
    void type(const QString& text)
    {
        selectAll();
        QTest::keyClicks(this, text);
        QTest::keyClick(this, Qt::Key_Return);
    }
    bool wheel(int delta)
    {
        const QPoint centre(width() / 2, height() / 2);
        QWheelEvent event(centre, mapToGlobal(centre), QPoint(), QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(this, &event);
        return event.isAccepted();
    }
};

} // namespace

class VCNumericFloatSpinTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        values::Tree::Instance()->Clear();
        values::UndoRecorder::Instance().Clear();
    }

    void bindingAndNotifications()
    {
        auto* number = addNumber(12, 0, 100, 0);
        Spin spin(nullptr, "gain");
        QCOMPARE(spin.edit()->objectName(), QStringLiteral("gain_Edit"));
        QVERIFY(!spin.isEnabled());
        spin.setSuffix(QStringLiteral("dB"));
        QCOMPARE(spin.suffix(), QStringLiteral(" dB"));

        QVERIFY(!spin.SetNumeric_ValuePath(QStringLiteral("/nowhere")));
        spin.SetFactor(1000);
        QVERIFY(spin.SetNumericFloat_ValuePath(kPath));
        QVERIFY(spin.isEnabled());
        QCOMPARE(spin.internal(), 12000.0);
        QCOMPARE(spin.value(), 12.0);
        QCOMPARE(spin.singleStep(), 1000.0); // no step set: one unit of the value
        QVERIFY(!spin.GetDirty()); // the first picture ran Update, yet binding leaves it clean

        number->SetRange(0, 100, 0.5);
        QCOMPARE(spin.singleStep(), 500.0);
        QVERIFY(spin.GetDirty() && !spin.GetDirtyByUser());
        number->SetState(Disabled);
        QVERIFY(!spin.isEnabled());

        // Another writer's pending number shows; its value lines the pending number up again.
        number->SetPendingValue(30, nullptr);
        QCOMPARE(spin.value(), 30.0);
        number->SetValue(40, nullptr);
        QCOMPARE(spin.value(), 40.0);
        QCOMPARE(number->GetPendingValue(), 40.0);

        bool ok = false;
        QCOMPARE(spin.GetValue(ok), 40.0);
        QVERIFY(values::Tree::Instance()->Remove(kPath));
        spin.GetValue(ok);
        QVERIFY(!ok);
        // A value deleted outside the tree is forgotten too, and input then writes nothing.
        auto* loose = new values::DoubleNumeric(1, 0, 10);
        QVERIFY(spin.SetNumericValue(loose));
        delete loose;
        spin.wheel(120);
        QCOMPARE(spin.value(), 1.0);
    }

    void scalings_data()
    {
        QTest::addColumn<QList<double>>("scales"); // factor, offset, display scaling, unit scale
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("written");
        QTest::newRow("plain") << QList<double>{1, 0, 1, 1} << "20" << "35" << 35.0;
        QTest::newRow("factor") << QList<double>{1000, 0, 1, 1} << "20000" << "2500" << 2.5;
        QTest::newRow("offset") << QList<double>{1, 5, 1, 1} << "25" << "35" << 30.0;
        QTest::newRow("display scaling") << QList<double>{1, 0, 4, 1} << "80" << "60" << 15.0;
        QTest::newRow("unit scale") << QList<double>{1, 0, 1, 10} << "2" << "7" << 70.0;
        QTest::newRow("all four") << QList<double>{2, 10, 3, 2} << "75" << "60" << 15.0;
    }
    void scalings()
    {
        QFETCH(QList<double>, scales);
        QFETCH(QString, typed);
        auto* number = addNumber(20);
        Spin spin;
        spin.SetFactor(scales[0]);
        spin.SetDisplayAdditveOffset(scales[1]);
        spin.SetDisplayScalingFactor(scales[2]);
        spin.SetUnitScale(scales[3]);
        QVERIFY(spin.bind());
        QTEST(spin.text(), "shown");
        QCOMPARE(spin.value(), 20.0);
        QCOMPARE(spin.internal(), 20.0 * scales[0]);
        spin.type(typed);
        QTEST(number->GetValue(), "written");
        QCOMPARE(spin.text(), typed);
    }

    void textMapping()
    {
        Spin spin;
        spin.SetDisplay0AsAuto(true);
        spin.SetDisplayAdditveOffset(5);
        QCOMPARE(spin.textFromValue(-5), QStringLiteral("auto"));
        QCOMPARE(spin.valueFromText(QStringLiteral("auto")), -5.0);
        spin.setDecimals(2);
        QCOMPARE(spin.textFromValue(-5), spin.locale().toString(0.0, 'f', 2)); // "0,00" in German
        // Unreadable text gives value() through the inverse scalings, not the internal number.
        spin.SetDisplayAdditveOffset(0);
        spin.SetDisplayScalingFactor(2);
        spin.setValue(10);
        QCOMPARE(spin.valueFromText(QStringLiteral("ten")), 5.0);
    }

    void validation_data()
    {
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<QString>("input");
        QTest::addColumn<bool>("forReading");
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("output");
        const int ok = QValidator::Acceptable, partly = QValidator::Intermediate, bad = QValidator::Invalid;
        QTest::newRow("typed whole") << "" << "dB" << " 12 dB " << false << ok << " 12 dB ";
        QTest::newRow("read stripped") << "" << "dB" << "12 dB" << true << ok << "12";
        QTest::newRow("suffix left out") << "" << "dB" << "12" << true << ok << "12";
        QTest::newRow("broken suffix") << "" << "dB" << "12 d" << false << bad << "12 d";
        QTest::newRow("typing strips") << "f=" << "Hz" << "f= - Hz" << false << partly << "-";
        QTest::newRow("line break") << "" << "dB" << "1\n2" << false << bad << "1\n2";
        QTest::newRow("suffix as syntax") << "" << "(s)" << "12s" << true << ok << "12";
        QTest::newRow("suffix not literal") << "" << "(s)" << "12 (s)" << false << bad << "12 (s)";
        QTest::newRow("bad expression") << "" << "(" << "12" << false << bad << "12";
        const QString oneAndAHalf = QStringLiteral("1") + QLocale().decimalPoint() + QStringLiteral("5");
        QTest::newRow("too many decimals") << "" << "" << oneAndAHalf << false << bad << oneAndAHalf;
    }
    void validation()
    {
        QFETCH(QString, prefix);
        QFETCH(QString, suffix);
        QFETCH(QString, input);
        QFETCH(bool, forReading);
        Spin spin;
        // A broken expression is reported by the field's own check as the suffix is set, then by ours.
        const char* warning = "QRegularExpressionPrivate::doMatch(): called on an invalid QRegularExpression object";
        for (int i = 0; i < (QRegularExpression(suffix).isValid() ? 0 : 2); ++i)
            QTest::ignoreMessage(QtWarningMsg, warning);
        spin.setPrefix(prefix);
        spin.setSuffix(suffix);
        int pos = 1;
        QTEST(int(spin.validate(input, pos, forReading)), "state");
        QTEST(input, "output");
        QCOMPARE(pos, 1);
    }

    void stepping_data()
    {
        QTest::addColumn<bool>("optimize");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("wheel");
        QTest::addColumn<double>("expected");
        QTest::newRow("up") << true << int(Qt::Key_Up) << 0 << 53.0;
        QTest::newRow("down") << true << int(Qt::Key_Down) << 0 << 47.0;
        QTest::newRow("page up") << true << int(Qt::Key_PageUp) << 0 << 80.0;
        QTest::newRow("wheel away") << true << 0 << 120 << 53.0;
        QTest::newRow("small wheel towards") << true << 0 << -15 << 47.0;
        QTest::newRow("plain up") << false << int(Qt::Key_Up) << 0 << 53.0;
        QTest::newRow("plain wheel") << false << 0 << -120 << 47.0;
    }
    // Three quick steps: optimised, only the pending number moves until the burst has been quiet for
    // 200 ms, then one recorded write; plain, every step is a recorded write of its own.
    void stepping()
    {
        QFETCH(bool, optimize);
        QFETCH(int, key);
        QFETCH(int, wheel);
        QFETCH(double, expected);
        auto* number = addNumber(50);
        Spin spin(nullptr, "spin", optimize);
        QVERIFY(spin.bind());
        Counter counter;
        counter.watch(number);
        QElapsedTimer sinceLastStep;
        for (int i = 0; i < 3; ++i) {
            if (key)
                QTest::keyClick(&spin, Qt::Key(key));
            else
                QVERIFY(spin.wheel(wheel));
            sinceLastStep.start();
        }
        QCOMPARE(spin.value(), expected);
        QCOMPARE(number->GetPendingValue(), expected);
        QVERIFY(spin.GetDirtyByUser());
        if (optimize) {
            QCOMPARE(counter.count(PendingValueChanged), 3);
            QCOMPARE(number->GetValue(), 50.0);
            QTRY_COMPARE(number->GetValue(), expected);
            QVERIFY2(sinceLastStep.elapsed() >= 180, qPrintable(QString::number(sinceLastStep.elapsed())));
        } else {
            QCOMPARE(number->GetValue(), expected);
            QTest::qWait(300); // the commit after the burst finds nothing to do
        }
        QCOMPARE(counter.count(ValueChanged), optimize ? 1 : 3);
        QCOMPARE(recordingCount(), optimize ? 1 : 3);
        QVERIFY(values::UndoRecordingsToValueClient(kRoot).ExecuteUndo(recordingCount()));
        QCOMPARE(spin.value(), 50.0);
    }

    void limitsAndSwitches()
    {
        auto* number = addNumber(100);
        Spin spin;
        QVERIFY(spin.bind());
        QCOMPARE(spin.stepEnabled(), QAbstractSpinBox::StepDownEnabled);
        QTest::keyClick(&spin, Qt::Key_Up);
        QCOMPARE(spin.value(), 100.0);
        // The wheel doesn't ask: the spin box goes past the limit, the value holds it.
        spin.wheel(120);
        QCOMPARE(spin.value(), 101.0);
        QCOMPARE(number->GetPendingValue(), 100.0);
        spin.setReadOnly(true);
        QVERIFY(spin.wheel(-120));
        QCOMPARE(spin.value(), 101.0);
        // Finishing the edit pulls the overshoot back to the limit.
        QTest::keyClick(&spin, Qt::Key_Return);
        QCOMPARE(spin.value(), 100.0);

        spin.EnableWrapAround(true);
        QCOMPARE(spin.stepEnabled(), QAbstractSpinBox::StepUpEnabled | QAbstractSpinBox::StepDownEnabled);
        spin.disableStep(true);
        QCOMPARE(spin.stepEnabled(), QAbstractSpinBox::StepNone);

        // Unbound with wrapping: the arrows look live, but a step does nothing.
        Spin unbound;
        unbound.EnableWrapAround(true);
        QCOMPARE(unbound.stepEnabled(), QAbstractSpinBox::StepUpEnabled | QAbstractSpinBox::StepDownEnabled);
        unbound.stepBy(3);
        QCOMPARE(unbound.value(), 0.0);
        QVERIFY(!unbound.GetDirtyByUser());
    }

    void editingFinishedClamps_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("written");
        QTest::newRow("inside") << "42" << 42.0;
        QTest::newRow("below") << "-5" << 10.0;
        QTest::newRow("above") << "150" << 90.0;
        QTest::newRow("at the limit") << "90" << 90.0;
    }
    void editingFinishedClamps()
    {
        QFETCH(QString, typed);
        QFETCH(double, written);
        auto* number = addNumber(50, 10, 90);
        Spin spin;
        QVERIFY(spin.bind());
        spin.type(typed);
        QCOMPARE(spin.value(), written);
        QCOMPARE(number->GetValue(), written);
        QVERIFY(spin.GetDirtyByUser());
        QCOMPARE(recordingCount(), 1);
    }

    // The text is shown, validated and read in the box's locale: in German "12,50" is twelve and a half.
    void commaDecimalLocale_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("written");
        QTest::addColumn<QString>("shown");
        QTest::newRow("German") << "de_DE" << "12,50" << 12.5 << "12,50";
        QTest::newRow("C") << "C" << "12.50" << 12.5 << "12.50";
        QTest::newRow("C drops the comma") << "C" << "12,50" << 100.0 << "100.00"; // 1250, clamped
    }
    void commaDecimalLocale()
    {
        QFETCH(QString, locale);
        QFETCH(QString, typed);
        QFETCH(double, written);
        QFETCH(QString, shown);
        auto* number = addNumber(50);
        Spin spin;
        spin.setLocale(QLocale(locale));
        spin.setDecimals(2);
        QVERIFY(spin.bind());
        spin.type(typed);
        QCOMPARE(number->GetValue(), written);
        QCOMPARE(spin.text(), shown);
    }

    // A factor or unit scale of zero would divide by zero: both are refused, the old one stays.
    void zeroScalesRefused()
    {
        auto* number = addNumber(2.5);
        Spin spin;
        spin.SetFactor(1000);
        QVERIFY(spin.bind());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("factor 0 refused")));
        spin.SetFactor(0);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("unit scale 0 refused")));
        spin.SetUnitScale(0);
        QCOMPARE(spin.internal(), 2500.0);
        QCOMPARE(spin.value(), 2.5);
        QTest::keyClick(&spin, Qt::Key_Up);
        QTRY_COMPARE(number->GetValue(), 3.5);
        QCOMPARE(spin.text(), QStringLiteral("3500"));
    }

    void undoSwitchedOff()
    {
        auto* number = addNumber(50);
        Spin spin;
        QVERIFY(spin.bind());
        spin.setValue(60); // the application's own call shows and writes nothing
        QCOMPARE(number->GetValue(), 50.0);
        spin.SetUndoRecordingEnabled(false);
        QTest::keyClick(&spin, Qt::Key_Up);
        QTRY_COMPARE(number->GetValue(), 61.0);
        spin.type(QStringLiteral("70"));
        QCOMPARE(number->GetValue(), 70.0);
        QCOMPARE(recordingCount(), 0);
    }
};

QTEST_MAIN(VCNumericFloatSpinTest)
#include "vcnumericfloatspintest.moc"
