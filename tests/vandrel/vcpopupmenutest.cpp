#include <vandrel/vcpopupmenu.h>

#include <brevanbase/brevanbase.h>

#include <QPointer>
#include <QtTest>

#include <functional>

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

// Acts on a value when it next changes, once: an application's observer.
struct OnChange : IObserver
{
    OnChange(Observable* watched, std::function<void()> act) : watched(watched), act(std::move(act)) { watched->Attach(this); }
    ~OnChange() override { if (watched) watched->Detach(this); }
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

// The menu with its fields in reach.
struct Menu : VCPopupMenu
{
    Menu() : VCPopupMenu(nullptr, "menu") {}
    using VCPopupMenu::AddMStrings2Menu;
    using VCPopupMenu::m_pValue1Selection;
    using VCPopupMenu::m_tuples;
};

} // namespace

class VCPopupMenuTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
        QLocale::setDefault(QLocale::c());
        ErrorHandler::Instance().SetReportingMask(ErrorHandler::Assertions | ErrorHandler::Failures);
    }

    void switches_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::newRow("C") << "C";
        QTest::newRow("German") << "de_DE";
    }
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
        QCOMPARE(menu.m_tuples.size(), size_t(3));
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
        ErrorHandler::Instance().SetReportingMask(ErrorHandler::Assertions | ErrorHandler::Failures);
        previousHandler = qInstallMessageHandler(collectTraces);
        traces.clear();
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
        qInstallMessageHandler(previousHandler);
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
};

QTEST_MAIN(VCPopupMenuTest)
#include "vcpopupmenutest.moc"
