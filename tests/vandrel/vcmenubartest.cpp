#include <vandrel/vcmenubar.h>

#include <brevanbase/brevanbase.h>

#include <QVBoxLayout>
#include <QtTest>

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }

values::ValueSelection* addSelection(const QString& path, const QStringList& names, int current = 0)
{
    auto* s = new values::ValueSelection;
    for (int i = 0; i < names.size(); ++i)
        s->AddItem(names[i], i, 100 + i, nullptr);
    s->SelectIndex(current, nullptr);
    tree().Add(path, s);
    return s;
}

QStringList traces;
QtMessageHandler previousHandler = nullptr;
void collectTraces(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (context.category && QByteArray(context.category).startsWith("vandrel."))
        traces << message;
    else
        previousHandler(type, context, message);
}

struct Bar : VCMenuBar
{
    explicit Bar(QWidget* parent) : VCMenuBar(parent, "bar") {}
    using VCMenuBar::m_tuples;
};

// A click on the entry at \a place, as the user makes it.
void click(QMenuBar& bar, int place)
{
    QAction* action = bar.actions().at(place);
    QVERIFY(!bar.actionGeometry(action).isEmpty());
    QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, bar.actionGeometry(action).center());
}

const int kCtrlK = static_cast<int>(Qt::CTRL) | static_cast<int>(Qt::Key_K);

} // namespace

class VCMenuBarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { previousHandler = qInstallMessageHandler(collectTraces); traces.clear(); }
    void cleanup()
    {
        qInstallMessageHandler(previousHandler);
        tree().Clear();
        QLocale::setDefault(QLocale::c());
        ErrorHandler::Instance().SetReportingMask(ErrorHandler::Assertions | ErrorHandler::Failures);
    }

    void clicks_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::newRow("C") << "C";
        QTest::newRow("German") << "de_DE";
    }
    void clicks()
    {
        QFETCH(QString, locale);
        QLocale::setDefault(QLocale(locale));
        auto* hold = addSelection(QStringLiteral("/hold"), {"Off", "On"}, 1);
        auto* avg = addSelection(QStringLiteral("/avg"), {"None", "RMS"});
        QWidget window;
        auto* bar = new Bar(&window);
        QCOMPARE(bar->objectName(), QStringLiteral("bar"));
        QCOMPARE(bar->InsertItem(QStringLiteral("Hold"), 0, QStringLiteral("/hold"), QStringLiteral("On"), QStringLiteral("Off")), 0);
        QCOMPARE(bar->InsertItem(QStringLiteral("Avg"), 1, QStringLiteral("/avg"), QStringLiteral("RMS"), QStringLiteral("None")), 1);
        QCOMPARE(bar->actions().at(1)->data(), QVariant(1));
        QCOMPARE(bar->m_tuples[1].outVal, QStringLiteral("None"));
        window.resize(500, 60);
        bar->setGeometry(0, 0, 500, 30);
        window.show();
        QApplication::setActiveWindow(&window);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QVERIFY(bar->isEnabled());

        // Not checkable: every click writes the out name, and no mark is shown.
        QVERIFY(!bar->actions().at(0)->isCheckable());
        click(*bar, 0);
        QCOMPARE(hold->GetValueString(), QStringLiteral("Off"));
        click(*bar, 0);
        QCOMPARE(hold->GetValueString(), QStringLiteral("Off"));
        click(*bar, 1);
        QCOMPARE(avg->GetValueString(), QStringLiteral("None"));
        // Made checkable by the application: the mark follows the value, a click switches.
        bar->actions().at(0)->setCheckable(true);
        hold->SetValueString(QStringLiteral("On"), nullptr);
        QVERIFY(bar->actions().at(0)->isChecked());
        click(*bar, 0);
        QCOMPARE(hold->GetValueString(), QStringLiteral("Off"));
        QVERIFY(!bar->actions().at(0)->isChecked());
        click(*bar, 0);
        QCOMPARE(hold->GetValueString(), QStringLiteral("On"));

        // Ids out of step with the places: none found, or another entry's.
        QCOMPARE(bar->InsertItem(QStringLiteral("Odd"), 5, QStringLiteral("/avg"), QStringLiteral("RMS"), QStringLiteral("None")), 2);
        avg->SetValueString(QStringLiteral("RMS"), nullptr);
        click(*bar, 2);
        QCOMPARE(avg->GetValueString(), QStringLiteral("RMS"));
        QCOMPARE(bar->InsertItem(QStringLiteral("Swap"), 0, QStringLiteral("/avg"), QStringLiteral("RMS"), QStringLiteral("None")), 3);
        bar->actions().at(0)->setCheckable(false);
        click(*bar, 3); // the entry at place 0 answers: Hold is switched off
        QCOMPARE(hold->GetValueString(), QStringLiteral("Off"));
        QCOMPARE(avg->GetValueString(), QStringLiteral("RMS"));

        // With a shortcut: no id, so neither the shortcut nor a click writes.
        QCOMPARE(bar->InsertItem(QStringLiteral("Keyed"), 4, kCtrlK, QStringLiteral("/hold"), QStringLiteral("On"), QStringLiteral("Off")), 4);
        QAction* keyed = bar->actions().at(4);
        QVERIFY(!keyed->data().isValid());
        QCOMPARE(keyed->shortcut(), QKeySequence(kCtrlK));
        QSignalSpy fired(keyed, &QAction::triggered);
        QTest::keyClick(&window, Qt::Key_K, Qt::ControlModifier);
        QCOMPARE(fired.count(), 1);
        click(*bar, 4);
        QCOMPARE(hold->GetValueString(), QStringLiteral("Off"));
        QVERIFY(traces.isEmpty());
    }

    void bindings()
    {
        auto* a = addSelection(QStringLiteral("/a"), {"x", "y"});
        auto* b = addSelection(QStringLiteral("/b"), {"x", "y"}, 1);
        {
            Bar bar(nullptr);
            // No action at the place: false, nothing attached.
            QVERIFY(!bar.SetSelection_ValuePath(0, QStringLiteral("/a"), QStringLiteral("x"), QString()));
            QCOMPARE(a->ObserverCount(), 0);
            // A failed first entry: place 0 stands unbound, the trace names the path.
            QCOMPARE(bar.InsertItem(QStringLiteral("lost"), 0, QStringLiteral("/nowhere"), QStringLiteral("x"), QString()), 0);
            QCOMPARE(traces.size(), 1);
            QVERIFY2(traces[0].startsWith(QStringLiteral("VCMenuBar::InsertItem: unable to connect to '/nowhere'")), qPrintable(traces[0]));
            QVERIFY(bar.m_tuples.count(0) && !bar.m_tuples[0].sel);
            bar.actions().at(0)->trigger();
            // The overload with a shortcut keeps '%s' in its text.
            traces.clear();
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("QString::arg: Argument missing"));
            QCOMPARE(bar.InsertItem(QStringLiteral("lost too"), 1, kCtrlK, QStringLiteral("/nowhere"), QString(), QString()), 1);
            QCOMPARE(traces.size(), 1);
            QVERIFY2(traces[0].startsWith(QStringLiteral("VCMenuBar::InsertItem: unable to connect to '%s'")), qPrintable(traces[0]));

            // Names the value lacks are asserted; the names given here are stored.
            traces.clear();
            QVERIFY(bar.SetSelection_ValuePath(0, QStringLiteral("/a"), QStringLiteral("q"), QStringLiteral("r")));
            QCOMPARE(traces.size(), 2);
            QVERIFY(traces[0].contains(QStringLiteral("m_tuples[id].sel->GetItem(m_tuples[id].inVal)")));
            QVERIFY(traces[1].contains(QStringLiteral("m_tuples[id].sel->GetItem(m_tuples[id].outVal)")));
            QVERIFY(bar.SetSelection_ValuePath(0, QStringLiteral("/a"), QStringLiteral("y"), QStringLiteral("x")));
            bar.actions().at(0)->trigger(); // not checkable: the out name
            QCOMPARE(a->GetValueString(), QStringLiteral("x"));
            // A failed rebinding of a bound place answers true and keeps the binding.
            QVERIFY(bar.SetSelection_ValuePath(0, QStringLiteral("/nowhere"), QString(), QString()));
            QCOMPARE(bar.m_tuples[0].sel, a);
            // Rebound to /b: /a no longer reaches the entry, but the bar lets go of it only when it goes.
            bar.actions().at(0)->setCheckable(true);
            QVERIFY(bar.SetSelection_ValuePath(0, QStringLiteral("/b"), QStringLiteral("y"), QStringLiteral("x")));
            QVERIFY(bar.actions().at(0)->isChecked());
            a->SetValueString(QStringLiteral("x"), nullptr);
            QVERIFY(bar.actions().at(0)->isChecked());
            QCOMPARE(a->ObserverCount(), 1);
        }
        QCOMPARE(a->ObserverCount(), 0);
        QCOMPARE(b->ObserverCount(), 0);
    }

    void states()
    {
        auto* a = addSelection(QStringLiteral("/a"), {"off", "on"});
        auto* b = addSelection(QStringLiteral("/b"), {"off", "on"});
        Bar bar(nullptr);
        bar.InsertItem(QStringLiteral("A"), 0, QStringLiteral("/a"), QStringLiteral("on"), QStringLiteral("off"));
        bar.InsertItem(QStringLiteral("A again"), 1, QStringLiteral("/a"), QStringLiteral("off"), QStringLiteral("on"));
        bar.InsertItem(QStringLiteral("B"), 2, QStringLiteral("/b"), QStringLiteral("on"), QStringLiteral("off"));
        for (QAction* action : bar.actions())
            action->setCheckable(true);
        // Each change visits every entry of the value.
        a->SetValueString(QStringLiteral("on"), nullptr);
        QVERIFY(bar.actions().at(0)->isChecked());
        QVERIFY(!bar.actions().at(1)->isChecked());
        // A state on the whole bar.
        b->SetState(Disabled);
        QVERIFY(!bar.isEnabled());
        a->SetState(Enabled); // unchanged: nothing told
        QVERIFY(!bar.isEnabled());
        a->SetState(Disabled);
        a->SetState(Enabled);
        QVERIFY(bar.isEnabled());
        // Removed: no entry of the value keeps it, though the first one decides.
        a->SetState(Removed);
        QVERIFY(!bar.m_tuples[0].sel && !bar.m_tuples[1].sel);
        QVERIFY(bar.isEnabled());
        QVERIFY(tree().Remove(QStringLiteral("/a")));
        bar.actions().at(1)->trigger();
        // Destroyed: forgotten.
        QVERIFY(tree().Remove(QStringLiteral("/b")));
        QVERIFY(!bar.m_tuples[2].sel);
        bar.actions().at(2)->trigger();
    }
};

QTEST_MAIN(VCMenuBarTest)
#include "vcmenubartest.moc"
