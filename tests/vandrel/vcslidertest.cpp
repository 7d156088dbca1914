#include <vandrel/vcscrollbar.h>
#include <vandrel/vcslider.h>

#include <QtTest>

#include "observercounter.h"

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

values::DoubleNumeric* addNumber(const QString& path, double value, double minimum, double maximum)
{
    auto* number = new values::DoubleNumeric(value, minimum, maximum);
    tree().Add(path, number);
    return number;
}

} // namespace

class VCSliderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { tree().Clear(); }

    void construction()
    {
        VCSlider slider(nullptr, "gain");
        QCOMPARE(slider.objectName(), QStringLiteral("gain"));
        QVERIFY(!slider.isEnabled());
        QCOMPARE(slider.minimum(), 0);
        QCOMPARE(slider.maximum(), 1);

        VCScrollBar bar(nullptr, "pos");
        QCOMPARE(bar.objectName(), QStringLiteral("pos"));
        QVERIFY(!bar.isEnabled());
        QCOMPARE(bar.minimum(), 0);
        QCOMPARE(bar.maximum(), 0);
        QCOMPARE(bar.value(), 0);
    }

    // The slider writes back through a connection named by its textual signatures: code that cuts
    // it by those names must find it, and the slider then leaves the number alone.
    void writeBackConnectionHasItsTextualNames()
    {
        auto* number = addNumber(QStringLiteral("/n"), 4.0, 0.0, 10.0);
        VCSlider slider(nullptr, "n");
        QVERIFY(slider.SetNumeric_ValuePath(QStringLiteral("/n")));
        slider.setValue(6);
        QCOMPARE(number->GetValue(), 6.0);
        QVERIFY(QObject::disconnect(&slider, SIGNAL(valueChanged(int)), &slider, SLOT(InternalValueChanged(int))));
        slider.setValue(7);
        QCOMPARE(number->GetValue(), 6.0);
        QVERIFY(QObject::connect(&slider, SIGNAL(valueChanged(int)), &slider, SLOT(InternalValueChanged(int))));
        slider.setValue(8);
        QCOMPARE(number->GetValue(), 8.0);
    }

    void conversions_data()
    {
        QTest::addColumn<double>("minimum");
        QTest::addColumn<double>("maximum");
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("sliderMin");
        QTest::addColumn<int>("sliderMax");
        QTest::addColumn<int>("sliderValue");
        QTest::addColumn<int>("barMin");
        QTest::addColumn<int>("barMax");
        QTest::addColumn<int>("barValue");
        QTest::newRow("integers") << 0.0 << 10.0 << 4.0 << 0 << 10 << 4 << 0 << 10 << 4;
        QTest::newRow("half") << 0.0 << 10.0 << 2.5 << 0 << 10 << 3 << 0 << 10 << 2;
        QTest::newRow("fraction max") << 0.0 << 9.6 << 9.6 << 0 << 10 << 10 << 0 << 10 << 9;
        QTest::newRow("max below half") << 0.0 << 9.4 << 9.4 << 0 << 9 << 9 << 0 << 9 << 9;
        QTest::newRow("negative half") << -1.5 << 5.0 << -1.5 << -1 << 5 << -1 << -1 << 5 << -1;
        QTest::newRow("negative") << -2.4 << 5.0 << -2.4 << -2 << 5 << -2 << -2 << 5 << -2;
        QTest::newRow("far above the start range") << 100.0 << 30000.0 << 7000.0 << 100 << 30000 << 7000 << 100 << 30000 << 7000;
        QTest::newRow("inside") << 1.0 << 10.0 << 2.0 << 1 << 10 << 2 << 1 << 10 << 2;
        QTest::newRow("negative range") << -130.0 << -30.0 << -95.0 << -130 << -30 << -95 << -130 << -29 << -95;
        QTest::newRow("beyond int") << -1e12 << 1e12 << 1e11 << INT_MIN << INT_MAX << INT_MAX << INT_MIN << INT_MAX << INT_MAX;
    }
    void conversions()
    {
        QFETCH(double, minimum);
        QFETCH(double, maximum);
        QFETCH(double, value);
        QFETCH(int, sliderValue);
        QFETCH(int, barValue);
        auto* a = addNumber(QStringLiteral("/a"), value, minimum, maximum);
        auto* b = addNumber(QStringLiteral("/b"), value, minimum, maximum);
        Counter writesA, writesB;
        writesA.watch(a);
        writesB.watch(b);
        VCSlider slider(nullptr, "s");
        QVERIFY(slider.SetNumeric_ValuePath(QStringLiteral("/a")));
        QTEST(slider.minimum(), "sliderMin");
        QTEST(slider.maximum(), "sliderMax");
        QCOMPARE(slider.value(), sliderValue);
        VCScrollBar bar(nullptr, "b");
        QVERIFY(bar.Set_ValuePath(QStringLiteral("/b")));
        QTEST(bar.minimum(), "barMin");
        QTEST(bar.maximum(), "barMax");
        QCOMPARE(bar.value(), barValue);
        QVERIFY(slider.isEnabled());
        QVERIFY(bar.isEnabled());
        // Taking over the limits must not write the control's start position into the value; only a
        // number the control cannot show comes back as the one it shows.
        if (sliderValue == value)
            QCOMPARE(writesA.count(ValueChanged), 0);
        if (barValue == value)
            QCOMPARE(writesB.count(ValueChanged), 0);
        // A new range that leaves the number where it is writes nothing.
        const double shownA = a->GetValue(), shownB = b->GetValue();
        const int before = writesA.count(ValueChanged) + writesB.count(ValueChanged);
        a->SetRange(minimum - 1000, maximum + 1000, 1);
        b->SetRange(minimum - 1000, maximum + 1000, 1);
        QCOMPARE(a->GetValue(), shownA);
        QCOMPARE(b->GetValue(), shownB);
        QCOMPARE(writesA.count(ValueChanged) + writesB.count(ValueChanged), before);
    }

    void valueMovesAndWritesBack()
    {
        auto* a = addNumber(QStringLiteral("/a"), 0, 0, 10);
        auto* b = addNumber(QStringLiteral("/b"), 0, 0, 10);
        VCSlider slider(nullptr, "s");
        VCScrollBar bar(nullptr, "b");
        QVERIFY(slider.SetNumeric_ValuePath(QStringLiteral("/a")));
        QVERIFY(bar.Set_ValuePath(QStringLiteral("/b")));
        QSignalSpy sliderMoved(&slider, &QSlider::valueChanged);
        // A fraction shows rounded and, because the slider moved, comes back as that integer.
        a->SetValue(2.5, nullptr);
        QCOMPARE(slider.value(), 3);
        QCOMPARE(a->GetValue(), 3.0);
        b->SetValue(2.5, nullptr);
        QCOMPARE(bar.value(), 2);
        QCOMPARE(b->GetValue(), 2.0);
        QCOMPARE(sliderMoved.count(), 1);
        // A number that leaves the slider where it is writes nothing back.
        a->SetValue(3.2, nullptr);
        QCOMPARE(slider.value(), 3);
        QCOMPARE(a->GetValue(), 3.2);
        QCOMPARE(sliderMoved.count(), 1);
    }

    void rangeFollowsTheValue()
    {
        auto* a = addNumber(QStringLiteral("/a"), 5, 0, 10);
        VCSlider slider(nullptr, "s");
        QVERIFY(slider.SetNumeric_ValuePath(QStringLiteral("/a")));
        a->SetRange(2.4, 7.5, 0.1);
        QCOMPARE(slider.minimum(), 2);
        QCOMPARE(slider.maximum(), 8);
        // The setters of the old interface are empty.
        slider.setMinValue(5);
        slider.setMaxValue(6);
        QCOMPARE(slider.minimum(), 2);
        QCOMPARE(slider.maximum(), 8);
        QCOMPARE(slider.singleStep(), 1); // the value's step is not the slider's
    }

    void userInputWrites_data()
    {
        QTest::addColumn<int>("key"); // 0: a wheel turn, -1: a click on the groove
        QTest::newRow("arrow key") << int(Qt::Key_Right);
        QTest::newRow("page key") << int(Qt::Key_PageDown);
        QTest::newRow("end key") << int(Qt::Key_End);
        QTest::newRow("wheel") << 0;
        QTest::newRow("click on groove") << -1;
    }
    void userInputWrites()
    {
        // Each bound control must move exactly as its plain Qt twin does, and write what it shows.
        QFETCH(int, key);
        auto* a = addNumber(QStringLiteral("/a"), 5, 0, 20);
        auto* b = addNumber(QStringLiteral("/b"), 5, 0, 20);
        QWidget window;
        auto* slider = new VCSlider(&window, "s");
        auto* bar = new VCScrollBar(&window, "b");
        auto* plainSlider = new QSlider(&window);
        auto* plainBar = new QScrollBar(&window);
        QAbstractSlider* all[] = {slider, bar, plainSlider, plainBar};
        for (int i = 0; i < 4; ++i) {
            all[i]->setOrientation(Qt::Horizontal);
            all[i]->setGeometry(0, i * 40, 300, 30);
            all[i]->setRange(0, 20);
            all[i]->setValue(5);
        }
        QVERIFY(slider->SetNumeric_ValuePath(QStringLiteral("/a")));
        QVERIFY(bar->Set_ValuePath(QStringLiteral("/b")));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        for (QAbstractSlider* control : all) {
            if (key > 0) {
                QTest::keyClick(control, Qt::Key(key));
            } else if (key == 0) {
                const QPoint centre(control->width() / 2, control->height() / 2);
                QWheelEvent wheel(centre, control->mapToGlobal(centre), QPoint(), QPoint(0, 120), Qt::NoButton,
                                  Qt::NoModifier, Qt::NoScrollPhase, false);
                QApplication::sendEvent(control, &wheel);
            } else {
                QTest::mouseClick(control, Qt::LeftButton, Qt::NoModifier, QPoint(control->width() - 5, control->height() / 2));
            }
        }
        QVERIFY(plainSlider->value() != 5);
        QVERIFY(plainBar->value() != 5);
        QCOMPARE(slider->value(), plainSlider->value());
        QCOMPARE(bar->value(), plainBar->value());
        QCOMPARE(a->GetValue(), double(plainSlider->value()));
        QCOMPARE(b->GetValue(), double(plainBar->value()));
    }

    void bindingAndRebinding()
    {
        auto* a = addNumber(QStringLiteral("/a"), 5, 0, 20);
        auto* b = addNumber(QStringLiteral("/b"), 9, 0, 20);
        VCSlider slider(nullptr, "s");
        // Unbound, or after a failed binding, it moves only itself.
        slider.setRange(0, 10);
        slider.setValue(7);
        QVERIFY(!slider.SetNumeric_ValuePath(QStringLiteral("/missing")));
        QVERIFY(!slider.SetNumericValue(nullptr));
        slider.setValue(2);
        QCOMPARE(a->GetValue(), 5.0);
        tree().Add(QStringLiteral("/text"), new values::StringValue(QStringLiteral("x")));
        VCScrollBar bar(nullptr, "b");
        QVERIFY(!bar.Set_ValuePath(QStringLiteral("/text"))); // not a number
        QVERIFY(!bar.isEnabled());

        QVERIFY(slider.SetNumericValue(a));
        QVERIFY(a->IsAttached(&slider));
        QVERIFY(slider.SetNumeric_ValuePath(QStringLiteral("/b")));
        QVERIFY(!a->IsAttached(&slider));
        QCOMPARE(slider.value(), 9);
        a->SetValue(1, nullptr);
        QCOMPARE(slider.value(), 9);
        // A failed lookup leaves it unbound, detached, and showing what it showed.
        QVERIFY(!slider.SetNumeric_ValuePath(QStringLiteral("/none")));
        QVERIFY(!b->IsAttached(&slider));
        b->SetValue(3, nullptr);
        QCOMPARE(slider.value(), 9);
    }

    void stateFollowsTheValue()
    {
        auto* a = addNumber(QStringLiteral("/a"), 5, 0, 20);
        a->SetState(Disabled);
        VCSlider slider(nullptr, "s");
        VCScrollBar bar(nullptr, "b");
        QVERIFY(slider.SetNumeric_ValuePath(QStringLiteral("/a")));
        QVERIFY(bar.Set_ValuePath(QStringLiteral("/a")));
        QVERIFY(!slider.isEnabled());
        a->SetState(Enabled);
        QVERIFY(slider.isEnabled());
        QVERIFY(bar.isEnabled());
        a->SetState(Disabled);
        QVERIFY(!slider.isEnabled());
        a->SetState(Enabled);
        Counter watcher;
        watcher.watch(a);
        tree().Remove(QStringLiteral("/a"));
        // Removed: both let go and keep their look; moving them now touches nothing.
        QVERIFY(slider.isEnabled());
        QCOMPARE(slider.value(), 5);
        slider.setValue(6);
        bar.setValue(7);
        QCOMPARE(watcher.count(ValueChanged), 0);
    }

    void lifetimes()
    {
        auto* a = addNumber(QStringLiteral("/a"), 5, 0, 20);
        {
            VCSlider slider(nullptr, "s");
            VCScrollBar bar(nullptr, "b");
            QVERIFY(slider.SetNumeric_ValuePath(QStringLiteral("/a")));
            QVERIFY(bar.Set_ValuePath(QStringLiteral("/a")));
            QCOMPARE(a->ObserverCount(), 2);
        }
        QCOMPARE(a->ObserverCount(), 0);

        // A value the application owns and deletes without removing it first.
        auto* own = new values::DoubleNumeric(4, 0, 10);
        VCSlider slider(nullptr, "s");
        QVERIFY(slider.SetNumericValue(own));
        delete own;
        slider.setValue(7); // must not touch the deleted value
        QCOMPARE(slider.value(), 7);
    }

    void manySlidersFollowOneValue()
    {
        auto* a = addNumber(QStringLiteral("/a"), 0, 0, 1000);
        std::vector<std::unique_ptr<VCSlider>> sliders;
        for (int i = 0; i < 200; ++i) {
            sliders.push_back(std::make_unique<VCSlider>());
            QVERIFY(sliders.back()->SetNumeric_ValuePath(QStringLiteral("/a")));
        }
        // One user moves one slider: every other one follows, and the value hears once.
        Counter watcher;
        watcher.watch(a);
        sliders[17]->setValue(640);
        QCOMPARE(a->GetValue(), 640.0);
        QCOMPARE(watcher.count(ValueChanged), 1);
        for (const auto& s : sliders)
            QCOMPARE(s->value(), 640);
    }
};

QTEST_MAIN(VCSliderTest)
#include "vcslidertest.moc"
