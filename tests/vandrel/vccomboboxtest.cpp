#include <brevanbase/brevanbase.h>
#include <vandrel/buddy_p.h>
#include <vandrel/vccombobox.h>

#include "observercounter.h"

#include <QAbstractItemView>
#include <QStandardItemModel>
#include <QStyleFactory>
#include <QTranslator>
#include <QtTest>

#include <functional>

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }
int recordings() { return values::UndoRecorder::Instance().Count(); }

// Names of the namespace "combotest" read otherwise, as a catalog would give them.
class Catalog : public QTranslator
{
public:
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        if (qstrcmp(context, "combotest") != 0)
            return QString();
        const QString text = QString::fromUtf8(source);
        if (text == QLatin1String("Over"))
            return QStringLiteral("Über");
        if (text == QStringLiteral("Grün"))
            return QStringLiteral("Green");
        return QString();
    }
};

values::ValueSelection* addSelection(const QString& path, const QStringList& names, long current = -1, long first = 10)
{
    auto* s = new values::ValueSelection;
    for (int i = 0; i < names.size(); ++i)
        s->AddItem(names[i], i * 10.0, first + i, nullptr); // keys 10, 11, ... by default
    if (current >= 0)
        s->SelectKey(current, nullptr);
    tree().Add(path, s);
    return s;
}

values::StringMultiSelection* addMulti(const QString& path, int mode, int count, QList<unsigned> checked = {})
{
    auto* m = new values::StringMultiSelection(mode);
    // Added out of order: every control shows them by key.
    for (int i = count - 1; i >= 0; --i)
        m->AddItem(unsigned(i * 2), QStringLiteral("m%1").arg(i * 2), checked.contains(unsigned(i * 2)));
    tree().Add(path, m);
    return m;
}

QStringList rows(const QComboBox& box)
{
    QStringList out;
    for (int i = 0; i < box.count(); ++i)
        out << box.itemText(i);
    return out;
}

// The entries of a menu as "text=id" ("-" for a separator, "*" after a checked one).
QStringList entries(QMenu* menu)
{
    QStringList out;
    for (QAction* a : menu->actions())
        out << (a->isSeparator() ? QStringLiteral("-")
                                 : a->text() + QLatin1Char('=') + a->data().toString() + (a->isChecked() ? "*" : ""));
    return out;
}

QAction* entry(VCComboBoxButtonStyle& b, int id)
{
    return b.GetPopup() ? b.GetPopup()->findItem(id) : nullptr;
}

// Acts on the popup that the next user action opens, from a timer, since the popup runs its own loop.
void onPopup(std::function<void(QWidget*)> act)
{
    QTimer::singleShot(50, [act] {
        if (QWidget* popup = QApplication::activePopupWidget())
            act(popup);
    });
}

void wheel(QWidget* w, int notches)
{
    const QPointF pos = w->rect().center();
    QWheelEvent e(pos, w->mapToGlobal(pos.toPoint()), QPoint(), QPoint(0, 120 * notches), Qt::NoButton, Qt::NoModifier,
                  Qt::NoScrollPhase, false);
    QApplication::sendEvent(w, &e);
}

QStringList traces;
QLoggingCategory::CategoryFilter defaultFilter = nullptr;
// Lets the detail traces through, which the test's environment turns off.
void withDetails(QLoggingCategory* category)
{
    defaultFilter(category);
    if (qstrcmp(category->categoryName(), "vandrel.trace") == 0)
        category->setEnabled(QtDebugMsg, true);
}
void collectTraces(QtMsgType, const QMessageLogContext& context, const QString& message)
{
    if (context.category && QByteArray(context.category).startsWith("vandrel."))
        traces << message;
}

struct Buddy : ComboBuddy
{
    bool isValueValid(QString value) override { return value != refused; }
    void NewValueFromCombo(QString value) override { told << value; }
    QString refused;
    QStringList told;
};

} // namespace

class VCComboBoxTest : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void extraPicked() { ++extras; }

