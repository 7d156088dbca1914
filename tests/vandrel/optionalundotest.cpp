// The controls that record undo only on request: off by default, one recording per user action when on.
#include <vandrel/vandrel.h>

#include <QDateTimeEdit>
#include <QtTest>

#include <functional>
#include <memory>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

int recordings()
{
    return int(values::UndoRecordingsToValueClient(QStringLiteral("/")).GetUndoRecordingDescriptions().size());
}

QString shown(const QString& path)
{
    values::ValueBase* value = tree().Find(path);
    return value ? value->GetValueString() : QStringLiteral("(gone)");
}

void mouse(QWidget* w, QEvent::Type type, QPoint at, Qt::MouseButtons held)
{
    QMouseEvent event(type, QPointF(at), QPointF(w->mapToGlobal(at)), Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(w, &event);
}

void key(QWidget* w, QEvent::Type type, Qt::Key k, bool repeat = false)
{
    QKeyEvent event(type, k, Qt::NoModifier, QString(), repeat);
    QApplication::sendEvent(w, &event);
}

// A key held down: the press, two repeats, the release.
void holdKey(QWidget* w, Qt::Key k)
{
    key(w, QEvent::KeyPress, k);
    key(w, QEvent::KeyPress, k, true);
    key(w, QEvent::KeyPress, k, true);
    key(w, QEvent::KeyRelease, k);
}

// Drags a horizontal slider-like control's handle from its left end to three quarters of its width.
bool drag(QAbstractSlider* slider)
{
    const int y = slider->height() / 2;
    mouse(slider, QEvent::MouseButtonPress, QPoint(2, y), Qt::LeftButton);
    if (!slider->isSliderDown())
        return false;
    for (int x = 20; x <= slider->width() * 3 / 4; x += 20)
        mouse(slider, QEvent::MouseMove, QPoint(x, y), Qt::LeftButton);
    mouse(slider, QEvent::MouseButtonRelease, QPoint(slider->width() * 3 / 4, y), Qt::NoButton);
    return slider->value() > slider->maximum() / 2;
}

// One control on a panel, bound to the value at path, and one complete user action on it.
struct Subject
{
    QObject* control = nullptr;
    UndoRecordingControlBase* undo = nullptr;
    std::function<bool()> act; // false when the action did not happen as meant
};

using Make = std::function<Subject(QWidget* panel)>;

template <class T>
Subject subject(T* control, std::function<bool()> act)
{
    return Subject{control, control, std::move(act)};
}

} // namespace

Q_DECLARE_METATYPE(Make)

class OptionalUndoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        tree().Clear();
        tree().Add(QStringLiteral("/n"), new values::DoubleNumeric(0, 0, 100, 1));
        tree().Add(QStringLiteral("/m"), new values::DoubleNumeric(0, 0, 100, 1));
        tree().Add(QStringLiteral("/text"), new values::StringValue(QStringLiteral("old")));
        tree().Add(QStringLiteral("/stamp"), new values::Int64Value(86400LL * 1000000));
        auto* selection = new values::ValueSelection;
        for (int i = 0; i < 6; ++i)
            selection->AddItem(QStringLiteral("item%1").arg(i), i, i, nullptr);
        selection->SelectKey(0, nullptr);
        tree().Add(QStringLiteral("/sel"), selection);
        values::UndoRecorder::Instance().Clear();
    }
    void cleanup()
    {
        UndoRecordingControlBase::SetOptionalRecordingDefault(false);
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
    }

    void oneRecordingPerAction_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<Make>("make");
        QTest::newRow("slider drag") << "/n" << Make([](QWidget* p) {
            auto* s = new VCSlider(p);
            s->setOrientation(Qt::Horizontal);
            s->SetNumeric_ValuePath(QStringLiteral("/n"));
            return subject(s, [s] { return drag(s); });
        });
        QTest::newRow("slider wheel") << "/n" << Make([](QWidget* p) {
            auto* s = new VCSlider(p);
            s->SetNumeric_ValuePath(QStringLiteral("/n"));
            return subject(s, [s] {
                QWheelEvent wheel(QPointF(5, 5), QPointF(s->mapToGlobal(QPoint(5, 5))), QPoint(), QPoint(0, 120), Qt::NoButton,
                                  Qt::NoModifier, Qt::NoScrollPhase, false);
                QApplication::sendEvent(s, &wheel);
                return s->value() > 0;
            });
        });
        QTest::newRow("scroll bar held key") << "/n" << Make([](QWidget* p) {
            auto* s = new VCScrollBar(p);
            s->Set_ValuePath(QStringLiteral("/n"));
            return subject(s, [s] {
                holdKey(s, Qt::Key_Down);
                return s->value() == 3;
            });
        });
        QTest::newRow("scroll buttons held") << "/n" << Make([](QWidget* p) {
            using F = VCScrollButtons;
            auto* b = new VCScrollButtons(p, F::ScrollButtonsTop | F::ScrollButtonsLine);
            b->setParent(p); // goes with the panel
            b->Set_ValuePath(QStringLiteral("/n"));
            return subject(b, [p] {
                auto* plus = p->findChild<VCButton*>(QStringLiteral("Move Right"));
                if (!plus)
                    return false;
                plus->setAutoRepeatDelay(10);
                plus->setAutoRepeatInterval(10);
                QTest::mousePress(plus, Qt::LeftButton);
                // Held until its repeats have stepped three times, then let go.
                for (int i = 0; i < 200 && shown(QStringLiteral("/n")).toDouble() < 3; ++i)
                    QTest::qWait(10);
                QTest::mouseRelease(plus, Qt::LeftButton);
                return shown(QStringLiteral("/n")).toDouble() >= 3;
            });
        });
        QTest::newRow("line edit commit") << "/n" << Make([](QWidget* p) {
            auto* e = new VCLineEdit(p, "edit", VCLineEdit::PlainEdit);
            e->SetText_ValuePath(QStringLiteral("/n"));
            return subject(e, [e] {
                e->selectAll();
                QTest::keyClicks(e, QStringLiteral("42"));
                QTest::keyClick(e, Qt::Key_Return);
                return shown(QStringLiteral("/n")) == QLatin1String("42");
            });
        });
        QTest::newRow("text edit commit") << "/text" << Make([](QWidget* p) {
            auto* e = new VCTextEdit(p);
            e->SetText_ValuePath(QStringLiteral("/text"));
            return subject(e, [e] {
                e->selectAll();
                QTest::keyClicks(e, QStringLiteral("new"));
                QFocusEvent out(QEvent::FocusOut, Qt::OtherFocusReason);
                QApplication::sendEvent(e, &out);
                return shown(QStringLiteral("/text")) == QLatin1String("new");
            });
        });
        QTest::newRow("selection spin held key") << "/sel" << Make([](QWidget* p) {
            auto* s = new VCSpinSelectionBox(p);
            s->SetValueSelection_ValuePath(QStringLiteral("/sel"));
            return subject(s, [s] {
                holdKey(s, Qt::Key_Up);
                return s->value() >= 3; // Qt's box may add a step of its own at the release
            });
        });
        QTest::newRow("coordinate commit") << "/n" << Make([](QWidget* p) {
            auto* e = new VCCoordEdit(p);
            e->SetLatitude_ValuePath(QStringLiteral("/n"));
            e->SetLongitude_ValuePath(QStringLiteral("/m"));
            return subject(e, [e] {
                e->selectAll();
                QTest::keyClicks(e, QStringLiteral("10.5 20.25"));
                QTest::keyClick(e, Qt::Key_Return);
                return shown(QStringLiteral("/m")) != QLatin1String("0");
            });
        });
        QTest::newRow("date held key") << "/stamp" << Make([](QWidget* p) {
            auto* e = new VCDateTimeEdit(p, "date");
            e->SetDateTime_ValuePath(QStringLiteral("/stamp"));
            return subject(e, [e] {
                const QString before = shown(QStringLiteral("/stamp"));
                holdKey(e->GetTimeEdit(), Qt::Key_Up);
                return shown(QStringLiteral("/stamp")) != before;
            });
        });
    }
    void oneRecordingPerAction()
    {
        QFETCH(QString, path);
        QFETCH(Make, make);
        const QString before = shown(path);
        // 0: as shipped; 1: switched on; 2: the application default on; 3: default on, control off.
        for (int mode = 0; mode < 4; ++mode) {
            init();
            UndoRecordingControlBase::SetOptionalRecordingDefault(mode >= 2);
            QWidget panel;
            panel.resize(300, 100);
            const Subject s = make(&panel);
            panel.show();
            QVERIFY(QTest::qWaitForWindowExposed(&panel));
            QCOMPARE(s.undo->IsUndoRecordingEnabled(), mode >= 2);
            if (mode == 1)
                s.undo->SetUndoRecordingEnabled(true);
            if (mode == 3)
                s.undo->SetUndoRecordingEnabled(false);
            QVERIFY2(s.act(), qPrintable(QStringLiteral("mode %1").arg(mode)));
            QVERIFY(shown(path) != before);
            const bool on = mode == 1 || mode == 2;
            QCOMPARE(recordings(), on ? 1 : 0);
            if (on) {
                QVERIFY(values::UndoRecordingsToValueClient(QStringLiteral("/")).ExecuteUndo(1));
                QCOMPARE(shown(path), before);
            }
            cleanup();
        }
    }

    // An observer of a drag's write deletes the slider mid-drag: the next edit elsewhere is its own.
    void deletedMidDrag()
    {
        UndoRecordingControlBase::SetOptionalRecordingDefault(true);
        QWidget panel;
        panel.resize(300, 100);
        auto* slider = new VCSlider(&panel);
        slider->setOrientation(Qt::Horizontal);
        slider->resize(300, 30);
        auto* other = new VCSlider(&panel);
        other->move(0, 50);
        QVERIFY(slider->SetNumeric_ValuePath(QStringLiteral("/n")));
        QVERIFY(other->SetNumeric_ValuePath(QStringLiteral("/m")));
        panel.show();
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        struct Deleter : IObserver
        {
            QPointer<VCSlider> target;
            void Update(Observable*, TChangeCode code) override
            {
                if (code == ValueChanged && target)
                    delete target.data();
            }
        } deleter;
        deleter.target = slider;
        ObservableOf(tree().Find(QStringLiteral("/n")))->Attach(&deleter);
        mouse(slider, QEvent::MouseButtonPress, QPoint(2, 15), Qt::LeftButton);
        mouse(slider, QEvent::MouseMove, QPoint(150, 15), Qt::LeftButton);
        QVERIFY(deleter.target.isNull());
        ObservableOf(tree().Find(QStringLiteral("/n")))->Detach(&deleter);
        QCOMPARE(recordings(), 1);
        QVERIFY(!values::UndoRecorder::Instance().IsRecording());
        QTest::keyClick(other, Qt::Key_Up);
        QCOMPARE(shown(QStringLiteral("/m")), QStringLiteral("1"));
        QCOMPARE(recordings(), 2);
        values::UndoRecordingsToValueClient all(QStringLiteral("/"));
        QVERIFY(all.ExecuteUndo(1));
        QCOMPARE(shown(QStringLiteral("/m")), QStringLiteral("0"));
        QVERIFY(shown(QStringLiteral("/n")) != QLatin1String("0")); // the drag stays, undone on its own
    }
};

QTEST_MAIN(OptionalUndoTest)
#include "optionalundotest.moc"
