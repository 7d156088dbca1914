#include <vandrel/vandrel.h>

#include <QLineEdit>
#include <QToolTip>
#include <QtTest>

#include <functional>
#include <memory>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

values::DoubleNumeric* addNumber(const QString& path, double value = 5.0)
{
    auto* number = new values::DoubleNumeric(value, 0.0, 10.0, 1.0);
    tree().Add(path, number);
    return number;
}

QWidget* frameOf(const QWidget* control)
{
    return control->findChild<QWidget*>(QStringLiteral("vandrel_value_status_frame"), Qt::FindDirectChildrenOnly);
}

// Every decoration anywhere under \a control.
int decorations(const QWidget* control)
{
    int count = 0;
    for (const QObject* child : control->findChildren<QObject*>())
        count += child->objectName().startsWith(QStringLiteral("vandrel_value_status")) ? 1 : 0;
    return count;
}

QString shownToolTip(QWidget* control)
{
    QHelpEvent event(QEvent::ToolTip, QPoint(2, 2), control->mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(control, &event);
    const QString text = QToolTip::text();
    QToolTip::hideText();
    return text;
}

// One control class of the library: how to make it and bind it by path to a value of the kind \a add makes.
struct Row
{
    const char* name;
    std::function<QWidget*()> make;
    std::function<bool(QWidget*, const QString&)> bind;
    std::function<void(const QString&)> add;
    bool ownStatus; // false: the control's inner widgets are the observers and show it, not the control
};

template <class C, class... Args>
std::function<QWidget*()> maker(Args... args)
{
    return [args...] { return new C(nullptr, args...); };
}

template <class C>
std::function<bool(QWidget*, const QString&)> binder(bool (C::*bind)(const QString&))
{
    return [bind](QWidget* c, const QString& p) { return (static_cast<C*>(c)->*bind)(p); };
}

void addSelection(const QString& path)
{
    auto* selection = new values::ValueSelection;
    selection->AddItem(QStringLiteral("AM"), 1000.0, 10, nullptr);
    selection->AddItem(QStringLiteral("FM"), 2000.0, 20, nullptr);
    tree().Add(path, selection);
}

void addMulti(const QString& path)
{
    auto* multi = new values::StringMultiSelection(0);
    multi->AddItem(1, QStringLiteral("a"), true);
    tree().Add(path, multi);
}

const std::vector<Row>& rows()
{
    const auto number = [](const QString& p) { addNumber(p); };
    const auto boolean = [](const QString& p) { tree().Add(p, new values::BoolValue(true)); };
    const auto text = [](const QString& p) { tree().Add(p, new values::StringValue(QStringLiteral("t"))); };
    static const std::vector<Row> list = {
        {"VCButton", maker<VCButton>(QStringLiteral("b")), binder(&VCButton::SetValueSelection_ValuePath), addSelection, true},
        {"VCButtonCombo", maker<VCButtonCombo>(QStringLiteral("b"), true, false),
         binder(&VCButtonCombo::SetValueSelection_ValuePath), addSelection, false},
        {"VCButtonGroup", maker<VCButtonGroup>("g"), binder(&VCButtonGroup::SetValueSelection_ValuePath), addSelection, true},
        {"VCCheckBox", maker<VCCheckBox>("c"), binder(&VCCheckBox::Set_ValuePath), boolean, true},
        {"VCComboBoxClassic", maker<VCComboBoxClassic>("c"), binder(&VCComboBoxClassic::SetValueSelection_ValuePath),
         addSelection, true},
        {"VCComboBoxButtonStyle", maker<VCComboBoxButtonStyle>("c", true, true),
         binder(&VCComboBoxButtonStyle::SetValueSelection_ValuePath), addSelection, true},
        {"VCCoordEdit", maker<VCCoordEdit>("c"), binder(&VCCoordEdit::SetLatitude_ValuePath), number, true},
        {"VCDateTimeEdit", maker<VCDateTimeEdit>("d"), binder(&VCDateTimeEdit::SetDateTime_ValuePath), number, true},
        {"VCLabel", maker<VCLabel>("l", 0u),
         [](QWidget* c, const QString& p) { return static_cast<VCLabel*>(c)->SetText_ValuePath(p, true); }, number, true},
        {"VCLED", maker<VCLED>("l", true), binder(&VCLED::SetBool_ValuePath), boolean, true},
        {"VCLineEdit", maker<VCLineEdit>("l"), binder(&VCLineEdit::SetText_ValuePath), text, true},
        {"VCMeasurementWidget", [] { return new VCMeasurementWidget(nullptr, VCMeasurementWidget::Level); },
         binder(&VCMeasurementWidget::SetValueTreePath),
         [=](const QString& p) {
             text(p + QStringLiteral("/NAME"));
             number(p + QStringLiteral("/VALUE"));
             boolean(p + QStringLiteral("/INVALID"));
             text(p + QStringLiteral("/UNIT"));
         },
         false},
        {"VCMenuBar",
         [] {
             auto* bar = new VCMenuBar(nullptr, "m");
             bar->addAction(QStringLiteral("plain"));
             return bar;
         },
         [](QWidget* c, const QString& p) { return static_cast<VCMenuBar*>(c)->SetSelection_ValuePath(0, p, "AM", "FM"); },
         addSelection, true},
        {"VCMultipleCheck", maker<VCMultipleCheck>("m"), binder(&VCMultipleCheck::SetCheckedStringVector_ValuePath), addMulti,
         true},
        {"VCNumericFloatSpin", maker<VCNumericFloatSpin>("n"), binder(&VCNumericFloatSpin::SetNumeric_ValuePath), number, true},
        {"VCOneOfButtonCombo", maker<VCOneOfButtonCombo>("o", true), binder(&VCOneOfButtonCombo::SetSecondSelection_ValuePath),
         addSelection, false},
        {"VCPopupMenu", maker<VCPopupMenu>("p"), binder(&VCPopupMenu::SetValue1Selection_String_ValuePath), addMulti, true},
        {"VCScrollBar", maker<VCScrollBar>("s"), binder(&VCScrollBar::Set_ValuePath), number, true},
        {"VCSelectionPopup", maker<VCSelectionPopup>("p"), binder(&VCSelectionPopup::SetFirstSelection_ValuePath),
         addSelection, true},
        {"VCSlider", maker<VCSlider>("s"), binder(&VCSlider::SetNumeric_ValuePath), number, true},
        {"VCSpinSelectionBox", maker<VCSpinSelectionBox>("s"), binder(&VCSpinSelectionBox::SetValueSelection_ValuePath),
         addSelection, true},
        {"VCTextEdit", [] { return new VCTextEdit(nullptr); }, binder(&VCTextEdit::SetText_ValuePath), text, true},
    };
    return list;
}

} // namespace

class ValueStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { vandrel::SetValueStatusShown(true); }
    void cleanup()
    {
        vandrel::SetValueStatusShown(false);
        tree().Clear();
    }

    // What a removal shows, that it leaves every promised property alone, and that a restore clears it.
    // The undo button removes its own value as it goes; in a window being deleted no frame may be made.
    void windowDeletedWithAnUndoButton()
    {
        auto* window = new QWidget;
        auto* undo = new VCUndo(window, "undo");
        undo->SetUndoRecordings_BasePath(QStringLiteral("/r"));
        auto* field = new QLineEdit(window);
        window->show();
        field->setFocus();
        delete window;
        QCoreApplication::processEvents();
    }

    void removeAndRestore()
    {
        addNumber(QStringLiteral("/r/volume"), 4.0);
        VCSlider slider(nullptr, "volume");
        slider.setOrientation(Qt::Horizontal);
        slider.setToolTip(QStringLiteral("Volume"));
        QVERIFY(slider.SetNumeric_ValuePath(QStringLiteral("/r/volume")));
        const QObjectList childrenBefore = slider.children();
        const QSize hintBefore = slider.sizeHint();
        QSignalSpy changes(&slider, &QSlider::valueChanged);

        tree().Remove(QStringLiteral("/r/volume"));
        QCOMPARE(vandrel::ValueStatusText(&slider), QStringLiteral("/r/volume: removed"));
        QTRY_VERIFY(frameOf(&slider));
        QVERIFY(!frameOf(&slider)->isHidden());
        QCOMPARE(frameOf(&slider)->geometry(), slider.rect());
        QCOMPARE(slider.toolTip(), QStringLiteral("Volume"));
        QVERIFY(slider.isEnabled());
        QCOMPARE(slider.value(), 4);
        QCOMPARE(slider.sizeHint(), hintBefore);
        QCOMPARE(changes.count(), 0);
        slider.resize(300, 40);
        slider.show();
        QVERIFY(QTest::qWaitForWindowExposed(&slider));
        QCOMPARE(frameOf(&slider)->geometry(), QRect(0, 0, 300, 40));
        QCOMPARE(shownToolTip(&slider), QStringLiteral("Volume\n/r/volume: removed"));
        // Input still reaches the control through the frame.
        QTest::mouseClick(&slider, Qt::LeftButton, {}, QPoint(290, 20));
        QVERIFY(slider.value() > 4);

        addNumber(QStringLiteral("/r/volume"), 2.0);
        QVERIFY(slider.SetNumeric_ValuePath(QStringLiteral("/r/volume")));
        QCOMPARE(vandrel::ValueStatusText(&slider), QString());
        QObjectList childrenAfter = slider.children();
        childrenAfter.removeAll(slider.findChild<QObject*>(QStringLiteral("qtooltip_label"))); // Qt's, not ours
        QCOMPARE(childrenAfter, childrenBefore);
        QCOMPARE(slider.value(), 2);
    }

    void notFoundDisabledAndDestroyed()
    {
        VCSlider slider(nullptr, "x");
        QVERIFY(!slider.SetNumeric_ValuePath(QStringLiteral("/r/x")));
        QCOMPARE(vandrel::ValueStatusText(&slider), QStringLiteral("/r/x: not found"));
        QTRY_VERIFY(frameOf(&slider));
        tree().Add(QStringLiteral("/r/flag"), new values::BoolValue(true));
        QVERIFY(!slider.SetNumeric_ValuePath(QStringLiteral("/r/flag"))); // another kind
        QCOMPARE(vandrel::ValueStatusText(&slider), QStringLiteral("/r/flag: not found"));

        // A box tries a boolean, then a selection, at one path: only both failing is "not found".
        addSelection(QStringLiteral("/r/band"));
        VCCheckBox box(nullptr, "band");
        QVERIFY(box.Set_ValuePath(QStringLiteral("/r/band")));
        QCOMPARE(vandrel::ValueStatusText(&box), QString());
        QVERIFY(box.children().isEmpty() || !frameOf(&box));

        values::DoubleNumeric* gain = addNumber(QStringLiteral("/r/gain"));
        QVERIFY(slider.SetNumeric_ValuePath(QStringLiteral("/r/gain")));
        QCOMPARE(vandrel::ValueStatusText(&slider), QString());
        gain->SetState(Disabled);
        QCOMPARE(vandrel::ValueStatusText(&slider), QStringLiteral("/r/gain: disabled"));
        QVERIFY(!frameOf(&slider));
        QVERIFY(!slider.isEnabled());
        gain->SetState(Enabled);
        QCOMPARE(vandrel::ValueStatusText(&slider), QString());
        QVERIFY(slider.findChildren<QObject*>(QStringLiteral("vandrel_value_status_filter")).isEmpty());

        // A value of the application's own, bound by pointer, destroyed under the control.
        auto* own = new values::DoubleNumeric(3.0, 0.0, 10.0, 1.0);
        QVERIFY(slider.SetNumericValue(own));
        QCOMPARE(vandrel::ValueStatusText(&slider), QString());
        delete own;
        QCOMPARE(vandrel::ValueStatusText(&slider), QStringLiteral("(no path): removed"));
        QTRY_VERIFY(frameOf(&slider));
    }

    // One lost value among several shows alone, and rebinding that slot elsewhere clears it.
    void oneOfSeveral()
    {
        addNumber(QStringLiteral("/p/lat"), 10.0);
        addNumber(QStringLiteral("/p/lon"), 20.0);
        VCCoordEdit edit(nullptr, "pos");
        QVERIFY(edit.SetLatitude_ValuePath(QStringLiteral("/p/lat")));
        QVERIFY(edit.SetLongitude_ValuePath(QStringLiteral("/p/lon")));
        tree().Remove(QStringLiteral("/p/lon"));
        QCOMPARE(vandrel::ValueStatusText(&edit), QStringLiteral("/p/lon: removed"));
        QVERIFY(!edit.SetLatitude_ValuePath(QStringLiteral("/p/none")));
        QCOMPARE(vandrel::ValueStatusText(&edit), QStringLiteral("/p/lon: removed\n/p/none: not found"));
        QVERIFY(edit.SetLatitude_ValuePath(QStringLiteral("/p/lat")));
        QCOMPARE(vandrel::ValueStatusText(&edit), QStringLiteral("/p/lon: removed"));
        addNumber(QStringLiteral("/p/lon2"));
        QVERIFY(edit.SetLongitude_ValuePath(QStringLiteral("/p/lon2")));
        QCOMPARE(vandrel::ValueStatusText(&edit), QString());
        QVERIFY(!frameOf(&edit));
    }

    void switchingOffTakesAllAway()
    {
        VCSlider a(nullptr, "a");
        VCLineEdit b(nullptr, "b");
        a.SetNumeric_ValuePath(QStringLiteral("/none/a"));
        b.SetText_ValuePath(QStringLiteral("/none/b"));
        QTRY_VERIFY(frameOf(&a) && frameOf(&b));
        vandrel::SetValueStatusShown(false);
        QVERIFY(!vandrel::IsValueStatusShown());
        QCOMPARE(decorations(&a) + decorations(&b), 0);
        QCOMPARE(vandrel::ValueStatusText(&a), QString());
        a.SetNumeric_ValuePath(QStringLiteral("/none/c"));
        QCOMPARE(decorations(&a), 0);
    }

    // Every control class: with the display off nothing appears; on, a bad path shows on the control
    // (or its inner widgets), and rebinding after a removal clears what the removal showed.
    void everyControl_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("shown");
        for (int i = 0; i < int(rows().size()); ++i) {
            QTest::newRow(qPrintable(QStringLiteral("%1 off").arg(QLatin1String(rows()[i].name)))) << i << false;
            QTest::newRow(qPrintable(QStringLiteral("%1 on").arg(QLatin1String(rows()[i].name)))) << i << true;
        }
    }
    void everyControl()
    {
        QFETCH(int, row);
        QFETCH(bool, shown);
        const Row& r = rows()[row];
        vandrel::SetValueStatusShown(shown);
        const std::unique_ptr<QWidget> control(r.make());
        control->setToolTip(QStringLiteral("own"));
        const QString path = QStringLiteral("/e/v");
        r.add(path);
        r.bind(control.get(), path);
        const int childrenBound = control->children().size();
        for (const QString& under : tree().PathsUnder(path))
            tree().Remove(under);
        QCOMPARE(decorations(control.get()) > 0, shown);
        r.bind(control.get(), QStringLiteral("/e/none"));
        if (shown && r.ownStatus)
            QCOMPARE(vandrel::ValueStatusText(control.get()), QStringLiteral("/e/none: not found"));
        QCOMPARE(decorations(control.get()) > 0, shown);
        r.add(path);
        r.bind(control.get(), path);
        QCOMPARE(decorations(control.get()), 0);
        QCOMPARE(vandrel::ValueStatusText(control.get()), QString());
        QCOMPARE(control->toolTip(), QStringLiteral("own"));
        QCOMPARE(control->children().size(), childrenBound);
    }

    // Decorated controls and values going in either order.
    void teardown()
    {
        auto* slider = new VCSlider(nullptr, "s");
        addNumber(QStringLiteral("/t/a"));
        slider->SetNumeric_ValuePath(QStringLiteral("/t/a"));
        tree().Remove(QStringLiteral("/t/a"));
        delete slider;

        VCLineEdit edit(nullptr, "e");
        tree().Add(QStringLiteral("/t/b"), new values::StringValue(QStringLiteral("x")));
        edit.SetText_ValuePath(QStringLiteral("/t/b"));
        edit.setEnabled(false);
        tree().Clear();
        QCOMPARE(vandrel::ValueStatusText(&edit), QStringLiteral("/t/b: removed"));
        QVERIFY(!edit.isEnabled());
    }
};

QTEST_MAIN(ValueStatusTest)
#include "valuestatustest.moc"