private:
    int extras = 0;
    Catalog catalog;

private Q_SLOTS:
    void initTestCase() { QCoreApplication::installTranslator(&catalog); }
    void cleanup()
    {
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
        QLocale::setDefault(QLocale::c());
    }

    void locales_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::newRow("C") << "C";
        QTest::newRow("German") << "de_DE";
    }

    void classicConstruction()
    {
        VCComboBoxClassic box(nullptr, "mode");
        QCOMPARE(box.objectName(), QStringLiteral("mode"));
        QCOMPARE(box.toolTip(), QStringLiteral("mode"));
        QVERIFY(!box.isEnabled());
        QVERIFY(!box.isEditable());
        QVERIFY(!box.GetValueSelection());
        QCOMPARE(box.GetMaximumContentLengthInPixel(), 0u);
        // No such style here: the application's stays, and is not deleted with the list.
        if (!QStyleFactory::create(QStringLiteral("windowsxp")))
            QCOMPARE(box.style(), QApplication::style());
        VCComboBoxClassic unnamed(nullptr, nullptr);
        QCOMPARE(unnamed.toolTip(), QString());
    }

    void classicPicks_data() { locales_data(); }
    void classicPicks()
    {
        QFETCH(QString, locale);
        QLocale::setDefault(QLocale(locale));
        auto* sel = addSelection(QStringLiteral("/s"), {"AM", "FM", "LSB"}, 11);
        sel->SetTranslationNamespace("combotest");
        VCComboBoxClassic box(nullptr, "mode");
        Counter counter;
        counter.watch(sel);
        QVERIFY(box.SetValueSelection_ValuePath(QStringLiteral("/s")));
        QCOMPARE(sel->ObserverCount(), 2); // attached twice by the binding, once in effect
        QCOMPARE(counter.count(ValueChanged), 0);
        QVERIFY(box.isEnabled());
        QVERIFY(!box.GetDirty());
        QCOMPARE(rows(box), (QStringList{"AM", "FM", "LSB"}));
        QCOMPARE(box.currentIndex(), 1);
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));

        // Keys: one write per step, with the list as originator, one recording each.
        box.setFocus();
        QTest::keyClick(&box, Qt::Key_Down);
        QCOMPARE(sel->GetCurrentKey(), 12L);
        QCOMPARE(recordings(), 1);
        QVERIFY(box.GetDirty());
        QTest::keyClick(&box, Qt::Key_Up);
        QCOMPARE(sel->GetCurrentKey(), 11L);
        QCOMPARE(recordings(), 2);

        // The mouse opens the list, the keyboard picks in it.
        onPopup([](QWidget*) {});
        QTest::mouseClick(&box, Qt::LeftButton);
        QTRY_VERIFY(box.view()->isVisible());
        QTest::keyClick(box.view(), Qt::Key_Up);
        QTest::keyClick(box.view(), Qt::Key_Return);
        QTRY_COMPARE(sel->GetCurrentKey(), 10L);
        QCOMPARE(recordings(), 3);
        // A pick announced by the application, outside any event of the list, is written at once.
        Q_EMIT box.activated(2);
        QCOMPARE(sel->GetCurrentKey(), 12L);
        QCOMPARE(recordings(), 4);
        sel->SelectKey(10, nullptr);

        // The value moves the list; its states enable and disable it; removed, it is let go of.
        sel->SelectKey(12, nullptr);
        QCOMPARE(box.currentText(), QStringLiteral("LSB"));
        sel->SetState(Disabled);
        QVERIFY(!box.isEnabled());
        sel->SetState(Enabled);
        QVERIFY(box.isEnabled());
        sel->SetState(Removed);
        QVERIFY(!sel->IsAttached(&box));
        QVERIFY(!box.GetValueSelection());
        QTest::keyClick(&box, Qt::Key_Up);
        QCOMPARE(sel->GetCurrentKey(), 12L);
        QCOMPARE(recordings(), 4);
    }

    void classicDeferredCommit()
    {
        auto* sel = addSelection(QStringLiteral("/s"), {"a", "b", "c"}, 10);
        VCComboBoxClassic box(nullptr, "c");
        QVERIFY(box.SetValueSelection_ValuePath(QStringLiteral("/s")));
        box.SetAutoCommit(false);
        box.setFocus();
        QTest::keyClick(&box, Qt::Key_Down);
        QVERIFY(box.GetDirty());
        QCOMPARE(sel->GetCurrentKey(), 10L);
        sel->SelectKey(12, nullptr); // from elsewhere: the pending pick stays shown
        QCOMPARE(box.currentText(), QStringLiteral("b"));
        box.Commit();
        QCOMPARE(sel->GetCurrentKey(), 11L);
        QCOMPARE(recordings(), 1);
        values::UndoRecordingsToValueClient(QStringLiteral("/")).ExecuteUndo(1);
        QCOMPARE(sel->GetCurrentKey(), 12L);
        QTest::keyClick(&box, Qt::Key_Down); // auto-commit is off again
        QCOMPARE(sel->GetCurrentKey(), 12L);
        Counter counter;
        counter.watch(sel);
        box.Commit(); // each Commit writes what is shown
        QCOMPARE(sel->GetCurrentKey(), 12L);
        QCOMPARE(counter.count(ValueChanged), 1);
        box.SetDirty(false);
        QVERIFY(!box.GetDirty());
    }

    void classicWidestItemAndToolTips()
    {
        auto* sel = addSelection(QStringLiteral("/s"), {"ab", "a much longer name"});
        VCComboBoxClassic box(nullptr, "c");
        QSignalSpy widths(&box, SIGNAL(MaximumContentLengthChanged(uint)));
        QVERIFY(box.SetValueSelection_ValuePath(QStringLiteral("/s")));
        const QFontMetrics metrics(box.font());
        const uint widest = uint(metrics.boundingRect(QStringLiteral("a much longer name")).width() + 10);
        QCOMPARE(box.GetMaximumContentLengthInPixel(), widest);
        QVERIFY(widths.count() >= 1);
        QCOMPARE(widths.last().at(0).toUInt(), widest);
        QVERIFY(box.itemData(0, Qt::ToolTipRole).isNull());

        widths.clear();
        box.EnableItemToolTip(true);
        QVERIFY(box.itemData(0, Qt::ToolTipRole).isNull()); // from the next rebuild on
        sel->AddItem(QStringLiteral("x"), 0, 50, nullptr);
        QCOMPARE(widths.count(), 0); // the same width: no signal
        QCOMPARE(box.itemData(2, Qt::ToolTipRole).toString(), QStringLiteral("x"));
        sel->ClearItems(nullptr);
        QCOMPARE(box.count(), 0);
        sel->AddItem(QStringLiteral("a much, much longer name"), 0, 1, nullptr);
        QCOMPARE(widths.count(), 1);

        VCComboBoxClassic empty(nullptr, "e");
        addSelection(QStringLiteral("/e"), {});
        QVERIFY(empty.SetValueSelection_ValuePath(QStringLiteral("/e")));
        QCOMPARE(empty.GetMaximumContentLengthInPixel(), 10u);
        VCComboBoxClassic multi(nullptr, "m");
        QSignalSpy none(&multi, SIGNAL(MaximumContentLengthChanged(uint)));
        addMulti(QStringLiteral("/m"), 1, 3);
        QVERIFY(multi.SetValueSelection_ValuePath(QStringLiteral("/m")));
        QCOMPARE(multi.GetMaximumContentLengthInPixel(), 0u);
        QCOMPARE(none.count(), 0);
    }

    // Rows by text: ASCII only as shown, non-ASCII also through its translation; the first row wins.
    void classicSetCurrentItem()
    {
        auto* sel = addSelection(QStringLiteral("/s"), {"Over", "Grün", "same", "same"});
        sel->SetTranslationNamespace("combotest");
        VCComboBoxClassic box(nullptr, "c");
        QVERIFY(box.SetValueSelection_ValuePath(QStringLiteral("/s")));
        QCOMPARE(rows(box), (QStringList{"Über", "Green", "same", "same"}));
        Counter counter;
        counter.watch(sel);
        box.setCurrentItem(QStringLiteral("same"));
        QCOMPARE(box.currentIndex(), 2);
        box.setCurrentItem(QStringLiteral("Over")); // a raw ASCII name finds no translated row
        QCOMPARE(box.currentIndex(), 2);
        box.setCurrentItem(QStringLiteral("Grün"));
        QCOMPARE(box.currentIndex(), 1);
        box.setCurrentItem(QStringLiteral("Über"));
        QCOMPARE(box.currentIndex(), 0);
        box.setCurrentItem(QStringLiteral("nothing"));
        QCOMPARE(box.currentIndex(), 0);
        QCOMPARE(counter.codes.size(), 0); // never a write
    }

    void classicMultiSelection()
    {
        auto* m = addMulti(QStringLiteral("/m"), 1, 4, {4});
        m->SetNoneEntry(true, QStringLiteral("(none)"));
        m->SetItemEnabled(2, false);
        VCComboBoxClassic box(nullptr, "c");
        QVERIFY(box.SetValueSelection_ValuePath(QStringLiteral("/m")));
        QVERIFY(box.isEnabled());
        QCOMPARE(rows(box), (QStringList{"(none)", "m0", "m2", "m4", "m6"}));
        QCOMPARE(box.currentText(), QStringLiteral("m4"));
        auto* model = qobject_cast<QStandardItemModel*>(box.model());
        QVERIFY(!model->item(2)->isEnabled());
        QVERIFY(model->item(3)->isEnabled());

        // A change of check marks moves the shown row and touches no row.
        QSignalSpy inserted(box.model(), SIGNAL(rowsInserted(QModelIndex, int, int)));
        QSignalSpy reset(box.model(), SIGNAL(modelReset()));
        m->SetItemChecked(6, true, nullptr);
        QCOMPARE(box.currentText(), QStringLiteral("m6"));
        m->UncheckAll(nullptr);
        QCOMPARE(box.currentText(), QStringLiteral("m6")); // none checked: the row stays
        QCOMPARE(inserted.count() + reset.count(), 0);

        box.show();
        box.setFocus();
        box.setCurrentIndex(0);
        QTest::keyClick(&box, Qt::Key_Down); // row 1: the lowest key
        QCOMPARE(m->GetCheckedKeys(), std::vector<unsigned>{0});
        QCOMPARE(recordings(), 1);
        QTest::keyClick(&box, Qt::Key_Up); // the none entry: nothing checked
        QVERIFY(m->GetCheckedKeys().empty());

        // Another mode is refused as if not found.
        addMulti(QStringLiteral("/many"), 0, 2);
        QVERIFY(!box.SetValueSelection_ValuePath(QStringLiteral("/many")));
        QVERIFY(!box.isEnabled());
        QCOMPARE(tree().Find(QStringLiteral("/many"))->ObserverCount(), 0);
    }

    void buttonConstruction()
    {
        VCComboBoxButtonStyle b(nullptr, "band", false, false);
        QCOMPARE(b.objectName(), QStringLiteral("band"));
        QCOMPARE(b.toolTip(), QStringLiteral("band"));
        QVERIFY(!b.isEnabled());
        QVERIFY(b.autoRaise());
        QCOMPARE(b.popupMode(), QToolButton::MenuButtonPopup);
        QCOMPARE(b.focusPolicy(), Qt::StrongFocus);
        QCOMPARE(b.height(), 20);
        QVERIFY(!b.GetPopup());
        b.SetBuddyMode(true);
        QCOMPARE(b.size(), QSize(14, 24));
        QCOMPARE(b.icon().availableSizes().value(0), QSize(11, 8));
        b.SetBuddyMode(false); // restores nothing
        QCOMPARE(b.size(), QSize(14, 24));
        QColor red(Qt::red);
        b.SetColor(red);
        QVERIFY(b.autoFillBackground());
        QCOMPARE(b.palette().color(QPalette::Button), red);
        QVERIFY(!b.SetValueSelection_ValuePath(QStringLiteral("/none")));
        QVERIFY(!b.isEnabled());
    }

    void buttonFirstSelection_data() { locales_data(); }
    void buttonFirstSelection()
    {
        QFETCH(QString, locale);
        QLocale::setDefault(QLocale(locale));
        auto* sel = addSelection(QStringLiteral("/s"), {"Over", "FM", "LSB"}, 10);
        sel->SetTranslationNamespace("combotest");
        VCComboBoxButtonStyle b(nullptr, "band", false, false);
        QSignalSpy changed(&b, SIGNAL(SignalSelectionChangedByUserInput()));
        QVERIFY(b.SetValueSelection_ValuePath(QStringLiteral("/s")));
        QVERIFY(b.isEnabled());
        QCOMPARE(b.text(), QStringLiteral("Über"));
        QCOMPARE(entries(b.GetPopup()), (QStringList{"Über=10*", "FM=11", "LSB=12"}));

        entry(b, 12)->trigger();
        QCOMPARE(sel->GetCurrentKey(), 12L);
        QCOMPARE(recordings(), 1);
        QCOMPARE(b.text(), QStringLiteral("LSB")); // told of its own write, as everyone is
        QCOMPARE(entries(b.GetPopup()), (QStringList{"Über=10", "FM=11", "LSB=12*"}));
        QVERIFY(changed.count() >= 1);

        // The current entry clicked again keeps its mark.
        entry(b, 12)->trigger();
        QVERIFY(entry(b, 12)->isChecked());
        QCOMPARE(sel->GetCurrentKey(), 12L);

        b.show();
        b.setFocus();
        QTest::keyClick(&b, Qt::Key_Up);
        QCOMPARE(sel->GetCurrentKey(), 11L);
        QTest::keyClick(&b, Qt::Key_Down);
        QCOMPARE(sel->GetCurrentKey(), 12L);
        wheel(&b, 1);
        QCOMPARE(sel->GetCurrentKey(), 11L);
        wheel(&b, -1);
        QCOMPARE(sel->GetCurrentKey(), 12L);
        QCOMPARE(recordings(), 5);

        // Space opens the menu; the keyboard picks in it.
        QString shown;
        onPopup([&shown](QWidget* popup) {
            shown = popup->objectName();
            QTest::keyClick(popup, Qt::Key_Down);
            QTest::keyClick(popup, Qt::Key_Return);
        });
        QTest::keyClick(&b, Qt::Key_Space);
        QTRY_COMPARE(shown, QStringLiteral("bandPopup"));
        QTRY_COMPARE(sel->GetCurrentKey(), 10L);

        // A mouse press opens it as well.
        shown.clear();
        onPopup([&shown](QWidget* popup) {
            shown = popup->objectName();
            static_cast<QMenu*>(popup)->close();
        });
        QTest::mouseClick(&b, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
        QTRY_COMPARE(shown, QStringLiteral("bandPopup"));

        // Disabled, the value's entries go grey; the button is only let go of when removed.
        sel->SetState(Disabled);
        QVERIFY(b.isEnabled());
        QVERIFY(!entry(b, 11)->isEnabled());
        QTest::keyClick(&b, Qt::Key_Up);
        QCOMPARE(sel->GetCurrentKey(), 10L);
        sel->SetState(Removed);
        QVERIFY(!sel->IsAttached(&b));
    }

    void buttonToggle()
    {
        auto* two = addSelection(QStringLiteral("/two"), {"off", "on"}, 10);
        addSelection(QStringLiteral("/three"), {"a", "b", "c"}, 10);
        VCComboBoxButtonStyle b(nullptr, "t", false, true);
        QVERIFY(b.SetValueSelection_ValuePath(QStringLiteral("/two")));
        b.show();
        bool opened = false;
        onPopup([&opened](QWidget* popup) {
            opened = true;
            static_cast<QMenu*>(popup)->close();
        });
        for (long expected : {11L, 10L, 11L}) {
            QTest::mouseClick(&b, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
            QCOMPARE(two->GetCurrentKey(), expected);
        }
        QCOMPARE(recordings(), 3);
        QTest::qWait(100);
        QVERIFY(!opened);
        QCOMPARE(b.text(), QStringLiteral("on"));

        QVERIFY(b.SetValueSelection_ValuePath(QStringLiteral("/three")));
        onPopup([&opened](QWidget* popup) {
            opened = true;
            static_cast<QMenu*>(popup)->close();
        });
        QTest::mouseClick(&b, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
        QTRY_VERIFY(opened);
    }

    // First, separator, second (ids + 10000), separator, additional entries; the text ends a rebuild
    // with the second selection's raw name.
    void buttonTwoSelectionsAndAdditionalEntries()
    {
        auto* first = addSelection(QStringLiteral("/a"), {"a0", "a1"}, 10);
        auto* second = addSelection(QStringLiteral("/b"), {"b0", "b1"}, 1, 0);
        VCComboBoxButtonStyle b(nullptr, "two", true, false);
        QVERIFY(b.SetValueSelection_ValuePath(QStringLiteral("/a")));
        QVERIFY(b.SetSecondSelection_ValuePath(QStringLiteral("/b")));
        QCOMPARE(b.text(), QStringLiteral("b1"));
        b.AddMenuEntry(QStringLiteral("Extra"), this, SLOT(extraPicked()));
        QCOMPARE(entries(b.GetPopup()), (QStringList{"a0=10*", "a1=11", "-", "b0=10000", "b1=10001*", "-", "Extra=-32768"}));

        entry(b, 10000)->trigger();
        QCOMPARE(second->GetCurrentKey(), 0L);
        QCOMPARE(first->GetCurrentKey(), 10L);
        QVERIFY(entry(b, 10000)->isChecked() && !entry(b, 10001)->isChecked());
        entry(b, 11)->trigger();
        QCOMPARE(first->GetCurrentKey(), 11L);
        extras = 0;
        b.GetPopup()->actions().last()->trigger();
        QCOMPARE(extras, 1);
        QCOMPARE(recordings(), 2);

        // Disabled with the keep flag: the button and the additional entry stay usable, the wheel not.
        b.setEnabled(false);
        QVERIFY(b.isEnabled());
        QVERIFY(!entry(b, 10)->isEnabled());
        QVERIFY(b.GetPopup()->actions().last()->isEnabled());
        b.show();
        wheel(&b, 1);
        QCOMPARE(first->GetCurrentKey(), 11L);
        b.setEnabled(true);
        wheel(&b, 1);
        QCOMPARE(first->GetCurrentKey(), 10L);

        // No additional entries: a plain disable.
        VCComboBoxButtonStyle plain(nullptr, "p", true, false);
        QVERIFY(plain.SetValueSelection_ValuePath(QStringLiteral("/a")));
        plain.setEnabled(false);
        QVERIFY(!plain.isEnabled());
        QVERIFY(!plain.GetPopup()->isEnabled());
    }

    void buttonMultiSelections()
    {
        auto* m = addMulti(QStringLiteral("/m"), 0, 3);
        m->SetNoneEntry(true, QStringLiteral("none"));
        m->SetSeveralEntryText(QStringLiteral("several"));
        auto* n = addMulti(QStringLiteral("/n"), 0, 3, {2});
        VCComboBoxButtonStyle b(nullptr, "multi", false, false);
        QVERIFY(b.SetValueSelection_ValuePath(QStringLiteral("/m")));
        QVERIFY(b.SetSecondSelection_ValuePath(QStringLiteral("/n")));
        QCOMPARE(b.text(), QStringLiteral("none"));
        // The second is filled by key and checked by place: key 2 stands at place 1, id 10001.
        QCOMPARE(entries(b.GetPopup()), (QStringList{"m0=0", "m2=2", "m4=4", "-", "m0=10000", "m2=10002", "m4=10004"}));

        const QList<QAction*> before = b.GetPopup()->actions();
        entry(b, 2)->trigger(); // checks it
        QVERIFY(m->IsItemChecked(2));
        QCOMPARE(b.text(), QStringLiteral("m2"));
        m->SetItemChecked(4, true, nullptr);
        QCOMPARE(b.text(), QStringLiteral("several"));
        entry(b, 2)->trigger(); // unchecks it
        QCOMPARE(b.text(), QStringLiteral("m4"));
        QCOMPARE(recordings(), 2);
        QCOMPARE(b.GetPopup()->actions(), before); // check marks moved, no entry rebuilt
        QVERIFY(entry(b, 4)->isChecked() && !entry(b, 2)->isChecked());
        m->UncheckAll(nullptr);
        QCOMPARE(b.text(), QStringLiteral("none"));
        // The second's marks move by place as well: key 4 at place 2 marks id 10002.
        n->SetItemChecked(4, true, nullptr);
        QVERIFY(entry(b, 10002)->isChecked() && !entry(b, 10004)->isChecked());
        n->SetItemChecked(4, false, nullptr);
        QVERIFY(!entry(b, 10002)->isChecked());
        QCOMPARE(b.GetPopup()->actions(), before);

        m->AddItem(1, QStringLiteral("m1")); // the items change: rebuilt
        QVERIFY(entry(b, 1));
        QVERIFY(b.GetPopup()->actions() != before);
    }

    void buttonBuddy()
    {
        auto* sel = addSelection(QStringLiteral("/s"), {"one", "two", "three"}, 11);
        VCComboBoxButtonStyle b(nullptr, "buddy", false, false);
        b.SetOneOfButtonCombo(nullptr);
        // Without a buddy, each entry is traced when the mask asks for details; with one, none is.
        ErrorHandler::Instance().SetReportingMask(ErrorHandler::Details);
        defaultFilter = QLoggingCategory::installFilter(nullptr); // the filter in force, known before the next runs
        QLoggingCategory::installFilter(withDetails);
        const QtMessageHandler previous = qInstallMessageHandler(collectTraces);
        traces.clear();
        QVERIFY(b.SetValueSelection(sel)); // one rebuild
        QCOMPARE(traces.size(), 3);
        QVERIFY2(traces[1].contains(QStringLiteral("VCComboBoxButtonStyle::AddStrings2Combo()two11 10")), qPrintable(traces[1]));
        Buddy buddy;
        buddy.refused = QStringLiteral("two");
        SetComboBuddy(&b, &buddy);
        QVERIFY(b.SetValueSelection_ValuePath(QStringLiteral("/s")));
        qInstallMessageHandler(previous);
        QLoggingCategory::installFilter(defaultFilter);
        ErrorHandler::Instance().SetReportingMask(ErrorHandler::Assertions | ErrorHandler::Failures);
        QCOMPARE(traces.size(), 3);
        QCOMPARE(entries(b.GetPopup()), (QStringList{"one=10", "three=12"}));
        QCOMPARE(b.text(), QStringLiteral("two")); // refused, yet current: shown, not checked
        entry(b, 12)->trigger();
        QCOMPARE(sel->GetCurrentKey(), 12L);
        QCOMPARE(buddy.told, QStringList{"three"});
        QVERIFY(entry(b, 12)->isChecked());
        SetComboBuddy(&b, nullptr);
        entry(b, 10)->trigger();
        QCOMPARE(buddy.told.size(), 1);
    }

    // A log overrun, or changes of several kinds in one notification, rebuild; the control then
    // shows what the value holds.
    void changeLogOverrun_data()
    {
        QTest::addColumn<bool>("classic");
        QTest::newRow("classic") << true;
        QTest::newRow("button style") << false;
    }
    void changeLogOverrun()
    {
        QFETCH(bool, classic);
        auto* m = addMulti(QStringLiteral("/m"), classic ? 1 : 0, 6, {0});
        m->SetChangeLogCapacity(2);
        VCComboBoxClassic box(nullptr, "c");
        VCComboBoxButtonStyle button(nullptr, "b", false, false);
        QVERIFY(classic ? box.SetValueSelection_ValuePath(QStringLiteral("/m"))
                        : button.SetValueSelection_ValuePath(QStringLiteral("/m")));
        {
            values::ValueTransaction batch = m->CreateTransaction(ValueChanged, nullptr);
            for (unsigned key : {2u, 4u, 6u, 8u, 10u})
                m->SetItemChecked(int(key), true, nullptr);
            m->SetItemChecked(8, false, nullptr);
        }
        if (classic) {
            QCOMPARE(box.currentText(), QStringLiteral("m10"));
        } else {
            for (unsigned key = 0; key <= 10; key += 2)
                QCOMPARE(entry(button, int(key))->isChecked(), m->IsItemChecked(int(key)));
            QCOMPARE(button.text(), QString()); // several, with no text for it
        }
        {
            values::ValueTransaction batch = m->CreateTransaction(ValueChanged, nullptr);
            m->UncheckAll(nullptr);
            m->AddItem(12, QStringLiteral("m12"), true);
        }
        if (classic) {
            QCOMPARE(rows(box).last(), QStringLiteral("m12"));
            QCOMPARE(box.currentText(), QStringLiteral("m12"));
        } else {
            QVERIFY(entry(button, 12)->isChecked() && !entry(button, 10)->isChecked());
            QCOMPARE(button.text(), QStringLiteral("m12"));
        }
    }

    // Removed, destroyed and rebound under a control: no crash and no write.
    void rebindRemoveDestroy_data() { changeLogOverrun_data(); }
    void rebindRemoveDestroy()
    {
        QFETCH(bool, classic);
        auto* a = addSelection(QStringLiteral("/a"), {"a0", "a1", "a2"}, 12);
        auto* b = addSelection(QStringLiteral("/b"), {"b0"}, 10);
        auto* m = addMulti(QStringLiteral("/m"), 1, 3, {2});
        Counter counter;
        for (Observable* o : std::initializer_list<Observable*>{a, b, m})
            counter.watch(o);
        VCComboBoxClassic box(nullptr, "c");
        VCComboBoxButtonStyle button(nullptr, "b", false, false);
        const auto bind = [&](const char* path) {
            return classic ? box.SetValueSelection_ValuePath(QLatin1String(path))
                           : button.SetValueSelection_ValuePath(QLatin1String(path));
        };
        QVERIFY(bind("/a"));
        QVERIFY(bind("/b")); // from index 2 to a one-item list
        QVERIFY(bind("/m"));
        QVERIFY(bind("/a"));
        if (!classic)
            QVERIFY(button.SetSecondSelection_ValuePath(QStringLiteral("/a"))); // one value in two roles
        QCOMPARE(counter.count(ValueChanged), 0);
        QCOMPARE(classic ? box.currentText() : button.text(), QStringLiteral("a2"));
        QVERIFY(bind("/m"));
        QVERIFY(tree().Remove(QStringLiteral("/m")));
        QVERIFY(tree().Remove(QStringLiteral("/a")));
        QVERIFY(!classic || !box.GetValueSelection());
        if (!classic)
            button.RebuildMenu();
        // Destroyed with no Removed before it: a value outside the tree, bound by pointer.
        auto* loose = new values::ValueSelection;
        loose->AddItem(QStringLiteral("x"), 0, 1, nullptr);
        QVERIFY(classic ? box.SetValueSelection(loose) : button.SetValueSelection(loose));
        delete loose;
        QVERIFY(!box.GetValueSelection());
        if (!classic)
            button.RebuildMenu();
        QVERIFY(bind("/b"));
        QCOMPARE(counter.count(ValueChanged), 0);
    }
};

QTEST_MAIN(VCComboBoxTest)
#include "vccomboboxtest.moc"
