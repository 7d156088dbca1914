#include <vandrel/vandrel.h>

#include <QLabel>
#include <QLayout>
#include <QPixmapCache>
#include <QtTest>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

QPixmap shown(const QLabel* label)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return label->pixmap();
#else
    return label->pixmap(Qt::ReturnByValue);
#endif
}

// The lamp's picture, reduced to what tells one lamp from another: its size, the rim colour, the
// highlight, the bright spot, and a corner that must stay transparent.
QString lamp(const VCLED& led)
{
    const QPixmap pix = shown(led.findChild<QLabel*>(QStringLiteral("LEDPict") + led.objectName().mid(3)));
    if (pix.isNull())
        return QStringLiteral("none");
    const QImage image = pix.toImage();
    const int o = image.width() == 16 ? 4 : 0; // the large lamps hold the disc in their centre
    return QStringLiteral("%1x%2 %3 %4 %5 %6")
        .arg(image.width())
        .arg(image.height())
        .arg(image.pixelColor(o + 4, o + 5).name(), image.pixelColor(o + 2, o + 2).name(),
             image.pixelColor(o + 3, o + 3).name())
        .arg(image.pixelColor(0, 0).alpha());
}

const QString kRed8 = QStringLiteral("8x8 #820000 #ff0000 #ffff00 0");
const QString kGray8 = QStringLiteral("8x8 #a9a9a9 #bbbbbb #dddddd 0");
const QString kGray16 = QStringLiteral("16x16 #a9a9a9 #bbbbbb #dddddd 0");

} // namespace

class VCLEDTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        tree().Add(QStringLiteral("/b"), new values::BoolValue(true));
        tree().Add(QStringLiteral("/i"), new values::IntValue(2));
        tree().Add(QStringLiteral("/t"), new values::StringValue(QStringLiteral("Power")));
    }
    void cleanup()
    {
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
    }

    void construction()
    {
        QWidget host;
        auto* led = new VCLED(&host, "x", false);
        QCOMPARE(led->objectName(), QStringLiteral("LEDx"));
        QCOMPARE(led->toolTip(), QStringLiteral("x"));
        QVERIFY(!led->isEnabled());
        auto* text = led->findChild<QLabel*>(QStringLiteral("LEDTextx"));
        auto* pict = led->findChild<QLabel*>(QStringLiteral("LEDPictx"));
        QVERIFY(text && pict);
        QCOMPARE(text->toolTip(), QStringLiteral("LED"));
        QCOMPARE(led->layout()->indexOf(pict), 0); // the lamp stands left of its text
        QCOMPARE(lamp(*led), QStringLiteral("none"));
        led->setObjectName(QStringLiteral("y"));
        QCOMPARE(text->objectName(), QStringLiteral("LEDTexty"));
        QCOMPARE(pict->objectName(), QStringLiteral("LEDPicty"));
        led->SetText(QStringLiteral("Mains"));
        QCOMPARE(text->text(), QStringLiteral("Mains"));
    }

    void colourIndex_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("expected");
        QTest::newRow("0 gray") << 0 << kGray16;
        QTest::newRow("1 red") << 1 << QStringLiteral("16x16 #820000 #ff0000 #ffff00 0");
        QTest::newRow("2 orange") << 2 << QStringLiteral("16x16 #ffa500 #ffa500 #ffff00 0");
        QTest::newRow("3 green") << 3 << QStringLiteral("16x16 #008200 #00ff00 #ffff00 0");
        QTest::newRow("7 gray") << 7 << kGray16;
        QTest::newRow("-1 gray") << -1 << kGray16;
        QTest::newRow("INT_MIN gray") << INT_MIN << kGray16;
    }

    void colourIndex()
    {
        QFETCH(int, index);
        QFETCH(QString, expected);
        VCLED led(nullptr, "c", false);
        QVERIFY(led.SetColorIndex_ValuePath(QStringLiteral("/i")));
        auto* value = dynamic_cast<values::IntValue*>(tree().Find(QStringLiteral("/i")));
        value->SetValue(index, nullptr);
        QCOMPARE(lamp(led), expected);
        // Dropped from the cache, a picture is made again.
        QPixmapCache::clear();
        value->SetValue(index == 1 ? 2 : 1, nullptr);
        value->SetValue(index, nullptr);
        QCOMPARE(lamp(led), expected);
    }

    void booleanAndOwnPictures()
    {
        VCLED led(nullptr, "b", false);
        QVERIFY(led.SetBool_ValuePath(QStringLiteral("/b")));
        QVERIFY(led.isEnabled());
        auto* value = dynamic_cast<values::BoolValue*>(tree().Find(QStringLiteral("/b")));
        QCOMPARE(lamp(led), kRed8);
        value->SetValue(false, nullptr);
        QCOMPARE(lamp(led), kGray8);

        QPixmap blue(9, 9);
        blue.fill(Qt::blue);
        led.SetTruePix(blue);
        QCOMPARE(lamp(led), kGray8); // dark: the true picture waits
        value->SetValue(true, nullptr);
        QCOMPARE(lamp(led), QStringLiteral("9x9 #0000ff #0000ff #0000ff 255"));
        // The application's picture never replaces the shared one in the cache.
        QPixmap cached;
        QVERIFY(QPixmapCache::find(QStringLiteral("LED_True"), &cached));
        QCOMPARE(cached.size(), QSize(8, 8));

        led.SetFalsePix(QPixmap()); // stored as it is: the lamp shows nothing while dark
        QCOMPARE(lamp(led), QStringLiteral("9x9 #0000ff #0000ff #0000ff 255"));
        value->SetValue(false, nullptr);
        QCOMPARE(lamp(led), QStringLiteral("none"));
    }

    // The lamp's two bindings replace each other, and the clearing comes before the lookup.
    void bindingsExcludeEachOther()
    {
        VCLED led(nullptr, "e", false);
        auto* flag = dynamic_cast<values::BoolValue*>(tree().Find(QStringLiteral("/b")));
        auto* index = dynamic_cast<values::IntValue*>(tree().Find(QStringLiteral("/i")));
        QVERIFY(led.SetBool_ValuePath(QStringLiteral("/b")));
        QVERIFY(led.SetColorIndex_ValuePath(QStringLiteral("/i")));
        QCOMPARE(lamp(led), QStringLiteral("16x16 #ffa500 #ffa500 #ffff00 0"));
        flag->SetValue(false, nullptr); // no longer followed
        QCOMPARE(lamp(led), QStringLiteral("16x16 #ffa500 #ffa500 #ffff00 0"));

        // No boolean: the own pictures show the false one, until the index changes again.
        QPixmap mark(9, 9);
        mark.fill(Qt::magenta);
        led.SetFalsePix(mark);
        QCOMPARE(lamp(led), QStringLiteral("9x9 #ff00ff #ff00ff #ff00ff 255"));
        index->SetValue(3, nullptr);
        QCOMPARE(lamp(led), QStringLiteral("16x16 #008200 #00ff00 #ffff00 0"));

        QVERIFY(led.SetBool_ValuePath(QStringLiteral("/b")));
        QCOMPARE(lamp(led), QStringLiteral("9x9 #ff00ff #ff00ff #ff00ff 255"));
        index->SetValue(1, nullptr);
        QCOMPARE(lamp(led), QStringLiteral("9x9 #ff00ff #ff00ff #ff00ff 255"));

        // A wrong path leaves neither: no change of either value reaches the lamp.
        QVERIFY(!led.SetColorIndex_ValuePath(QStringLiteral("/t")));
        flag->SetValue(true, nullptr);
        index->SetValue(2, nullptr);
        QCOMPARE(lamp(led), QStringLiteral("9x9 #ff00ff #ff00ff #ff00ff 255"));
        QVERIFY(!led.SetBool_ValuePath(QStringLiteral("/i")));
    }

    void textValue()
    {
        VCLED led(nullptr, "t", false);
        auto* label = led.findChild<QLabel*>(QStringLiteral("LEDTextt"));
        QVERIFY(led.SetText_ValuePath(QStringLiteral("/t")));
        QCOMPARE(label->text(), QStringLiteral("Power"));
        auto* text = dynamic_cast<values::StringValue*>(tree().Find(QStringLiteral("/t")));
        text->SetValue(QStringLiteral("Störung"), nullptr);
        QCOMPARE(label->text(), QStringLiteral("Störung"));
        // The text never enables the lamp, nor disables it.
        QVERIFY(!led.isEnabled());
        text->SetState(Disabled);
        text->SetState(Enabled);
        QVERIFY(!led.isEnabled());
        QVERIFY(led.SetBool_ValuePath(QStringLiteral("/b")));
        text->SetState(Disabled);
        QVERIFY(led.isEnabled());
        QVERIFY(!led.SetText_ValuePath(QStringLiteral("/b")));
        text->SetValue(QStringLiteral("later"), nullptr);
        QCOMPARE(label->text(), QStringLiteral("Störung"));
    }

    // Removed from the tree (and so destroyed) under the lamp, then bound anew, for each of its values.
    void valueGoesUnderIt_data()
    {
        QTest::addColumn<QString>("path");
        for (const char* path : {"/b", "/i", "/t"})
            QTest::newRow(path) << QString::fromLatin1(path);
    }

    void valueGoesUnderIt()
    {
        QFETCH(QString, path);
        VCLED led(nullptr, "r", true);
        led.resize(60, 20);
        QVERIFY(led.SetText_ValuePath(QStringLiteral("/t")));
        if (path != QLatin1String("/t"))
            QVERIFY(path == QLatin1String("/b") ? led.SetBool_ValuePath(path) : led.SetColorIndex_ValuePath(path));
        const QString before = lamp(led);
        const bool enabled = led.isEnabled();
        QVERIFY(tree().Remove(path));
        QCOMPARE(lamp(led), before);
        QCOMPARE(led.isEnabled(), enabled);
        QTest::mousePress(&led, Qt::LeftButton); // nothing bound to write to any more
        tree().Add(path, path == QLatin1String("/b")   ? static_cast<values::ValueBase*>(new values::BoolValue(false))
                         : path == QLatin1String("/i") ? static_cast<values::ValueBase*>(new values::IntValue(3))
                                                       : new values::StringValue(QStringLiteral("back")));
        if (path == QLatin1String("/t"))
            QVERIFY(led.SetText_ValuePath(path));
        else
            QVERIFY(path == QLatin1String("/b") ? led.SetBool_ValuePath(path) : led.SetColorIndex_ValuePath(path));
        QCOMPARE(lamp(led), path == QLatin1String("/b")   ? kGray8
                            : path == QLatin1String("/i") ? QStringLiteral("16x16 #008200 #00ff00 #ffff00 0")
                                                          : before);
    }

    void stateOfLamp()
    {
        VCLED led(nullptr, "s", false);
        QVERIFY(led.SetColorIndex_ValuePath(QStringLiteral("/i")));
        auto* index = tree().Find(QStringLiteral("/i"));
        index->SetState(Disabled);
        QVERIFY(!led.isEnabled());
        index->SetState(Removed); // let go: the lamp keeps its state
        index->SetState(Enabled);
        QVERIFY(!led.isEnabled());
    }

    void click_data()
    {
        QTest::addColumn<bool>("clickable");
        QTest::addColumn<int>("button");
        QTest::addColumn<bool>("disabled");
        QTest::addColumn<bool>("toggles");
        QTest::newRow("left") << true << int(Qt::LeftButton) << false << true;
        QTest::newRow("right") << true << int(Qt::RightButton) << false << true;
        QTest::newRow("middle") << true << int(Qt::MiddleButton) << false << true;
        QTest::newRow("not clickable") << false << int(Qt::LeftButton) << false << false;
        QTest::newRow("disabled value") << true << int(Qt::LeftButton) << true << false;
    }

    void click()
    {
        QFETCH(bool, clickable);
        QFETCH(int, button);
        QFETCH(bool, disabled);
        QFETCH(bool, toggles);
        QWidget window;
        auto* led = new VCLED(&window, "k", clickable);
        led->resize(60, 20);
        QVERIFY(led->SetBool_ValuePath(QStringLiteral("/b")));
        auto* flag = dynamic_cast<values::BoolValue*>(tree().Find(QStringLiteral("/b")));
        if (disabled)
            flag->SetState(Disabled);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const int recordings = values::UndoRecorder::Instance().Count();
        QTest::mousePress(led, Qt::MouseButton(button));
        QTest::mouseRelease(led, Qt::MouseButton(button));
        QCOMPARE(flag->GetValue(), !toggles);
        QCOMPARE(lamp(*led), toggles ? kGray8 : kRed8); // told of its own write, it repaints
        QTest::mousePress(led, Qt::MouseButton(button));
        QCOMPARE(flag->GetValue(), true);
        QCOMPARE(lamp(*led), kRed8);
        QCOMPARE(values::UndoRecorder::Instance().Count(), recordings); // a lamp's click is no recording
    }
};

QTEST_MAIN(VCLEDTest)
#include "vcledtest.moc"
