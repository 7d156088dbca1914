#include <vandrel/vcbutton.h>

#include <QAbstractEventDispatcher>
#include <QLineEdit>
#include <QtTest>

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }

// A selection of items keyed 1, 2, ... named by \a names; the first one is current.
values::ValueSelection* addSelection(const QString& path, const QStringList& names)
{
    auto* selection = new values::ValueSelection;
    tree().Add(path, selection);
    long key = 1;
    for (const QString& name : names) {
        selection->AddItem(name, double(key), key, nullptr);
        ++key;
    }
    return selection;
}

// Counts the writes that reach a value, and those made while a user edit was being recorded.
class WriteWatcher : public IObserver
{
public:
    explicit WriteWatcher(values::ValueBase* value)
        : m_pValue(value)
    {
        value->Attach(this);
    }
    ~WriteWatcher() override { m_pValue->Detach(this); }
    void Update(Observable*, TChangeCode code) override
    {
        if (code != ValueChanged)
            return;
        ++writes;
        recordedWrites += values::UndoRecorder::Instance().IsRecording() ? 1 : 0;
    }
    int writes = 0;
    int recordedWrites = 0;

private:
    values::ValueBase* m_pValue;
};

class Callback : public IButtonClickCallback
{
public:
    bool OnButtonClicked(VCButton* button) override
    {
        ++calls;
        lastButton = button;
        return allow;
    }
    bool allow = false;
    int calls = 0;
    VCButton* lastButton = nullptr;
};

QPixmap filled(const QColor& colour)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(colour);
    return pixmap;
}

QImage solid(const QColor& colour) { return filled(colour).toImage(); }
QImage shown(const QAbstractButton& button) { return button.icon().pixmap(QSize(16, 16)).toImage(); }
bool hasTimers(QObject* object) { return !QAbstractEventDispatcher::instance()->registeredTimers(object).isEmpty(); }
int recordingsUnder(const QString& basePath) { return int(values::UndoRecorder::Instance().Descriptions(basePath).size()); }

const char* const crossXpm[] = {"4 4 2 1", "x c #0000ff", ". c None", "x..x", ".xx.", ".xx.", "x..x"};

} // namespace

class VCButtonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
    }

    void clicksCycleAndRecordOneEditEach()
    {
        auto* mode = addSelection(QStringLiteral("/rx/mode"), {"AM", "FM", "USB"});
        QWidget window;
        auto* button = new VCButton(&window, QStringLiteral("mode"));
        QVERIFY(!button->isEnabled());
        QVERIFY(button->SetValueSelection_ValuePath(QStringLiteral("/rx/mode")));
        QVERIFY(button->isEnabled());
        QCOMPARE(button->property("itemList").toStringList(), (QStringList{"AM", "FM", "USB"}));
        window.show();
        WriteWatcher watcher(mode);
        QSignalSpy toggled(button, &VCButton::ButtonToggled);

        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(mode->GetCurrentKey(), 2L);
        // Without a repeat interval a press starts no timer.
        QTest::mousePress(button, Qt::LeftButton);
        QVERIFY(!hasTimers(button));
        QTest::mouseRelease(button, Qt::LeftButton);
        QCOMPARE(mode->GetCurrentKey(), 3L);
        QTest::keyClick(button, Qt::Key_Space); // wraps after the last item
        QCOMPARE(mode->GetCurrentKey(), 1L);
        QCOMPARE(button->property("currentText").toString(), QStringLiteral("AM"));
        QCOMPARE(watcher.writes, 3);
        QCOMPARE(watcher.recordedWrites, 3); // each write stood inside a user edit's span
        QCOMPARE(recordingsUnder(QStringLiteral("/rx")), 3);
        QCOMPARE(values::UndoRecorder::Instance().Descriptions(QStringLiteral("/rx")).front(),
                 QStringLiteral("/rx/mode: USB \u2192 AM"));
        QCOMPARE(toggled.count(), 0); // only a checkable button reports toggling

        // A change from elsewhere is followed, not written back, and the next click goes on from it.
        mode->SelectKey(2, nullptr);
        QCOMPARE(watcher.writes, 4);
        button->setCheckable(true);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(mode->GetCurrentKey(), 3L);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(toggled.count(), 2);
        QCOMPARE(toggled.at(0).at(0).toBool(), true);
        QCOMPARE(toggled.at(1).at(0).toBool(), false);
    }

    void unboundClicksChangeOnlyThePicture()
    {
        addSelection(QStringLiteral("/rx/mode"), {"AM", "FM"});
        VCButton button(nullptr, QStringLiteral("free"));
        button.SetDefaultPicture(filled(Qt::gray));
        button.SetSpecialPicture(1, filled(Qt::red), true);
        button.show();
        QSignalSpy clicked(&button, &QAbstractButton::clicked);
        QTest::mouseClick(&button, Qt::LeftButton); // disabled while unbound
        QCOMPARE(clicked.count(), 0);
        button.setEnabled(true);
        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(clicked.count(), 1);
        QCOMPARE(shown(button), solid(Qt::gray));

        // Bound, then the value goes: the button keeps its items and cycles its pictures alone.
        QVERIFY(button.SetValueSelection_ValuePath(QStringLiteral("/rx/mode")));
        QCOMPARE(shown(button), solid(Qt::red));
        QVERIFY(tree().Remove(QStringLiteral("/rx/mode")));
        QVERIFY(button.isEnabled());
        QVERIFY(button.GetCurrentText().isEmpty());
        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(shown(button), solid(Qt::gray));
        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(shown(button), solid(Qt::red));
        // No span was left open: an application write afterwards is not recorded.
        auto* level = new values::IntValue(1);
        tree().Add(QStringLiteral("/rx/level"), level);
        level->SetValue(2, nullptr);
        QCOMPARE(values::UndoRecorder::Instance().Count(), 0);
    }

    void pictures_data()
    {
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<QString>("picture");
        QTest::addColumn<bool>("down");
        QTest::newRow("special, down") << QList<int>{1} << "red" << true;
        QTest::newRow("special from xpm, up") << QList<int>{2} << "cross" << false;
        QTest::newRow("default keeps down") << QList<int>{1, 3} << "default" << true;
        QTest::newRow("default keeps up") << QList<int>{2, 3} << "default" << false;
        QTest::newRow("special releases") << QList<int>{1, 3, 2} << "cross" << false;
    }
    void pictures()
    {
        QFETCH(QList<int>, keys);
        QFETCH(QString, picture);
        const QMap<QString, QImage> images{
            {"red", solid(Qt::red)}, {"cross", QPixmap(crossXpm).toImage()}, {"default", solid(Qt::gray)}};

        auto* mode = addSelection(QStringLiteral("/m"), {"one", "two", "three"});
        mode->SelectKey(2, nullptr);
        VCButton button(nullptr, QStringLiteral("m"));
        QVERIFY(button.SetValueSelection_ValuePath(QStringLiteral("/m")));
        button.SetDefaultPicture(filled(Qt::gray));
        QVERIFY(button.SetSpecialPicture(1, filled(Qt::blue), false));
        QVERIFY(button.SetSpecialPicture(1, filled(Qt::red), true)); // replaces the first
        QVERIFY(button.SetSpecialPicture(2, crossXpm, false));
        QCOMPARE(shown(button), images.value("cross")); // the current item's picture wins at once

        WriteWatcher watcher(mode);
        for (int key : keys)
            mode->SelectKey(key, nullptr);
        QCOMPARE(shown(button), images.value(picture));
        QTEST(button.isDown(), "down");
        QCOMPARE(watcher.writes, keys.size()); // following the value writes nothing back
    }

    void callbackCanVeto()
    {
        auto* mode = addSelection(QStringLiteral("/m"), {"off", "on"});
        VCButton button(nullptr, QStringLiteral("m"));
        QVERIFY(button.SetValueSelection_ValuePath(QStringLiteral("/m")));
        button.setCheckable(true);
        button.show();
        Callback callback;
        button.SetButtonClickCallback(&callback);
        QSignalSpy toggled(&button, &VCButton::ButtonToggled);

        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(callback.calls, 1);
        QCOMPARE(callback.lastButton, &button);
        QCOMPARE(mode->GetCurrentKey(), 1L);
        QCOMPARE(toggled.count(), 0);
        QCOMPARE(values::UndoRecorder::Instance().Count(), 0);
        callback.allow = true;
        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(mode->GetCurrentKey(), 2L);
        QCOMPARE(toggled.count(), 1);
        button.SetButtonClickCallback(nullptr);
        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(callback.calls, 2);
        QCOMPARE(mode->GetCurrentKey(), 1L);
    }

    void noButtonModeIsAPicture()
    {
        auto* mode = addSelection(QStringLiteral("/m"), {"off", "on"});
        VCButton button(nullptr, QStringLiteral("m"), true);
        button.SetSpecialPicture(1, filled(Qt::red), true);
        button.SetSpecialPicture(2, filled(Qt::green), true);
        QVERIFY(button.SetValueSelection_ValuePath(QStringLiteral("/m")));
        button.show();
        WriteWatcher watcher(mode);
        Callback callback;
        callback.allow = true;
        button.SetButtonClickCallback(&callback);
        QSignalSpy clicked(&button, &QAbstractButton::clicked);

        QTest::mousePress(&button, Qt::LeftButton);
        QVERIFY(!button.isDown());
        QTest::mouseRelease(&button, Qt::LeftButton);
        QTest::keyClick(&button, Qt::Key_A); // every key released over it is a click
        QCOMPARE(clicked.count(), 2);
        QCOMPARE(callback.calls, 2);
        QCOMPARE(watcher.writes, 0);
        mode->SelectKey(2, nullptr);
        QCOMPARE(shown(button), solid(Qt::green));
        QVERIFY(!button.isDown());

        button.IsNoButton() = false; // the flag is the caller's to change
        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(mode->GetCurrentKey(), 1L);
        QVERIFY(button.isDown());
    }

    void heldButtonRepeats_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<int>("interval");
        QTest::newRow("mouse, setAutoRepeat") << "mouse" << 0;
        QTest::newRow("mouse, SetRepeaterTime") << "mouse" << 150;
        QTest::newRow("space key") << "space" << 0;
        QTest::newRow("return key") << "return" << 0;
    }
    void heldButtonRepeats()
    {
        QFETCH(QString, input);
        QFETCH(int, interval);
        auto* mode = addSelection(QStringLiteral("/m"), {"a", "b", "c"});
        VCButton button(nullptr, QStringLiteral("m"));
        QVERIFY(button.SetValueSelection_ValuePath(QStringLiteral("/m")));
        if (interval)
            button.SetRepeaterTime(interval);
        else
            button.setAutoRepeat(true);
        interval = interval ? interval : 100;
        button.show();

        QElapsedTimer sincePress;
        QVector<qint64> clickTimes;
        connect(&button, &QAbstractButton::clicked, this, [&] { clickTimes << sincePress.elapsed(); });
        const bool mouse = input == QLatin1String("mouse");
        const Qt::Key key = input == QLatin1String("space") ? Qt::Key_Space : Qt::Key_Return;
        sincePress.start();
        mouse ? QTest::mousePress(&button, Qt::LeftButton) : QTest::keyPress(&button, key);
        // A key's animated click comes first, at 100 ms; then the repeat ticks.
        const int ticksFrom = mouse ? 0 : 1;
        QTRY_VERIFY_WITH_TIMEOUT(clickTimes.size() >= ticksFrom + 4, 5000);
        const QVector<qint64> ticks = clickTimes.mid(ticksFrom);
        mouse ? QTest::mouseRelease(&button, Qt::LeftButton) : QTest::keyRelease(&button, key);

        if (!mouse)
            QVERIFY2(clickTimes.first() < 450, QByteArray::number(clickTimes.first()));
        // The repeat timer starts as the 500 ms delay ends. Coarse timers may fire 5 % early; the upper
        // slack is for a busy machine.
        QVERIFY2(ticks.first() >= 450 + interval, QByteArray::number(ticks.first()));
        const double meanGap = double(ticks.last() - ticks.first()) / (ticks.size() - 1);
        QVERIFY2(meanGap >= 0.9 * interval && meanGap <= 3.0 * interval, QByteArray::number(meanGap));

        // Released: no timer is left to click again, and every click moved the value as one edit.
        QVERIFY(!hasTimers(&button));
        const int clicks = clickTimes.size();
        QCOMPARE(clicks, ticks.size() + 1); // the release click, or the key's animated one
        QCOMPARE(mode->GetCurrentKey(), long(1 + clicks % 3));
        QCOMPARE(recordingsUnder(QStringLiteral("/m")), clicks);
    }

    void repeatEnds_data()
    {
        QTest::addColumn<bool>("byFocusLoss");
        QTest::newRow("focus loss") << true;
        QTest::newRow("disabled") << false;
    }
    void repeatEnds()
    {
        QFETCH(bool, byFocusLoss);
        addSelection(QStringLiteral("/m"), {"a", "b"});
        QWidget window;
        auto* button = new VCButton(&window, QStringLiteral("m"));
        auto* other = new QLineEdit(&window);
        other->move(40, 0);
        QVERIFY(button->SetValueSelection_ValuePath(QStringLiteral("/m")));
        button->SetSpecialPicture(1, filled(Qt::red), true);
        button->SetSpecialPicture(2, filled(Qt::green), true);
        button->setAutoRepeat(true);
        if (!byFocusLoss)
            button->setFocusPolicy(Qt::NoFocus); // so that disabling it is no loss of focus too
        window.show();
        QApplication::setActiveWindow(&window);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        if (byFocusLoss)
            button->setFocus();

        QSignalSpy clicked(button, &QAbstractButton::clicked);
        QTest::mousePress(button, Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(clicked.count() >= 1, 3000);
        if (byFocusLoss) {
            other->setFocus();
            QTRY_VERIFY(other->hasFocus());
            QVERIFY(button->isDown()); // the interrupted press gave way to the item's own look
        } else {
            button->setEnabled(false);
        }
        QVERIFY(!hasTimers(button));
        QTest::mouseRelease(button, Qt::LeftButton);
    }

    void stateItemsAndText()
    {
        auto* mode = addSelection(QStringLiteral("/rx/mode"), {"AM", "FM"});
        auto* power = new values::BoolValue(true);
        tree().Add(QStringLiteral("/rx/power"), power);
        VCButton button(nullptr, QStringLiteral("mode"));
        QVERIFY(!button.SetValueSelection_ValuePath(QStringLiteral("/rx/power"))); // not a selection
        QVERIFY(button.SetValueSelection_ValuePath(QStringLiteral("/rx/mode")));
        QVERIFY(button.SetState_ValuePath(QStringLiteral("/rx/power")));
        button.show();

        // Whichever value's state changed last decides.
        power->SetState(Disabled);
        QVERIFY(!button.isEnabled());
        mode->SetState(Disabled);
        mode->SetState(Enabled);
        QVERIFY(button.isEnabled());

        // Items added later take part; a cleared list keeps the picture until items come back.
        button.SetSpecialPicture(3, filled(Qt::green), false);
        button.SetSpecialPicture(1, filled(Qt::red), false);
        mode->AddItem(QStringLiteral("USB"), 3, 3, nullptr);
        mode->SelectKey(3, nullptr);
        QCOMPARE(shown(button), solid(Qt::green));
        mode->ClearItems(nullptr);
        QCOMPARE(shown(button), solid(Qt::green));
        QVERIFY(button.GetItemList().isEmpty());
        mode->AddItem(QStringLiteral("AM"), 1, 1, nullptr);
        mode->AddItem(QStringLiteral("FM"), 2, 2, nullptr);
        QCOMPARE(shown(button), solid(Qt::red));

        // A button with text shows the raw name of the item it moved to.
        QTest::mouseClick(&button, Qt::LeftButton);
        QVERIFY(button.text().isEmpty()); // icon only
        button.setToolButtonStyle(Qt::ToolButtonTextOnly);
        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(button.text(), QStringLiteral("AM"));

        // A failed rebinding lets go of the old selection and keeps the look.
        QVERIFY(!button.SetValueSelection_ValuePath(QStringLiteral("/rx/none")));
        QVERIFY(!mode->IsAttached(&button));
        QCOMPARE(button.text(), QStringLiteral("AM"));
    }

    void buddyModeShowsAnArrow()
    {
        VCButton button(nullptr, QStringLiteral("b"));
        button.setText(QStringLiteral("text"));
        button.SetBuddyMode(true);
        QVERIFY(button.text().isEmpty());
        const QImage arrow = shown(button);
        QCOMPARE(arrow.size(), QSize(11, 8));
        QCOMPARE(arrow.pixelColor(5, 5), QColor(Qt::black));
        QCOMPARE(arrow.pixelColor(1, 2).alpha(), 0);
        button.SetBuddyMode(false);
        QCOMPARE(shown(button), arrow);
    }
};

QTEST_MAIN(VCButtonTest)
#include "vcbuttontest.moc"
