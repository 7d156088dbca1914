#include <vandrel/vccheckbox.h>

#include <QStyleOptionButton>
#include <QtTest>

#include <functional>

namespace {

const QString kRoot = QStringLiteral("/panel");
const QString kPath = QStringLiteral("/panel/x");

values::Tree& tree() { return *values::Tree::Instance(); }
values::UndoRecorder& recorder() { return values::UndoRecorder::Instance(); }

template <class V>
V* add(const QString& path, V* value)
{
    tree().Add(path, value);
    return value;
}

values::BoolValue* addBool(const QString& path, bool on) { return add(path, new values::BoolValue(on)); }

QStringList recordings(const QString& basePath = kRoot)
{
    const auto list = values::UndoRecordingsToValueClient(basePath).GetUndoRecordingDescriptions();
    return QStringList(list.begin(), list.end());
}

bool shown(QWidget& widget)
{
    widget.show();
    return QTest::qWaitForWindowExposed(&widget);
}

// A click on the box itself, where a user aims.
void clickBox(QCheckBox* box)
{
    QStyleOptionButton option;
    option.initFrom(box);
    const QRect indicator = box->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box);
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, indicator.center());
}

// Items with the keys 0, 1, 7, 30 and 20; \a current is made current.
values::ValueSelection* addSelection(const QString& path, long current)
{
    auto* selection = add(path, new values::ValueSelection);
    for (long key : {0L, 1L, 7L, 30L, 20L})
        selection->AddItem(QString::number(key), double(key), key, nullptr);
    selection->SelectKey(current, nullptr);
    return selection;
}

// Items 1 (checked), 2 and 3 (checked), any number of them checked.
values::StringMultiSelection* addMulti(const QString& path)
{
    auto* multi = add(path, new values::StringMultiSelection(0));
    multi->AddItem(1, QStringLiteral("a"), true);
    multi->AddItem(2, QStringLiteral("b"), false);
    multi->AddItem(3, QStringLiteral("c"), true);
    return multi;
}

enum Kind { BoolPath, BoolPointer, SelectionPath, SelectionPointer, Item };

// A value of one kind, unchecked, a box bound to it, and the value's own idea of "checked".
struct Subject
{
    values::ValueBase* value = nullptr;
    bool bound = false;
    std::function<bool()> held;
    std::function<void(bool)> write; // as the application writes: null originator
};

Subject bindSubject(VCCheckBox& box, int kind, const QString& path = kPath)
{
    Subject s;
    if (kind == BoolPath || kind == BoolPointer) {
        auto* flag = addBool(path, false);
        s.value = flag;
        s.bound = kind == BoolPath ? box.Set_ValuePath(path) : box.SetBoolean(flag);
        s.held = [flag] { return flag->GetValue(); };
        s.write = [flag](bool on) { flag->SetValue(on, nullptr); };
    } else if (kind == SelectionPath || kind == SelectionPointer) {
        // By path with the keys 1 and 0, by pointer with 20 and 30.
        const long checkedKey = kind == SelectionPath ? 1 : 20;
        const long uncheckedKey = kind == SelectionPath ? 0 : 30;
        auto* selection = addSelection(path, uncheckedKey);
        s.value = selection;
        s.bound = kind == SelectionPath ? box.Set_ValuePath(path) : box.SetSelection(selection, checkedKey, uncheckedKey);
        s.held = [=] { return selection->GetCurrentKey() == checkedKey; };
        s.write = [=](bool on) { selection->SelectKey(on ? checkedKey : uncheckedKey, nullptr); };
    } else {
        auto* multi = addMulti(path);
        s.value = multi;
        s.bound = box.SetMultiSelection_ValuePath(path, 2);
        s.held = [multi] { return multi->IsItemChecked(2); };
        s.write = [multi](bool on) { multi->SetItemChecked(2, on, nullptr); };
    }
    return s;
}

void addKindRows(std::initializer_list<int> kinds)
{
    QTest::addColumn<int>("kind");
    static const char* const names[] = {"boolean by path", "boolean by pointer", "selection by path",
                                        "selection by pointer", "multi-selection item"};
    for (int kind : kinds)
        QTest::newRow(names[kind]) << kind;
}

// Counts the ValueChanged calls that reach the box.
class CountingCheckBox : public VCCheckBox
{
public:
    using VCCheckBox::VCCheckBox;
    void Update(Observable* source, TChangeCode code) override
    {
        if (code == ValueChanged)
            ++valueChanges;
        VCCheckBox::Update(source, code);
    }
    int valueChanges = 0;
};

} // namespace

class VCCheckBoxTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        tree().Clear();
        recorder().Clear();
    }

    void showsAndWrites_data() { addKindRows({BoolPath, BoolPointer, SelectionPath, SelectionPointer, Item}); }
    void showsAndWrites()
    {
        QFETCH(int, kind);
        const bool pointerForm = kind == BoolPointer || kind == SelectionPointer;
        VCCheckBox box(nullptr, "box");
        QVERIFY(shown(box));
        const Subject s = bindSubject(box, kind);
        QVERIFY(s.bound);
        // The pointer forms send no state: the box waits for the value's next state change.
        QCOMPARE(box.isEnabled(), !pointerForm);
        if (pointerForm) {
            s.value->SetState(Disabled);
            s.value->SetState(Enabled);
        }
        QVERIFY(box.isEnabled() && !box.isChecked());

        // The application's writes show at once and are not recorded.
        s.write(true);
        QVERIFY(box.isChecked());
        QVERIFY(recordings().isEmpty());
        box.setChecked(false);
        QVERIFY(box.GetBool()); // what the value holds, not what the widget shows
        box.setChecked(true);

        QSignalSpy clicked(&box, &QCheckBox::clicked);
        clickBox(&box);
        QCOMPARE(clicked.count(), 1);
        QVERIFY(!box.isChecked() && !s.held() && !box.GetBool());
        const QStringList list = recordings();
        QCOMPARE(list.size(), 1);
        QVERIFY2(list.first().startsWith(kPath + QLatin1String(": ")), qPrintable(list.first()));

        QTest::keyClick(&box, Qt::Key_Space);
        QCOMPARE(clicked.count(), 2);
        QVERIFY(s.held());
        QCOMPARE(recordings().size(), 2);

        QVERIFY(values::UndoRecordingsToValueClient(kRoot).ExecuteUndo(1));
        QVERIFY(!s.held() && !box.isChecked());
    }

    void selectionKeys()
    {
        auto* selection = addSelection(kPath, 7);
        VCCheckBox box(nullptr, "box");
        QVERIFY(shown(box));
        box.setChecked(true);
        QVERIFY(box.Set_ValuePath(kPath));
        // The current item has neither key: unchecked, and a click checks.
        QVERIFY(!box.isChecked());
        clickBox(&box);
        QCOMPARE(selection->GetCurrentKey(), 1L);
        clickBox(&box);
        QCOMPARE(selection->GetCurrentKey(), 0L);

        // Keys given with the pointer form, also with a null selection, stay for a binding by path.
        QVERIFY(box.SetSelection(selection, 20, 30));
        QVERIFY(!box.SetSelection(nullptr, 7, 1));
        QVERIFY(box.Set_ValuePath(kPath));
        selection->SelectKey(7, nullptr);
        QVERIFY(box.isChecked() && box.GetBool());
        clickBox(&box);
        QCOMPARE(selection->GetCurrentKey(), 1L);
        clickBox(&box);
        QCOMPARE(selection->GetCurrentKey(), 7L);

        // With no current item the box keeps what it shows, and the values hold no "checked".
        selection->ClearItems(nullptr);
        selection->Notify(ValueChanged, nullptr);
        QVERIFY(box.isChecked() && !box.GetBool());
    }

    void clickOnTwoBindingsMakesTwoRecordings()
    {
        const QString flagPath = QStringLiteral("/panel/flag"), multiPath = QStringLiteral("/panel/multi");
        auto* flag = addBool(flagPath, false);
        auto* multi = addMulti(multiPath);
        auto* other = addBool(QStringLiteral("/panel/other"), false);
        QWidget window;
        auto* box = new VCCheckBox(&window, "box");
        auto* neighbour = new VCCheckBox(&window, "neighbour");
        neighbour->move(0, 30);
        QVERIFY(box->Set_ValuePath(flagPath) && box->SetMultiSelection_ValuePath(multiPath, 2));
        QVERIFY(neighbour->Set_ValuePath(QStringLiteral("/panel/other")));
        QVERIFY(shown(window));

        clickBox(box);
        QVERIFY(flag->GetValue() && multi->IsItemChecked(2));
        QVERIFY(!recorder().IsRecording());
        const QStringList list = recordings();
        QCOMPARE(list.size(), 2);
        QVERIFY2(list.at(0).startsWith(multiPath + QLatin1String(": ")), qPrintable(list.at(0)));
        QVERIFY2(list.at(1).startsWith(flagPath + QLatin1String(": ")), qPrintable(list.at(1)));

        QVERIFY(values::UndoRecordingsToValueClient(kRoot).ExecuteUndo(2));
        QVERIFY(!flag->GetValue() && !box->isChecked());
        QCOMPARE(multi->GetCheckedKeys(), (std::vector<unsigned>{1, 3}));

        // Switched off, the box writes both without recording; the switch is its own.
        QCOMPARE(recorder().Count(), 0);
        box->SetUndoRecordingEnabled(false);
        clickBox(box);
        QVERIFY(flag->GetValue() && multi->IsItemChecked(2));
        QCOMPARE(recorder().Count(), 0);
        clickBox(neighbour);
        QVERIFY(other->GetValue());
        QCOMPARE(recordings(), recordings(QStringLiteral("/panel/other")));
        QCOMPARE(recorder().Count(), 1);
    }

    void unboundBox()
    {
        auto* flag = addBool(kPath, false);
        VCCheckBox box(nullptr, "Mute");
        QCOMPARE(box.objectName(), QStringLiteral("Mute"));
        QCOMPARE(box.text(), QStringLiteral("Mute"));
        QCOMPARE(box.toolTip(), QStringLiteral("Mute"));
        box.SetText(QStringLiteral("Mute all"));
        QCOMPARE(box.text(), QStringLiteral("Mute all"));
        QCOMPARE(box.toolTip(), QStringLiteral("Mute"));
        QVERIFY(VCCheckBox().objectName().isEmpty());

        QVERIFY(shown(box));
        QVERIFY(!box.GetDirty());
        clickBox(&box); // disabled: the click doesn't reach it
        QVERIFY(!box.isChecked());

        // Enabled by the application all the same, it toggles and writes nothing.
        box.setEnabled(true);
        QVERIFY(!box.Set_ValuePath(QStringLiteral("/panel/missing")));
        QSignalSpy clicked(&box, &QCheckBox::clicked);
        clickBox(&box);
        QTest::keyClick(&box, Qt::Key_Space);
        clickBox(&box);
        QCOMPARE(clicked.count(), 3);
        QVERIFY(box.isChecked() && !flag->GetValue() && !box.GetDirty());
        QCOMPARE(recorder().Count(), 0);
        QVERIFY(!recorder().IsRecording());
    }

    void stateFollowsTheValue_data() { addKindRows({BoolPath, SelectionPath, Item}); }
    void stateFollowsTheValue()
    {
        QFETCH(int, kind);
        VCCheckBox box(nullptr, "box");
        QVERIFY(shown(box));
        const Subject s = bindSubject(box, kind);
        QVERIFY(s.bound);
        s.write(true);
        box.SetDirty(false);

        s.value->SetState(Disabled);
        QVERIFY(!box.isEnabled());
        clickBox(&box);
        QVERIFY(s.held());
        s.value->SetState(Enabled);
        QVERIFY(box.isEnabled());
        QVERIFY(!box.GetDirty()); // a state change is not a change of the value

        // Bound while the value is disabled, a box comes up disabled.
        s.value->SetState(Disabled);
        VCCheckBox late(nullptr, "late");
        QVERIFY(kind == Item ? late.SetMultiSelection_ValuePath(kPath, 2) : late.Set_ValuePath(kPath));
        QVERIFY(!late.isEnabled());
        s.value->SetState(Enabled);
        QVERIFY(late.isEnabled());

        // Removed: the box lets go and keeps its look; a click then toggles only the widget.
        QVERIFY(tree().Remove(kPath));
        QVERIFY(box.isEnabled() && box.isChecked() && !box.GetBool());
        clickBox(&box);
        QVERIFY(!box.isChecked());
        QCOMPARE(recorder().Count(), 0);
    }

    void failedBindingsLeaveItUnbound()
    {
        auto* flag = addBool(QStringLiteral("/panel/flag"), true);
        auto* multi = addMulti(QStringLiteral("/panel/multi"));
        tree().Add(QStringLiteral("/panel/text"), new values::StringValue(QStringLiteral("t")));
        VCCheckBox box(nullptr, "box");
        for (const QString& path : {QStringLiteral("/panel/missing"), QStringLiteral("/panel/text"), QStringLiteral("/panel/multi")}) {
            QVERIFY(box.Set_ValuePath(QStringLiteral("/panel/flag")));
            box.SetDirty(true);
            QVERIFY2(!box.Set_ValuePath(path), qPrintable(path));
            QVERIFY(!flag->IsAttached(&box) && !box.GetDirty() && !box.GetBool());
            QVERIFY(box.isChecked()); // keeps its look
        }
        flag->SetValue(false, nullptr);
        QVERIFY(box.isChecked());

        // A failed path binding leaves the item binding alone, and GetBool answers from it.
        QVERIFY(box.SetMultiSelection_ValuePath(QStringLiteral("/panel/multi"), 1));
        QVERIFY(!box.Set_ValuePath(QStringLiteral("/panel/missing")));
        QVERIFY(multi->IsAttached(&box) && box.GetBool());
        multi->SetItemChecked(1, false, nullptr);
        QVERIFY(!box.isChecked());

        // A failed item binding lets go of the old item and clears the flag.
        box.SetDirty(true);
        QVERIFY(!box.SetMultiSelection_ValuePath(QStringLiteral("/panel/flag"), 1));
        QVERIFY(!multi->IsAttached(&box) && !box.GetDirty());
        multi->SetItemChecked(1, true, nullptr);
        QVERIFY(!box.isChecked() && !box.GetBool());

        // A null selection unbinds too.
        QVERIFY(box.Set_ValuePath(QStringLiteral("/panel/flag")));
        QVERIFY(!box.SetSelection(nullptr, 1, 0));
        QCOMPARE(flag->ObserverCount(), 0);
    }

    void pointerForms_data() { addKindRows({BoolPointer, SelectionPointer}); }
    void pointerForms()
    {
        QFETCH(int, kind);
        const bool boolean = kind == BoolPointer;
        VCCheckBox box(nullptr, "box");
        QVERIFY(shown(box));
        const Subject s = bindSubject(box, kind);
        QVERIFY(box.GetDirty()); // unlike a binding by path, the first picture counts
        s.write(true);
        clickBox(&box); // still disabled: the click doesn't reach it
        QVERIFY(s.held());

        // Enabled through another binding, the box stays so when bound back to a disabled value.
        s.value->SetState(Disabled);
        QVERIFY(bindSubject(box, boolean ? BoolPath : SelectionPath, QStringLiteral("/panel/y")).bound);
        QVERIFY(box.isEnabled());
        QVERIFY(boolean ? box.SetBoolean(static_cast<values::BoolValue*>(s.value))
                        : box.SetSelection(static_cast<values::ValueSelection*>(s.value), 20, 30));
        QVERIFY(box.isEnabled() && box.isChecked());

        // A value outside the tree, deleted while bound, tells so only by ValueDestroyed.
        values::ValueBase* loose = nullptr;
        if (boolean) {
            auto* flag = new values::BoolValue(true);
            QVERIFY(box.SetBoolean(flag));
            loose = flag;
        } else {
            auto* selection = new values::ValueSelection;
            selection->AddItem(QStringLiteral("on"), 1, 1, nullptr);
            QVERIFY(box.SetSelection(selection, 1, 0));
            loose = selection;
        }
        QVERIFY(box.GetBool());
        delete loose;
        QVERIFY(!box.GetBool() && box.isChecked());
        box.click(); // writes to nothing
        QVERIFY(!box.isChecked() && s.held());
    }

    void dirtyFlag()
    {
        auto* flag = addBool(QStringLiteral("/panel/flag"), false);
        auto* other = addBool(QStringLiteral("/panel/other"), false);
        addMulti(QStringLiteral("/panel/multi"));
        VCCheckBox box(nullptr, "box");
        QVERIFY(shown(box));
        QVERIFY(box.Set_ValuePath(QStringLiteral("/panel/flag")));
        QVERIFY(!box.GetDirty());
        flag->SetValue(true, nullptr);
        QVERIFY(box.GetDirty());
        box.SetDirty(false);
        clickBox(&box);
        QVERIFY(box.GetDirty());
        // A state change from a value the box doesn't hold counts as a change.
        box.SetDirty(false);
        box.Update(other, StateChanged);
        QVERIFY(box.GetDirty());
        // Binding an item leaves the flag set by its first picture.
        box.SetDirty(false);
        QVERIFY(box.SetMultiSelection_ValuePath(QStringLiteral("/panel/multi"), 1));
        QVERIFY(box.GetDirty());
    }

    void originatorIsNotToldOfItsOwnWrite_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("selfNotified");
        QTest::newRow("boolean") << int(BoolPath) << 0;
        QTest::newRow("selection") << int(SelectionPath) << 1;
        QTest::newRow("multi-selection item") << int(Item) << 1;
    }
    void originatorIsNotToldOfItsOwnWrite()
    {
        QFETCH(int, kind);
        QWidget window;
        auto* box = new CountingCheckBox(&window, "box");
        auto* twin = new CountingCheckBox(&window, "twin");
        twin->move(0, 30);
        QVERIFY(bindSubject(*box, kind).bound);
        QVERIFY(kind == Item ? twin->SetMultiSelection_ValuePath(kPath, 2) : twin->Set_ValuePath(kPath));
        QVERIFY(shown(window));
        box->valueChanges = twin->valueChanges = 0;

        clickBox(box);
        QTEST(box->valueChanges, "selfNotified");
        QCOMPARE(twin->valueChanges, 1);
        QVERIFY(twin->isChecked() && box->isChecked());
    }
};

QTEST_MAIN(VCCheckBoxTest)
#include "vccheckboxtest.moc"
