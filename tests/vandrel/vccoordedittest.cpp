#include <vandrel/vccoordedit.h>

#include <plinthor/plinthorapp.h>

#include <QtTest>

#include <QMenu>

#include "observercounter.h"

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }
values::ValueSelection* positionFormat() { return Plinthor::Instance().GetPositionFormat(); }

values::DoubleNumeric* addNumber(const QString& path, double value, double minimum = -1000, double maximum = 1000)
{
    auto* number = new values::DoubleNumeric(value, minimum, maximum);
    tree().Add(path, number);
    return number;
}

// A field that counts the notifications it is given, by source.
class CountingCoordEdit : public VCCoordEdit
{
public:
    using VCCoordEdit::VCCoordEdit;
    void Update(Observable* source, TChangeCode code) override
    {
        if (code == ValueChanged)
            valueChangedFrom << source;
        VCCoordEdit::Update(source, code);
    }
    bool bind(const QString& lat, const QString& lon) { return SetLatitude_ValuePath(lat) && SetLongitude_ValuePath(lon); }
    QList<Observable*> valueChangedFrom;
};

void typeAndReturn(QLineEdit* edit, const QString& text)
{
    edit->selectAll();
    QTest::keyClicks(edit, text);
    QTest::keyClick(edit, Qt::Key_Return);
}

void chooseFromContextMenu(QWidget* edit, int format)
{
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), edit->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(edit, &event);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QAction* action = menu->actions().value(format);
    QVERIFY(action);
    QCOMPARE(action->data().toInt(), format);
    QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(action).center());
    QTRY_VERIFY(!QApplication::activePopupWidget());
}

} // namespace

class VCCoordEditTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { tree().Clear(); }

    void construction()
    {
        positionFormat()->SelectKey(RT90, nullptr);
        VCCoordEdit edit(nullptr, "position", 12.0, 34.0);
        QCOMPARE(edit.objectName(), QStringLiteral("position"));
        QCOMPARE(edit.toolTip(), QStringLiteral("position"));
        // Bound from the start to the application's format, which is enabled.
        QVERIFY(edit.isEnabled() && positionFormat()->IsAttached(&edit) && !edit.isModified());
        QCOMPARE(edit.getFormat(), RT90);
        // The two numbers are not a position.
        QCOMPARE(edit.GetLatitude(), 0.0);
        QCOMPARE(edit.GetLongitude(), 0.0);
        VCCoordEdit unnamed;
        QVERIFY(unnamed.objectName().isEmpty() && unnamed.toolTip().isEmpty());
    }

    void showsFollowsAndWritesTheValues()
    {
        auto* lat = addNumber(QStringLiteral("/lat"), 59.330231);
        auto* lon = addNumber(QStringLiteral("/lon"), 18.059196);
        CountingCoordEdit edit(nullptr, "a", 0, 0);
        CountingCoordEdit follower(nullptr, "b", 0, 0);
        QVERIFY(edit.bind(QStringLiteral("/lat"), QStringLiteral("/lon")));
        QVERIFY(follower.bind(QStringLiteral("/lat"), QStringLiteral("/lon")));
        QCOMPARE(edit.text(), QStringLiteral("59.330231° N, 18.059196° E"));
        lat->SetValue(-33.9249, nullptr);
        lon->SetValue(18.4241, nullptr);
        QCOMPARE(edit.text(), QStringLiteral("33.924900° S, 18.424100° E"));
        QCOMPARE(edit.GetLatitude(), -33.9249);
        // A setter of the field changes the field, not the values.
        edit.SetLatitude(1.0);
        QCOMPARE(edit.GetLatitude(), 1.0);
        QCOMPARE(lat->GetValue(), -33.9249);

        edit.valueChangedFrom.clear();
        Counter watcher;
        watcher.watch(lat);
        watcher.watch(lon);
        edit.SetFormat(SweRef99);
        typeAndReturn(&edit, QStringLiteral("E 674032 N 6580822"));
        QCOMPARE(watcher.count(ValueChanged), 2);
        QVERIFY(std::abs(lat->GetValue() - 59.330231) < 1e-5);
        QVERIFY(std::abs(lon->GetValue() - 18.059196) < 1e-5);
        // The writer is not told of its own write; the other field follows.
        QVERIFY(edit.valueChangedFrom.isEmpty());
        QCOMPARE(follower.text(), QStringLiteral("N: 6580822 E: 674032"));
        // Refused text writes the held position again, which is no change.
        typeAndReturn(&edit, QStringLiteral("not a place"));
        QCOMPARE(edit.text(), QStringLiteral("N: 6580822 E: 674032"));
        QCOMPARE(watcher.count(ValueChanged), 2);

        // A position pasted from another field is written like a typed one.
        positionFormat()->SelectKey(GeoDecimal, nullptr);
        VCCoordEdit source(nullptr, "source", 0, 0);
        source.SetLatitude(-33.9249);
        source.SetLongitude(18.4241);
        source.slotCopy2Clipboard();
        follower.slotPasteClipboard();
        QCOMPARE(lat->GetValue(), -33.9249);
        QCOMPARE(lon->GetValue(), 18.4241);
    }

    void unmodifiedTextWritesNothing()
    {
        auto* lat = addNumber(QStringLiteral("/lat"), 10.123456789);
        auto* lon = addNumber(QStringLiteral("/lon"), 20.0);
        QWidget window;
        auto* edit = new CountingCoordEdit(&window, "pos", 0, 0);
        auto* other = new QLineEdit(&window);
        other->move(0, 40);
        QVERIFY(edit->bind(QStringLiteral("/lat"), QStringLiteral("/lon")));
        window.show();
        QApplication::setActiveWindow(&window);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        Counter watcher;
        watcher.watch(lat);
        watcher.watch(lon);
        edit->setFocus();
        QTRY_VERIFY(edit->hasFocus());
        QTest::keyClick(edit, Qt::Key_Return);
        other->setFocus();
        QTRY_VERIFY(!edit->hasFocus());
        QCOMPARE(watcher.count(ValueChanged), 0);
        QCOMPARE(lat->GetValue(), 10.123456789);

        // Typed text is taken when the focus leaves.
        edit->setFocus();
        QTRY_VERIFY(edit->hasFocus());
        edit->selectAll();
        QTest::keyClicks(edit, QStringLiteral("-10.5 -20.25"));
        other->setFocus();
        QTRY_VERIFY(!edit->hasFocus());
        QCOMPARE(lat->GetValue(), -10.5);
        QCOMPARE(lon->GetValue(), -20.25);
    }

    void failedBindings()
    {
        auto* lat = addNumber(QStringLiteral("/lat"), 5.0);
        tree().Add(QStringLiteral("/text"), new values::StringValue(QStringLiteral("x")));
        VCCoordEdit edit(nullptr, "pos", 0, 0);
        QVERIFY(edit.SetLatitude_ValuePath(QStringLiteral("/lat")));
        QVERIFY(!edit.SetLatitude_ValuePath(QStringLiteral("/missing")));
        QVERIFY(!edit.SetLatitude_ValuePath(QStringLiteral("/text")));
        QVERIFY(!edit.SetLongitude_ValuePath(QStringLiteral("/text")));
        // A failed coordinate binding keeps the former; rebinding lets go of it.
        QVERIFY(lat->IsAttached(&edit));
        lat->SetValue(6.0, nullptr);
        QCOMPARE(edit.GetLatitude(), 6.0);
        auto* other = addNumber(QStringLiteral("/other"), 7.0);
        QVERIFY(edit.SetLatitude_ValuePath(QStringLiteral("/other")));
        QVERIFY(!lat->IsAttached(&edit) && other->IsAttached(&edit));
        QCOMPARE(edit.GetLatitude(), 7.0);

        // A failed format binding leaves none: its own choice goes nowhere.
        QVERIFY(!edit.SetFormat_ValuePath(QStringLiteral("/text")));
        QVERIFY(!edit.SetFormat_ValuePath(QStringLiteral("/missing")));
        QVERIFY(!positionFormat()->IsAttached(&edit));
        positionFormat()->SelectKey(Utm, nullptr);
        QCOMPARE(edit.getFormat(), GeoDecimal);
        edit.slotChangeFormatRT90();
        QCOMPARE(edit.getFormat(), RT90);
        QCOMPARE(positionFormat()->GetCurrentKey(), long(Utm));
    }

    void fieldsShareTheApplicationFormat()
    {
        QWidget window;
        auto* a = new CountingCoordEdit(&window, "a", 0, 0);
        auto* b = new CountingCoordEdit(&window, "b", 0, 0);
        b->move(0, 40);
        a->resize(300, 30);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        a->valueChangedFrom.clear();
        b->valueChangedFrom.clear();

        chooseFromContextMenu(a, UtmRef);
        QCOMPARE(a->getFormat(), UtmRef);
        QCOMPARE(b->getFormat(), UtmRef);
        QCOMPARE(positionFormat()->GetCurrentKey(), long(UtmRef));
        // The chooser is not told of its own write, the other field once.
        QVERIFY(a->valueChangedFrom.isEmpty());
        QCOMPARE(b->valueChangedFrom, QList<Observable*>{positionFormat()});

        positionFormat()->SelectKey(Geo, nullptr);
        QCOMPARE(a->getFormat(), Geo);
        QCOMPARE(b->getFormat(), Geo);
        b->slotChangeFormatRT90();
        QCOMPARE(a->getFormat(), RT90);
        QCOMPARE(positionFormat()->GetCurrentKey(), long(RT90));
    }

    void formatSlots()
    {
        const char* const slotNames[] = {"slotChangeFormatGeoDecimal", "slotChangeFormatGeo", "slotChangeFormatGeoNoFrac",
                                         "slotChangeFormatUtm",        "slotChangeFormatUtmRef", "slotChangeFormatRT90",
                                         "slotChangeFormatSweRef99"};
        VCCoordEdit edit(nullptr, "pos", 0, 0);
        edit.SetLatitude(59.330231);
        edit.SetLongitude(18.059196);
        // Backwards, so that every slot changes the format; called by name, as an application connects them.
        for (int format = SweRef99; format >= GeoDecimal; --format) {
            QVERIFY(QMetaObject::invokeMethod(&edit, slotNames[format]));
            QCOMPARE(int(edit.getFormat()), format);
            QCOMPARE(positionFormat()->GetCurrentKey(), long(format));
            QCOMPARE(edit.text(), basecontrols::CoordText::Format(59.330231, 18.059196, CoordFormat(format)));
        }
        // slotSetFormat takes the number; a number that is no format changes nothing.
        edit.slotSetFormat(Utm);
        edit.slotSetFormat(7);
        edit.slotSetFormat(-1);
        QCOMPARE(edit.getFormat(), Utm);
        QCOMPARE(positionFormat()->GetCurrentKey(), long(Utm));
    }

    void ownFormatValue()
    {
        auto* number = addNumber(QStringLiteral("/format"), double(Utm), 0, 100);
        VCCoordEdit edit(nullptr, "pos", 0, 0);
        QVERIFY(edit.SetFormat_ValuePath(QStringLiteral("/format")));
        QCOMPARE(edit.getFormat(), Utm);
        QVERIFY(!positionFormat()->IsAttached(&edit) && number->IsAttached(&edit));
        positionFormat()->SelectKey(Geo, nullptr); // no longer reaches this field
        QCOMPARE(edit.getFormat(), Utm);

        Counter watcher;
        watcher.watch(number);
        number->SetValue(6, nullptr);
        QCOMPARE(edit.getFormat(), SweRef99);
        QCOMPARE(watcher.count(ValueChanged), 1); // the number written back is the same: no change
        // A fraction is cut off, and the format written back.
        number->SetValue(2.9, nullptr);
        QCOMPARE(edit.getFormat(), GeoNoFrac);
        QCOMPARE(number->GetValue(), 2.0);
        number->SetValue(42, nullptr);
        QCOMPARE(edit.getFormat(), GeoNoFrac);
        edit.SetFormat(UtmRef);
        QCOMPARE(number->GetValue(), double(UtmRef));

        // A selection of the application's own.
        auto* selection = new values::ValueSelection;
        for (long key = 0; key < 7; ++key)
            selection->AddItem(QString::number(key), double(key), key, nullptr);
        selection->SelectKey(RT90, nullptr);
        tree().Add(QStringLiteral("/myFormat"), selection);
        QVERIFY(edit.SetFormat_ValuePath(QStringLiteral("/myFormat")));
        QCOMPARE(edit.getFormat(), RT90);
        selection->SelectKey(Utm, nullptr);
        QCOMPARE(edit.getFormat(), Utm);
        positionFormat()->SelectKey(GeoDecimal, nullptr);
        edit.slotChangeFormatGeo();
        QCOMPARE(selection->GetCurrentKey(), long(Geo));
        QCOMPARE(positionFormat()->GetCurrentKey(), long(GeoDecimal));
    }

    void stateOfEveryBindingCounts()
    {
        auto* lat = addNumber(QStringLiteral("/lat"), 1.0);
        VCCoordEdit edit(nullptr, "pos", 0, 0);
        QVERIFY(edit.SetLatitude_ValuePath(QStringLiteral("/lat")));
        // The format selection disables the whole field.
        positionFormat()->SetState(Disabled);
        QVERIFY(!edit.isEnabled());
        positionFormat()->SetState(Enabled);
        QVERIFY(edit.isEnabled());
        lat->SetState(Disabled);
        QVERIFY(!edit.isEnabled());
        lat->SetState(Enabled);
        QVERIFY(edit.isEnabled());

        // A removed latitude is let go: the field keeps its look and writes only the longitude.
        auto* lon = addNumber(QStringLiteral("/lon"), 2.0);
        QVERIFY(edit.SetLongitude_ValuePath(QStringLiteral("/lon")));
        QVERIFY(tree().Remove(QStringLiteral("/lat")));
        QVERIFY(edit.isEnabled());
        QCOMPARE(edit.GetLatitude(), 1.0);
        typeAndReturn(&edit, QStringLiteral("3 4"));
        QCOMPARE(lon->GetValue(), 4.0);
        QCOMPARE(edit.GetLatitude(), 3.0);

        // A value bound while Disabled disables the field at once.
        addNumber(QStringLiteral("/disabled"), 0.0)->SetState(Disabled);
        QVERIFY(edit.SetLatitude_ValuePath(QStringLiteral("/disabled")));
        QVERIFY(!edit.isEnabled());
    }

    void destructionDetaches()
    {
        auto* lat = addNumber(QStringLiteral("/lat"), 1.0);
        auto* number = addNumber(QStringLiteral("/format"), 0.0, 0, 10);
        const int formatObservers = positionFormat()->ObserverCount();
        {
            VCCoordEdit edit(nullptr, "pos", 0, 0);
            VCCoordEdit other(nullptr, "other", 0, 0);
            QVERIFY(edit.SetLatitude_ValuePath(QStringLiteral("/lat")));
            QVERIFY(other.SetFormat_ValuePath(QStringLiteral("/format")));
            QCOMPARE(positionFormat()->ObserverCount(), formatObservers + 1);
        }
        QCOMPARE(lat->ObserverCount() + number->ObserverCount(), 0);
        QCOMPARE(positionFormat()->ObserverCount(), formatObservers);
    }

    void coloursFollowTheApplication()
    {
        QWidget window;
        auto* edit = new VCCoordEdit(&window, "pos", 0, 0);
        edit->actAsLabel();
        QVERIFY(edit->isReadOnly());
        const QPalette original = QApplication::palette();
        QPalette changed = original;
        changed.setColor(QPalette::Window, QColor(200, 10, 20));
        QApplication::setPalette(changed);
        QTRY_COMPARE(edit->palette().color(QPalette::Base), QColor(200, 10, 20));
        QApplication::setPalette(original);
        QTRY_COMPARE(edit->palette().color(QPalette::Base), original.color(QPalette::Window));

        edit->EnableContextMenu(false);
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5));
        QApplication::sendEvent(edit, &event);
        QVERIFY(!QApplication::activePopupWidget());
    }
};

QTEST_MAIN(VCCoordEditTest)
#include "vccoordedittest.moc"
