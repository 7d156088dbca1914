#include <vandrel/vcmenubar.h>
#include <vandrel/vcpopupmenu.h>
#include <vandrel/vcselectionpopup.h>

#include <brevanbase/brevanbase.h>

#include <QPointer>
#include <QtTest>

#include <functional>

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }
int recordings() { return values::UndoRecorder::Instance().Count(); }

values::ValueSelection* addSelection(const QString& path, const QStringList& names, int current = 0)
{
    auto* s = new values::ValueSelection;
    for (int i = 0; i < names.size(); ++i)
        s->AddItem(names[i], i, 100 + i, nullptr); // keys unlike places
    if (!names.isEmpty())
        s->SelectIndex(current, nullptr);
    tree().Add(path, s);
    return s;
}

// Items named stem0, stem1, ...
values::ValueSelection* addSelection(const QString& path, int count, int current = 0, const QString& stem = QStringLiteral("i"))
{
    QStringList names;
    for (int i = 0; i < count; ++i)
        names << stem + QString::number(i);
    return addSelection(path, names, current);
}

values::StringMultiSelection* addMulti(const QString& path, int mode, QList<unsigned> keys, QList<unsigned> checked = {})
{
    auto* m = new values::StringMultiSelection(mode);
    for (int i = keys.size() - 1; i >= 0; --i) // added backwards: the menu lists them by key
        m->AddItem(keys[i], QStringLiteral("k%1").arg(keys[i]), checked.contains(keys[i]));
    tree().Add(path, m);
    return m;
}

// The entries as "text=id" ("-" for a separator, "*" after a checked one, "~" after a disabled one).
QStringList entries(QMenu& menu)
{
    QStringList out;
    for (QAction* a : menu.actions())
        out << (a->isSeparator() ? QStringLiteral("-")
                                 : a->text() + QLatin1Char('=') + a->data().toString() + (a->isChecked() ? "*" : "")
                     + (a->isEnabled() ? "" : "~"));
    return out;
}

QAction* entry(QMenu& menu, const QString& text)
{
    for (QAction* a : menu.actions())
        if (a->text() == text)
            return a;
    return nullptr;
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

// Opens \a menu as a user would see it and picks the entry \a downs steps down with Return.
void pickByKeys(QMenu& menu, int downs)
{
    menu.popup(QPoint(20, 20));
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    for (int i = 0; i < downs; ++i)
        QTest::keyClick(&menu, Qt::Key_Down);
    QTest::keyClick(&menu, Qt::Key_Return);
}

// A click on the bar's entry at \a place, as the user makes it.
void click(QMenuBar& bar, int place)
{
    QAction* action = bar.actions().at(place);
    QVERIFY(!bar.actionGeometry(action).isEmpty());
    QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, bar.actionGeometry(action).center());
}

const int kCtrlK = static_cast<int>(Qt::CTRL) | static_cast<int>(Qt::Key_K);

// Acts on a value when it next changes, once: an application's observer.
struct OnChange : IObserver
{
    OnChange(Observable* watched, std::function<void()> act) : watched(watched), act(std::move(act)) { watched->Attach(this); }
    ~OnChange() override { Drop(); }
    void Drop()
    {
        if (watched)
            watched->Detach(this);
        watched = nullptr;
    }
    void Update(Observable*, TChangeCode code) override
    {
        if (code == ValueDestroyed)
            watched = nullptr;
        else if (code == ValueChanged && act)
            std::exchange(act, nullptr)();
    }
    Observable* watched;
    std::function<void()> act;
};

// The controls with their fields in reach.
struct Menu : VCPopupMenu
{
    Menu() : VCPopupMenu(nullptr, "menu") {}
    using VCPopupMenu::AddMStrings2Menu;
    using VCPopupMenu::m_pValue1Selection;
    using VCPopupMenu::m_tuples;
};

struct Bar : VCMenuBar
{
    explicit Bar(QWidget* parent) : VCMenuBar(parent, "bar") {}
    using VCMenuBar::m_tuples;
};

struct Popup : VCSelectionPopup
{
    Popup() : VCSelectionPopup(nullptr, "popup") {}
    using VCSelectionPopup::m_additionalItems;
    using VCSelectionPopup::m_nAdditionalOffset;
    using VCSelectionPopup::m_nFirstSelectionOffset;
    using VCSelectionPopup::m_nSecondSelectionOffset;
    QList<int> offsets() const { return {m_nFirstSelectionOffset, m_nSecondSelectionOffset, m_nAdditionalOffset}; }
};

} // namespace

