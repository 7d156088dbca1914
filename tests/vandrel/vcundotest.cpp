#include <vandrel/vcbutton.h>
#include <vandrel/vcundo.h>

#include <QAbstractEventDispatcher>
#include <QtTest>

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }

values::UndoRecorder& recorder() { return values::UndoRecorder::Instance(); }

// A user edit as a bound control makes it: one write inside a recording span.
template <class F>
void userEdit(F&& write)
{
    UndoRecordingControlBase control;
    GuiUndoRecordingHelper span(&control, QString());
    write();
}

values::IntValue* addInt(const QString& path, int value)
{
    auto* number = new values::IntValue(value);
    tree().Add(path, number);
    return number;
}

QStringList descriptions(const QString& basePath)
{
    const auto list = recorder().Descriptions(basePath);
    return QStringList(list.begin(), list.end());
}

VCButton* buttonOf(VCUndo& undo) { return undo.findChild<VCButton*>(undo.objectName() + QStringLiteral("_button")); }

// The intervals of the control's timers: the watchdog is its only one.
QList<int> timersOf(VCUndo& undo)
{
    QList<int> intervals;
    for (const auto& timer : QAbstractEventDispatcher::instance()->registeredTimers(&undo))
        intervals << (timer.timerType == Qt::CoarseTimer ? timer.interval : -1);
    return intervals;
}

const QList<int> watchdog{5000};

// Makes the button's selection pick an entry that no recording backs: an undo that changes nothing.
void pickStaleEntry(VCButton* button)
{
    values::ValueSelection* selection = button->GetValueSelection();
    selection->AddItem(QStringLiteral("stale"), 99, 99, nullptr);
    selection->SelectKey(99, nullptr);
}

} // namespace

class VCUndoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        tree().Clear();
        recorder().Clear();
    }

    void clicksUndoNewestFirst()
    {
        auto* mode = new values::ValueSelection;
        tree().Add(QStringLiteral("/rx/mode"), mode);
        for (long key = 1; key <= 3; ++key)
            mode->AddItem(QStringLiteral("m%1").arg(key), double(key), key, nullptr);
        auto* gain = addInt(QStringLiteral("/rx/gain"), 10);
        auto* other = addInt(QStringLiteral("/tx/gain"), 0);

        QWidget window;
        auto* modeButton = new VCButton(&window, QStringLiteral("mode"));
        QVERIFY(modeButton->SetValueSelection_ValuePath(QStringLiteral("/rx/mode")));
        auto* undo = new VCUndo(&window, "undo");
        undo->setGeometry(40, 0, 24, 24);
        undo->SetUndoRecordings_BasePath(QStringLiteral("/rx"));
        VCButton* button = buttonOf(*undo);
        QVERIFY(button);
        QCOMPARE(button->toolTip(), QStringLiteral("Undo"));
        const QImage picture = button->icon().pixmap(QSize(16, 16)).toImage();
        QCOMPARE(picture.pixelColor(7, 1), QColor(Qt::black)); // the arrow's tip
        QCOMPARE(picture.pixelColor(1, 13), QColor(0, 255, 0)); // the bar
        window.show();
        QVERIFY(!button->isEnabled()); // nothing to undo yet
        undo->setEnabled(true);
        QVERIFY(!button->isEnabled());

        QTest::mouseClick(modeButton, Qt::LeftButton);
        userEdit([&] { gain->SetValue(20, nullptr); });
        userEdit([&] { other->SetValue(1, nullptr); }); // another branch
        QTest::mouseClick(modeButton, Qt::LeftButton);
        QVERIFY(button->isEnabled());
        undo->setEnabled(false);
        QVERIFY(!button->isEnabled());
        QVERIFY(undo->isEnabled()); // only the button is switched
        undo->setEnabled(true);

        const int total = recorder().Count();
        for (int step = 0; step < 3; ++step) {
            // The items are the recordings of the branch, newest first, keyed from 1.
            const QStringList expected = descriptions(QStringLiteral("/rx"));
            QCOMPARE(button->GetItemList(), expected);
            values::ValueSelection* items = button->GetValueSelection();
            for (int i = 0; i < items->GetItemCount(); ++i) {
                QCOMPARE(items->GetItemAt(i)->GetKey(), long(i + 1));
                QCOMPARE(items->GetItemAt(i)->GetValue(), double(i + 1));
            }
            QVERIFY(button->isEnabled());
            QTest::mouseClick(button, Qt::LeftButton);
            // Exactly the newest went, and the click itself left no recording.
            QCOMPARE(descriptions(QStringLiteral("/rx")), expected.mid(1));
            QCOMPARE(recorder().Count(), total - step - 1);
            QVERIFY(timersOf(*undo).isEmpty());
        }
        QCOMPARE(mode->GetCurrentKey(), 1L);
        QCOMPARE(gain->GetValue(), 10);
        QCOMPARE(other->GetValue(), 1);
        QVERIFY(!button->isEnabled());
    }

    void watchdogGivesTheButtonBack()
    {
        auto* gain = addInt(QStringLiteral("/rx/gain"), 0);
        userEdit([&] { gain->SetValue(1, nullptr); });
        VCUndo undo(nullptr, "undo");
        undo.SetUndoRecordings_BasePath(QStringLiteral("/rx"));
        VCButton* button = buttonOf(undo);

        pickStaleEntry(button);
        QVERIFY(!button->isEnabled());
        QCOMPARE(timersOf(undo), watchdog);
        // A change of the recordings ends the watchdog at once and rebuilds the list.
        userEdit([&] { gain->SetValue(2, nullptr); });
        QVERIFY(timersOf(undo).isEmpty());
        QVERIFY(button->isEnabled());
        QCOMPARE(button->GetItemList(), descriptions(QStringLiteral("/rx")));

        // An undo that changes nothing: after 5 s the button comes back, with the list as it stands.
        QElapsedTimer elapsed;
        elapsed.start();
        pickStaleEntry(button);
        QVERIFY(!button->isEnabled());
        QTRY_VERIFY_WITH_TIMEOUT(button->isEnabled(), 8000);
        QVERIFY2(elapsed.elapsed() >= 4700, QByteArray::number(elapsed.elapsed()));
        QVERIFY(timersOf(undo).isEmpty());
        QVERIFY(button->GetItemList().contains(QStringLiteral("stale")));
        QCOMPARE(gain->GetValue(), 2);
    }

    void rebindingDropsTheFormerBranch()
    {
        auto* a = addInt(QStringLiteral("/a/x"), 0);
        auto* b = addInt(QStringLiteral("/b/x"), 0);
        userEdit([&] { a->SetValue(1, nullptr); });
        userEdit([&] { b->SetValue(1, nullptr); });
        userEdit([&] { b->SetValue(2, nullptr); });

        QWidget window;
        auto* undo = new VCUndo(&window, "undo");
        undo->SetUndoRecordings_BasePath(QStringLiteral("/a"));
        VCButton* button = buttonOf(*undo);
        const QString formerPath = button->GetValueSelection()->GetPathName();
        pickStaleEntry(button);
        QCOMPARE(timersOf(*undo), watchdog);

        undo->SetUndoRecordings_BasePath(QStringLiteral("/b"));
        QVERIFY(timersOf(*undo).isEmpty());
        QVERIFY(!tree().Find(formerPath));
        QVERIFY(button->GetValueSelection()->GetPathName() != formerPath);
        QCOMPARE(button->GetItemList(), descriptions(QStringLiteral("/b")));
        window.show();
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(b->GetValue(), 1);
        QCOMPARE(a->GetValue(), 1);

        // The control takes its selection with it when it goes.
        const QString path = button->GetValueSelection()->GetPathName();
        delete undo;
        QVERIFY(!tree().Find(path));
    }

    void selectionRemovedFromOutside()
    {
        auto* gain = addInt(QStringLiteral("/rx/gain"), 0);
        VCUndo undo(nullptr, "undo");
        undo.SetUndoRecordings_BasePath(QStringLiteral("/rx"));
        VCButton* button = buttonOf(undo);
        QVERIFY(tree().Remove(button->GetValueSelection()->GetPathName()));
        userEdit([&] { gain->SetValue(1, nullptr); }); // a notification with no list to rebuild
        undo.setEnabled(true);
        QVERIFY(!button->isEnabled());
        undo.SetUndoRecordings_BasePath(QStringLiteral("/rx"));
        QCOMPARE(button->GetItemList(), descriptions(QStringLiteral("/rx")));
        QVERIFY(button->isEnabled());
    }
};

QTEST_MAIN(VCUndoTest)
#include "vcundotest.moc"