class VCMenusTest : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void command(int id) { commands << id; }
    void closeAll() { ++closes; }

private:
    QList<int> commands;
    int closes = 0;

private Q_SLOTS:
    void init()
    {
        previousHandler = qInstallMessageHandler(collectTraces);
        traces.clear();
    }
    void cleanup()
    {
        qInstallMessageHandler(previousHandler);
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
        QLocale::setDefault(QLocale::c());
        ErrorHandler::Instance().SetReportingMask(ErrorHandler::Assertions | ErrorHandler::Failures);
        commands.clear();
        closes = 0;
    }

    void locales_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::newRow("C") << "C";
        QTest::newRow("German") << "de_DE";
    }

    // --- VCPopupMenu ---

    void switches_data() { locales_data(); }
    void switches()
    {
        QFETCH(QString, locale);
        QLocale::setDefault(QLocale(locale));
        auto* hold = addSelection(QStringLiteral("/hold"), {"Off", "On"});
        auto* avg = addSelection(QStringLiteral("/avg"), {"None", "RMS", "Peak"}, 1);
        Menu menu;
        QVERIFY(menu.isEnabled()); // nothing to wait for: a menu of switches starts usable
        QCOMPARE(menu.InsertItem(QStringLiteral("Hold"), 7, QKeySequence(Qt::CTRL | Qt::Key_H), QStringLiteral("/hold"),
                                 QStringLiteral("On"), QStringLiteral("Off")),
                 7);
        QCOMPARE(menu.InsertItem(QStringLiteral("RMS"), 3, QStringLiteral("/avg"), QStringLiteral("RMS"), QString()), 3);
        QCOMPARE(menu.InsertItem(QStringLiteral("Peak"), 4, QStringLiteral("/avg"), QStringLiteral("Peak"), QStringLiteral("None")), 4);
        // In the order inserted, ids as data, checked as the values stand.
        QCOMPARE(entries(menu), (QStringList{"Hold=7", "RMS=3*", "Peak=4"}));
        QCOMPARE(entry(menu, "Hold")->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_H));
        QVERIFY(entry(menu, "RMS")->shortcut().isEmpty());
        QVERIFY(entry(menu, "Hold")->isCheckable());
        QCOMPARE(menu.m_tuples.size(), 3);
        QCOMPARE(menu.m_tuples[4].m_outVal, QStringLiteral("None"));

        // Keys in the open menu: the write comes back as the mark; no undo recording.
        pickByKeys(menu, 1);
        QCOMPARE(hold->GetValueString(), QStringLiteral("On"));
        QCOMPARE(entries(menu), (QStringList{"Hold=7*", "RMS=3*", "Peak=4"}));
        pickByKeys(menu, 1);
        QCOMPARE(hold->GetValueString(), QStringLiteral("Off"));
        QVERIFY(!entry(menu, "Hold")->isChecked());
        QCOMPARE(values::UndoRecorder::Instance().Count(), 0);

        // Two entries on one value behave as radio entries.
        entry(menu, "Peak")->trigger();
        QCOMPARE(avg->GetValueString(), QStringLiteral("Peak"));
        QCOMPARE(entries(menu), (QStringList{"Hold=7", "RMS=3", "Peak=4*"}));
        avg->SetValueString(QStringLiteral("None"), nullptr); // at neither name: both unchecked
        QCOMPARE(entries(menu), (QStringList{"Hold=7", "RMS=3", "Peak=4"}));
        entry(menu, "RMS")->trigger();
        QCOMPARE(avg->GetValueString(), QStringLiteral("RMS"));
        // Switching RMS off writes its empty out name, which the selection refuses: it stays.
        entry(menu, "RMS")->trigger();
        QCOMPARE(avg->GetValueString(), QStringLiteral("RMS"));
    }

    void bindingEdges()
    {
        auto* a = addSelection(QStringLiteral("/a"), {"x", "y"});
        auto* b = addSelection(QStringLiteral("/b"), {"x", "y"}, 1);
        {
            Menu menu;
            // A path that fails: the entry stays, checkable and unbound, and the trace keeps its '%s'.
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("QString::arg: Argument missing"));
            QCOMPARE(menu.InsertItem(QStringLiteral("lost"), 1, QStringLiteral("/nowhere"), QStringLiteral("x"), QString()), 1);
            QCOMPARE(traces.size(), 1);
            QVERIFY2(traces[0].startsWith(QStringLiteral("VCPopupMenu::InsertItem: unable to connect to '%s'")), qPrintable(traces[0]));
            QVERIFY(!traces[0].contains(QStringLiteral("/nowhere")));
            QVERIFY(entry(menu, "lost")->isCheckable());
            QVERIFY(!menu.m_tuples[1].m_sel);
            entry(menu, "lost")->trigger(); // writes nowhere

            // Names that the value lacks are asserted, the out name only when given.
            traces.clear();
            menu.InsertItem(QStringLiteral("bad"), 2, QStringLiteral("/a"), QStringLiteral("q"), QStringLiteral("r"));
            QCOMPARE(traces.size(), 2);
            QVERIFY(traces[0].contains(QStringLiteral("m_tuples[id].m_sel->GetItem(m_tuples[id].m_inVal)")));
            QVERIFY(traces[1].contains(QStringLiteral("m_tuples[id].m_sel->GetItem(m_tuples[id].m_outVal)")));
            traces.clear();
            ErrorHandler::Instance().SetReportingMask(0);
            menu.InsertItem(QStringLiteral("quiet"), 5, QStringLiteral("/a"), QStringLiteral("q"), QStringLiteral("r"));
            QVERIFY(traces.isEmpty());

            // The names given to the binding are not used: those of the entry count.
            QVERIFY(menu.SetSelection_ValuePath(1, QStringLiteral("/b"), QStringLiteral("y"), QStringLiteral("x")));
            QVERIFY(!entry(menu, "lost")->isChecked()); // /b stands at y, the entry's in name is x
            b->SetValueString(QStringLiteral("x"), nullptr);
            QVERIFY(entry(menu, "lost")->isChecked());
            // Rebound: the former value no longer reaches the entry.
            QVERIFY(menu.SetSelection_ValuePath(1, QStringLiteral("/a"), QString(), QString()));
            QVERIFY(entry(menu, "lost")->isChecked()); // /a stands at x
            b->SetValueString(QStringLiteral("y"), nullptr);
            QVERIFY(entry(menu, "lost")->isChecked());
            // An unknown id: true, and nothing else.
            QVERIFY(menu.SetSelection_ValuePath(99, QStringLiteral("/b"), QString(), QString()));
            QVERIFY(!menu.m_tuples.count(99));
            QVERIFY(!menu.SetSelection_ValuePath(1, QStringLiteral("/nowhere"), QString(), QString()));
            QCOMPARE(menu.m_tuples[1].m_sel, a); // a failed lookup leaves the tuple as it was

            // The same id again: the first action stays, without a tuple of its own.
            menu.InsertItem(QStringLiteral("again"), 2, QStringLiteral("/b"), QStringLiteral("y"), QStringLiteral("x"));
            QCOMPARE(menu.actions().size(), 4);
            QCOMPARE(menu.m_tuples[2].m_action, entry(menu, "again"));
            QVERIFY(entry(menu, "again")->isChecked()); // /b stands at y
            b->SetValueString(QStringLiteral("x"), nullptr);
            QVERIFY(!entry(menu, "again")->isChecked());
            // An entry that the application deletes leaves its tuple, which then touches nothing.
            delete entry(menu, "again");
            QVERIFY(!menu.m_tuples[2].m_action);
            b->SetValueString(QStringLiteral("y"), nullptr);
        }
        // Every value the menu was attached to, also by rebound entries, let go of it.
        QCOMPARE(a->ObserverCount(), 0);
        QCOMPARE(b->ObserverCount(), 0);
    }

    void valuesGoWhileOpen()
    {
        auto* a = addSelection(QStringLiteral("/a"), {"off", "on"});
        auto* b = addSelection(QStringLiteral("/b"), {"off", "on"});
        Menu menu;
        menu.InsertItem(QStringLiteral("A"), 0, QStringLiteral("/a"), QStringLiteral("on"), QStringLiteral("off"));
        menu.InsertItem(QStringLiteral("A too"), 1, QStringLiteral("/a"), QStringLiteral("on"), QStringLiteral("off"));
        menu.InsertItem(QStringLiteral("B"), 2, QStringLiteral("/b"), QStringLiteral("on"), QStringLiteral("off"));
        menu.popup(QPoint(10, 10));
        QVERIFY(QTest::qWaitForWindowExposed(&menu));

        // Disabled on one value disables the whole menu; Enabled on any value enables it.
        a->SetState(Disabled);
        QVERIFY(!menu.isEnabled());
        QTest::keyClick(&menu, Qt::Key_Down);
        QTest::keyClick(&menu, Qt::Key_Return);
        QCOMPARE(a->GetValueString(), QStringLiteral("off"));
        b->SetState(Disabled);
        b->SetState(Enabled);
        QVERIFY(menu.isEnabled());

        // Removed: every tuple of it lets go, the menu stays as enabled as it was.
        a->SetState(Removed);
        QVERIFY(!menu.m_tuples[0].m_sel && !menu.m_tuples[1].m_sel);
        QCOMPARE(a->ObserverCount(), 0);
        entry(menu, "A")->trigger();
        QCOMPARE(a->GetValueString(), QStringLiteral("off"));

        // Destroyed while the menu is open: forgotten, and its entry writes nowhere.
        menu.InsertItem(QStringLiteral("B too"), 3, QStringLiteral("/b"), QStringLiteral("off"), QString());
        QVERIFY(tree().Remove(QStringLiteral("/b")));
        QVERIFY(!menu.m_tuples[2].m_sel && !menu.m_tuples[3].m_sel);
        entry(menu, "B")->trigger();
        auto* c = addSelection(QStringLiteral("/b"), {"off", "on"}); // a new value at the path is not the old one's
        entry(menu, "B")->trigger();
        QCOMPARE(c->GetValueString(), QStringLiteral("off"));
        menu.close();
    }

    void generated()
    {
        auto* m = addMulti(QStringLiteral("/m"), 0, {0, 1, 2, 3}, {1});
        m->SetTranslationNamespace("menutest");
        m->SetItemEnabled(2, false);
        Menu menu;
        QVERIFY(!menu.SetValue1Selection_String_ValuePath(QStringLiteral("/nowhere")));
        QVERIFY(menu.actions().isEmpty());
        // A switch entry made before is wiped by the generation.
        addSelection(QStringLiteral("/s"), {"x", "y"});
        menu.InsertItem(QStringLiteral("switch"), 0, QStringLiteral("/s"), QStringLiteral("x"), QString());
        QVERIFY(menu.SetValue1Selection_String_ValuePath(QStringLiteral("/m")));
        QVERIFY(menu.m_tuples.empty());
        QCOMPARE(entries(menu), (QStringList{"k0=0", "k1=1*", "k2=2~", "k3=3"}));
        QCOMPARE(menu.AddMStrings2Menu(), 4);

        // A pick checks the item whose key is the entry's place.
        pickByKeys(menu, 3); // k0, k1, k3: the disabled k2 is passed over
        QVERIFY(m->IsItemChecked(3));
        QCOMPARE(entries(menu), (QStringList{"k0=0", "k1=1*", "k2=2~", "k3=3*"}));

        // Check marks alone set the marks of their entries; the entries stay the same objects.
        QPointer<QAction> k0 = menu.actions().at(0);
        m->SetItemChecked(0, true, nullptr);
        QVERIFY(k0);
        QVERIFY(k0->isChecked());
        m->UncheckAll(nullptr);
        QCOMPARE(entries(menu), (QStringList{"k0=0", "k1=1", "k2=2~", "k3=3"}));
        // Anything else rebuilds: an enabled flag, a none entry, new items.
        m->SetItemEnabled(2, true);
        QVERIFY(!k0);
        m->SetNoneEntry(true, QStringLiteral("none"));
        QCOMPARE(entries(menu), (QStringList{"none=-1", "k0=0", "k1=1", "k2=2", "k3=3"}));
        QVERIFY(!menu.actions().at(0)->isCheckable());
        // The none entry writes with id -1, which names no item.
        menu.actions().at(0)->trigger();
        QVERIFY(m->GetCheckedKeys().empty());
        // Switch entries added to a generated menu are wiped by the next change, even of marks alone.
        menu.InsertItem(QStringLiteral("switch"), 9, QStringLiteral("/s"), QStringLiteral("x"), QString());
        m->SetItemChecked(1, true, nullptr);
        QVERIFY(menu.m_tuples.empty());
        QCOMPARE(entries(menu).size(), 5);

        // Keys that don't count from 0: the place goes on as the key, and names another item or none.
        auto* gaps = addMulti(QStringLiteral("/gaps"), 0, {10, 20, 1});
        QVERIFY(menu.SetValue1Selection_String_ValuePath(QStringLiteral("/gaps")));
        QCOMPARE(entries(menu), (QStringList{"k1=0", "k10=1", "k20=2"}));
        menu.actions().at(0)->trigger();
        QVERIFY(gaps->GetCheckedKeys().empty());
        menu.actions().at(1)->trigger();
        QCOMPARE(gaps->GetCheckedKeys(), std::vector<unsigned>{1});
        // The former multi-selection no longer reaches the menu.
        m->SetItemChecked(0, true, nullptr);
        QCOMPARE(entries(menu), (QStringList{"k1=0*", "k10=1", "k20=2"}));

        // Removed and destroyed: the menu keeps its entries, which then write nowhere.
        gaps->SetState(Disabled);
        QVERIFY(!menu.isEnabled());
        gaps->SetState(Enabled);
        QVERIFY(menu.isEnabled());
        QVERIFY(tree().Remove(QStringLiteral("/gaps")));
        QVERIFY(!menu.m_pValue1Selection);
        QCOMPARE(menu.actions().size(), 3);
        menu.actions().at(2)->trigger();
    }

    // An observer of the pick rebuilds the items while Qt is still inside the entry's triggering.
    void rebuiltByItsOwnPick()
    {
        auto* m = addMulti(QStringLiteral("/m"), 1, {0, 1, 2});
        Menu menu;
        menu.SetValue1Selection_String_ValuePath(QStringLiteral("/m"));
        OnChange grow(m, [m] { m->AddItem(3, QStringLiteral("k3")); });
        QPointer<QAction> picked = menu.actions().at(1);
        picked->trigger();
        QVERIFY(m->IsItemChecked(1));
        QCOMPARE(entries(menu), (QStringList{"k0=0", "k1=1*", "k2=2", "k3=3"}));
        QVERIFY(picked); // out of the menu, deleted on the next turn of the loop
        QVERIFY(!menu.actions().contains(picked));
        QTRY_VERIFY(!picked);

        // The same through keys in the open menu.
        OnChange clear(m, [m] { m->ClearItems(); m->AddItem(5, QStringLiteral("k5")); });
        pickByKeys(menu, 3);
        QCOMPARE(entries(menu), (QStringList{"k5=0"}));
    }

    // --- VCMenuBar ---

    void barClicks_data() { locales_data(); }
    void barClicks()
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

    void barBindings()
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

    void barStates()
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

    // --- VCSelectionPopup ---

    // The parts, their separators and ids, as the bindings and commands make them.
    void contextLayout_data()
    {
        QTest::addColumn<int>("first");   // item count, -1: not bound
        QTest::addColumn<int>("second");
        QTest::addColumn<int>("commands");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<QList<int>>("offsets");
        QTest::newRow("one command") << -1 << -1 << 1 << QStringList{"c0=0"} << QList<int>{-1, -1, 0};
        QTest::newRow("three, two, commands")
            << 3 << 2 << 2 << QStringList{"a0=0*", "a1=1", "a2=2", "-", "b0=3*", "b1=4", "-", "c0=5", "c1=6"}
            << QList<int>{0, 3, 5};
        QTest::newRow("empty first") << 0 << 2 << 0 << QStringList{"-", "b0=0*", "b1=1"} << QList<int>{0, 0, -1};
        QTest::newRow("second alone") << -1 << 2 << 1 << QStringList{"b0=0*", "b1=1", "-", "c0=2"} << QList<int>{-1, 0, 2};
        QTest::newRow("first alone") << 2 << -1 << 0 << QStringList{"a0=0*", "a1=1"} << QList<int>{0, -1, -1};
        QTest::newRow("nothing") << -1 << -1 << 0 << QStringList{} << QList<int>{-1, -1, -1};
    }
    void contextLayout()
    {
        QFETCH(int, first);
        QFETCH(int, second);
        QFETCH(int, commands);
        QFETCH(QStringList, shown);
        QFETCH(QList<int>, offsets);
        Popup popup;
        QCOMPARE(popup.offsets(), (QList<int>{-1, -1, -1}));
        QVERIFY(popup.isEnabled());
        if (first >= 0) {
            addSelection(QStringLiteral("/a"), first, 0, QStringLiteral("a"));
            QVERIFY(popup.SetFirstSelection_ValuePath(QStringLiteral("/a")));
        }
        if (second >= 0) {
            addSelection(QStringLiteral("/b"), second, 0, QStringLiteral("b"));
            QVERIFY(popup.SetSecondSelection_ValuePath(QStringLiteral("/b")));
        }
        for (int i = 0; i < commands; ++i)
            popup.AddAdditionalItem(QStringLiteral("c%1").arg(i), this, SLOT(command(int)));
        QCOMPARE(entries(popup), shown);
        QCOMPARE(popup.offsets(), offsets);
        // The store numbers its commands from 0, whatever their place in the menu.
        QCOMPARE(popup.m_additionalItems.actions().size(), commands);
        if (commands)
            QCOMPARE(popup.m_additionalItems.actions().last()->data(), QVariant(commands - 1));
        // Without commands, the trailing separator goes too.
        popup.ClearAdditionalItems();
        QStringList kept = shown.mid(0, shown.size() - commands);
        if (commands && !kept.isEmpty() && kept.last() == QLatin1String("-"))
            kept.removeLast();
        QCOMPARE(entries(popup), kept);
        QCOMPARE(popup.offsets().at(2), -1);
    }

    void contextPicks_data() { locales_data(); }
    void contextPicks()
    {
        QFETCH(QString, locale);
        QLocale::setDefault(QLocale(locale));
        auto* unit = addSelection(QStringLiteral("/unit"), 3, 1, QStringLiteral("u"));
        auto* range = addSelection(QStringLiteral("/range"), 2, 0, QStringLiteral("r"));
        Popup popup;
        QVERIFY(popup.SetFirstSelection_ValuePath(QStringLiteral("/unit")));
        QVERIFY(popup.SetSecondSelection_ValuePath(QStringLiteral("/range")));
        popup.AddAdditionalItem(QStringLiteral("Close all"), this, SLOT(closeAll()));
        popup.AddAdditionalItem(QStringLiteral("Command"), this, SLOT(command(int)));
        QCOMPARE(entries(popup), (QStringList{"u0=0", "u1=1*", "u2=2", "-", "r0=3*", "r1=4", "-", "Close all=5", "Command=6"}));

        // Keys in the open menu: one undo recording per pick, the marks follow the value.
        popup.popup(QPoint(20, 20));
        QVERIFY(QTest::qWaitForWindowExposed(&popup));
        QTest::keyClick(&popup, Qt::Key_Down);
        QTest::keyClick(&popup, Qt::Key_Return);
        QCOMPARE(unit->GetCurrentIndex(), 0L);
        QCOMPARE(recordings(), 1);
        QCOMPARE(entries(popup).mid(0, 3), (QStringList{"u0=0*", "u1=1", "u2=2"}));
        popup.actions().at(5)->trigger();
        QCOMPARE(range->GetCurrentIndex(), 1L);
        QCOMPARE(recordings(), 2);
        QCOMPARE(entries(popup).mid(4, 2), (QStringList{"r0=3", "r1=4*"}));
        // A change from elsewhere moves the mark.
        range->SelectIndex(0, nullptr);
        QCOMPARE(entries(popup).mid(4, 2), (QStringList{"r0=3*", "r1=4"}));
        // Commands reach their receivers, with their number in the store; they are no edits.
        popup.actions().at(8)->trigger();
        popup.actions().at(7)->trigger();
        QCOMPARE(commands, QList<int>{1});
        QCOMPARE(closes, 1);
        QCOMPARE(recordings(), 2);
        // Ids outside a part do nothing: stale ids after a rebuild are the normal case.
        popup.SlotFirstSelectionItemActivated(3);
        popup.SlotSecondSelectionItemActivated(2);
        popup.SlotSecondSelectionItemActivated(5);
        popup.SlotAdditionItemActivated(7);
        popup.SlotAdditionItemActivated(4);
        QCOMPARE(unit->GetCurrentIndex(), 0L);
        QCOMPARE(range->GetCurrentIndex(), 0L);
        QCOMPARE(recordings(), 2);
        QCOMPARE(commands, QList<int>{1});
        // A Disabled value stays selectable here.
        unit->SetState(Disabled);
        QVERIFY(popup.isEnabled());
        popup.SlotFirstSelectionItemActivated(2);
        QCOMPARE(unit->GetCurrentIndex(), 2L);
        // With its switch off the menu still writes, unrecorded.
        popup.SetUndoRecordingEnabled(false);
        popup.SlotFirstSelectionItemActivated(1);
        QCOMPARE(unit->GetCurrentIndex(), 1L);
        QCOMPARE(recordings(), 3);
    }

    void contextValuesChangeWhileOpen()
    {
        auto* unit = addSelection(QStringLiteral("/unit"), 3, 1, QStringLiteral("u"));
        addSelection(QStringLiteral("/range"), 2, 0, QStringLiteral("r"));
        Popup popup;
        popup.SetFirstSelection_ValuePath(QStringLiteral("/unit"));
        popup.SetSecondSelection_ValuePath(QStringLiteral("/range"));
        popup.popup(QPoint(20, 20));
        QVERIFY(QTest::qWaitForWindowExposed(&popup));
        // Items added and cleared rebuild the open menu and its offsets.
        unit->AddItem(QStringLiteral("u3"), 3, 53, nullptr);
        QCOMPARE(entries(popup), (QStringList{"u0=0", "u1=1*", "u2=2", "u3=3", "-", "r0=4*", "r1=5"}));
        unit->ClearItems(nullptr);
        QCOMPARE(entries(popup), (QStringList{"-", "r0=0*", "r1=1"}));
        QCOMPARE(popup.offsets(), (QList<int>{0, 0, -1}));
        // A value that leaves the tree takes its part; a stale id then writes nowhere.
        QVERIFY(tree().Remove(QStringLiteral("/range")));
        QCOMPARE(entries(popup), (QStringList{}));
        QCOMPARE(popup.offsets(), (QList<int>{0, -1, -1}));
        popup.SlotSecondSelectionItemActivated(0);
        popup.close();

        // A rebuild made by an observer of the menu's own pick, while Qt still triggers the entry.
        auto* grow = addSelection(QStringLiteral("/grow"), 2, 0, QStringLiteral("g"));
        QVERIFY(popup.SetFirstSelection(grow));
        OnChange grower(grow, [grow] { grow->AddItem(QStringLiteral("g2"), 2, 102, nullptr); });
        QPointer<QAction> picked = popup.actions().at(1);
        picked->trigger();
        QCOMPARE(grow->GetCurrentIndex(), 1L);
        QCOMPARE(entries(popup), (QStringList{"g0=0", "g1=1*", "g2=2"}));
        QVERIFY(!popup.actions().contains(picked));
        QTRY_VERIFY(!picked);
        grower.Drop();
        QVERIFY(!popup.SetFirstSelection(nullptr));
        QVERIFY(popup.actions().isEmpty());
        QCOMPARE(grow->ObserverCount(), 0);
    }

    // One value as both selections: each role holds it until both let go.
    void contextOneValueTwice()
    {
        auto* s = addSelection(QStringLiteral("/s"), 2, 0);
        addSelection(QStringLiteral("/t"), 1, 0);
        {
            Popup popup;
            popup.SetFirstSelection_ValuePath(QStringLiteral("/s"));
            popup.SetSecondSelection_ValuePath(QStringLiteral("/s"));
            popup.SetFirstSelection_ValuePath(QStringLiteral("/t"));
            QCOMPARE(s->ObserverCount(), 1);
            s->SelectIndex(1, nullptr);
            QCOMPARE(entries(popup), (QStringList{"i0=0*", "-", "i0=1", "i1=2*"}));
            popup.SetFirstSelection_ValuePath(QStringLiteral("/s"));
            QVERIFY(tree().Remove(QStringLiteral("/s"))); // both roles are told
            QCOMPARE(popup.offsets(), (QList<int>{-1, -1, -1}));
            QVERIFY(popup.actions().isEmpty());
        }
        QCOMPARE(dynamic_cast<values::ValueSelection*>(tree().Find(QStringLiteral("/t")))->ObserverCount(), 0);
    }
};

QTEST_MAIN(VCMenusTest)
#include "vcmenustest.moc"
