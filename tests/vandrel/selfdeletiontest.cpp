// Every control survives being deleted by an observer of a write it makes itself: an application
// that closes a panel when a value changes, or an undo that rebuilds it. Run under ASan, a control
// that touches itself after such a write fails here.

#include <vandrel/vandrel.h>

#include <QAbstractItemView>
#include <QDateTimeEdit>
#include <QLineEdit>
#include <QMenuBar>
#include <QSpinBox>
#include <QPointer>
#include <QtTest>

#include <functional>
#include <utility>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

// Deletes the widget it guards when the watched value reports a change, as a panel closing would.
class Closer : public IObserver
{
public:
    Closer(Observable* watched, QObject* victim, int spared)
        : m_watched(watched)
        , m_victim(victim)
        , m_nSpared(spared)
    {
        m_watched->Attach(this);
    }
    ~Closer() override
    {
        if (m_watched)
            m_watched->Detach(this);
    }
    void Update(Observable*, TChangeCode code) override
    {
        if (code == ValueDestroyed)
            m_watched = nullptr;
        if ((code == ValueChanged || code == PendingValueChanged) && m_victim && m_nSpared-- <= 0) {
            ++closed;
            // Taken first: a field commits from its destructor, which notifies once more.
            delete std::exchange(m_victim, nullptr).data();
        }
    }
    int closed = 0;

private:
    Observable* m_watched;
    QPointer<QObject> m_victim;
    int m_nSpared; // changes to let pass before closing
};

struct Case
{
    const char* name;
    // Makes the control on the window, bound to a value it adds to the tree; returns the control
    // and the value the closer watches.
    std::function<QPair<QObject*, Observable*>(QWidget*)> make;
    // The user input that makes the control write.
    std::function<void(QWidget*)> act;
    // What the value holds after the write.
    std::function<bool()> wrote;
    // Changes of the value that the closer lets pass first.
    int spared = 0;
};

values::ValueSelection* addSelection(const QString& path, int count, long current)
{
    auto* selection = new values::ValueSelection;
    for (long key = 0; key < count; ++key)
        selection->AddItem(QStringLiteral("item %1").arg(key), double(key), key, nullptr);
    selection->SelectKey(current, nullptr);
    tree().Add(path, selection);
    return selection;
}

template <class T>
T* add(const QString& path, T* value)
{
    tree().Add(path, value);
    return value;
}

template <class T>
T* valueAt(const char* path)
{
    return dynamic_cast<T*>(tree().Find(QString::fromLatin1(path)));
}

void typeAndReturn(QWidget* field, const QString& text)
{
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(field, text);
    QTest::keyClick(field, Qt::Key_Return);
}

void typeAndLeave(QWidget* field, const QString& text)
{
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(field, text);
    field->window()->findChild<QLineEdit*>(QStringLiteral("elsewhere"))->setFocus();
}

// A click on the box of a list's first row.
void clickFirstRow(QWidget* list)
{
    auto* row = static_cast<CheckSortListViewItem*>(static_cast<QTreeWidget*>(list)->topLevelItem(0));
    QTest::mouseClick(row->GetCheckBox(), Qt::LeftButton, Qt::NoModifier, QPoint(5, row->GetCheckBox()->height() / 2));
}

// Opens the menu \a c and picks the entry \a downs steps down with Return, as a user does.
void pickInMenu(QWidget* c, int downs)
{
    static_cast<QMenu*>(c)->popup(c->parentWidget()->mapToGlobal(QPoint(10, 10)));
    if (!QTest::qWaitForWindowExposed(c))
        qWarning("the menu did not show");
    for (int i = 0; i < downs; ++i)
        QTest::keyClick(c, Qt::Key_Down);
    QTest::keyPress(c, Qt::Key_Return);
}

const QList<Case>& cases()
{
    static const QList<Case> all = {
        {"button click",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCButton(w, QStringLiteral("b"));
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) { QTest::mouseClick(c, Qt::LeftButton); },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"button key",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCButton(w, QStringLiteral("b"));
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) {
             c->setFocus();
             QTest::keyClick(c, Qt::Key_Space);
             QTest::qWait(150); // the animated click
         },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"check box on a boolean",
         [](QWidget* w) {
             auto* b = add(QStringLiteral("/b"), new values::BoolValue(false));
             auto* c = new VCCheckBox(w, "c");
             c->Set_ValuePath(QStringLiteral("/b"));
             return qMakePair<QObject*, Observable*>(c, b);
         },
         [](QWidget* c) { QTest::mouseClick(c, Qt::LeftButton, Qt::NoModifier, QPoint(5, c->height() / 2)); },
         [] { return valueAt<values::BoolValue>("/b")->GetValue(); }},
        {"check box on a multi-selection item",
         [](QWidget* w) {
             auto* m = add(QStringLiteral("/m"), new values::StringMultiSelection(0));
             m->AddItem(4, QStringLiteral("four"));
             auto* c = new VCCheckBox(w, "c");
             c->SetMultiSelection_ValuePath(QStringLiteral("/m"), 4);
             return qMakePair<QObject*, Observable*>(c, m);
         },
         [](QWidget* c) { QTest::mouseClick(c, Qt::LeftButton, Qt::NoModifier, QPoint(5, c->height() / 2)); },
         [] { return valueAt<values::StringMultiSelection>("/m")->IsItemChecked(4); }},
        {"slider key",
         [](QWidget* w) {
             auto* n = add(QStringLiteral("/n"), new values::IntNumeric(5, 0, 10, 1));
             auto* c = new VCSlider(w, "s");
             c->SetNumeric_ValuePath(QStringLiteral("/n"));
             return qMakePair<QObject*, Observable*>(c, n);
         },
         [](QWidget* c) { QTest::keyClick(c, Qt::Key_Up); },
         [] { return valueAt<values::IntNumeric>("/n")->GetValue() == 6; }},
        {"scroll bar wheel",
         [](QWidget* w) {
             auto* n = add(QStringLiteral("/n"), new values::IntNumeric(5, 0, 10, 1));
             auto* c = new VCScrollBar(w, "s");
             c->resize(20, 100);
             c->Set_ValuePath(QStringLiteral("/n"));
             return qMakePair<QObject*, Observable*>(c, n);
         },
         [](QWidget* c) { QTest::keyClick(c, Qt::Key_Down); },
         [] { return valueAt<values::IntNumeric>("/n")->GetValue() == 6; }},
        {"scroll buttons click",
         [](QWidget* w) {
             auto* n = add(QStringLiteral("/n"), new values::IntNumeric(5, 0, 10, 1));
             auto* c = new VCScrollButtons(w, VCScrollButtons::ScrollButtonsTop | VCScrollButtons::ScrollButtonsLine);
             c->Set_ValuePath(QStringLiteral("/n"));
             return qMakePair<QObject*, Observable*>(c, n);
         },
         [](QWidget* c) { QTest::mouseClick(c, Qt::LeftButton); },
         [] { return valueAt<values::IntNumeric>("/n")->GetValue() == 6; }},
        {"float spin step, direct",
         [](QWidget* w) {
             auto* n = add(QStringLiteral("/d"), new values::DoubleNumeric(5, 0, 10, 1));
             auto* c = new VCNumericFloatSpin(w, "f", false);
             c->SetNumeric_ValuePath(QStringLiteral("/d"));
             return qMakePair<QObject*, Observable*>(c, n);
         },
         [](QWidget* c) { QTest::keyClick(c, Qt::Key_Up); },
         [] { return valueAt<values::DoubleNumeric>("/d")->GetValue() == 6.0; }},
        {"float spin step, pending",
         [](QWidget* w) {
             auto* n = add(QStringLiteral("/d"), new values::DoubleNumeric(5, 0, 10, 1));
             auto* c = new VCNumericFloatSpin(w, "f", true);
             c->SetNumeric_ValuePath(QStringLiteral("/d"));
             return qMakePair<QObject*, Observable*>(c, n);
         },
         [](QWidget* c) { QTest::keyClick(c, Qt::Key_Up); },
         [] { return valueAt<values::DoubleNumeric>("/d")->GetPendingValue() == 6.0; }},
        {"float spin typed",
         [](QWidget* w) {
             auto* n = add(QStringLiteral("/d"), new values::DoubleNumeric(5, 0, 10, 1));
             auto* c = new VCNumericFloatSpin(w, "f", true);
             c->SetNumeric_ValuePath(QStringLiteral("/d"));
             return qMakePair<QObject*, Observable*>(c, n);
         },
         [](QWidget* c) { typeAndReturn(c, QStringLiteral("7")); },
         [] { return valueAt<values::DoubleNumeric>("/d")->GetValue() == 7.0; }},
        {"spin selection step",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCSpinSelectionBox(w, "s");
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) { QTest::keyClick(c, Qt::Key_Up); },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"line edit, text, Return",
         [](QWidget* w) {
             auto* s = add(QStringLiteral("/t"), new values::StringValue(QStringLiteral("old")));
             auto* c = new VCLineEdit(w, "l");
             c->SetText_ValuePath(QStringLiteral("/t"));
             return qMakePair<QObject*, Observable*>(c, s);
         },
         [](QWidget* c) { typeAndReturn(c, QStringLiteral("new")); },
         [] { return valueAt<values::StringValue>("/t")->GetValue() == QLatin1String("new"); }},
        {"line edit, text set by the application",
         [](QWidget* w) {
             auto* s = add(QStringLiteral("/t"), new values::StringValue(QStringLiteral("old")));
             auto* c = new VCLineEdit(w, "l");
             c->SetText_ValuePath(QStringLiteral("/t"));
             return qMakePair<QObject*, Observable*>(c, s);
         },
         // The destructor commits what the field shows: that must be the new text, not the old.
         [](QWidget* c) { static_cast<VCLineEdit*>(c)->SetText(QStringLiteral("new")); },
         [] { return valueAt<values::StringValue>("/t")->GetValue() == QLatin1String("new"); }},
        {"line edit, text, focus loss, deleted by the second commit",
         [](QWidget* w) {
             auto* s = add(QStringLiteral("/t"), new values::StringValue(QStringLiteral("old")));
             auto* c = new VCLineEdit(w, "l");
             c->SetText_ValuePath(QStringLiteral("/t"));
             return qMakePair<QObject*, Observable*>(c, s);
         },
         // The first commit and its echo pass; Qt's editingFinished() brings the second commit.
         [](QWidget* c) { typeAndLeave(c, QStringLiteral("new")); },
         [] { return valueAt<values::StringValue>("/t")->GetValue() == QLatin1String("new"); },
         2},
        {"line edit, number, focus loss",
         [](QWidget* w) {
             auto* n = add(QStringLiteral("/d"), new values::DoubleNumeric(5, 0, 10, 1));
             auto* c = new VCLineEdit(w, "l");
             c->SetText_ValuePath(QStringLiteral("/d"));
             return qMakePair<QObject*, Observable*>(c, n);
         },
         [](QWidget* c) { typeAndLeave(c, QStringLiteral("7")); },
         [] { return valueAt<values::DoubleNumeric>("/d")->GetValue() == 7.0; }},
        {"line edit, number above the maximum",
         [](QWidget* w) {
             auto* n = add(QStringLiteral("/d"), new values::DoubleNumeric(5, 0, 10, 1));
             auto* c = new VCLineEdit(w, "l");
             c->SuppressErrorMessage(true);
             c->SetText_ValuePath(QStringLiteral("/d"));
             return qMakePair<QObject*, Observable*>(c, n);
         },
         [](QWidget* c) { typeAndReturn(c, QStringLiteral("70")); },
         [] { return valueAt<values::DoubleNumeric>("/d")->GetValue() == 10.0; }},
        {"line edit, selection",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCLineEdit(w, "l");
             c->SetText_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) { typeAndReturn(c, QStringLiteral("item 2")); },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 2; }},
        {"text edit, focus loss",
         [](QWidget* w) {
             auto* s = add(QStringLiteral("/t"), new values::StringValue(QStringLiteral("old")));
             auto* c = new VCTextEdit(w);
             c->SetText_ValuePath(QStringLiteral("/t"));
             return qMakePair<QObject*, Observable*>(c, s);
         },
         [](QWidget* c) { typeAndLeave(c, QStringLiteral("new")); },
         [] { return valueAt<values::StringValue>("/t")->GetValue() == QLatin1String("new"); }},
        {"coordinate edit, Return",
         [](QWidget* w) {
             auto* lat = add(QStringLiteral("/lat"), new values::DoubleNumeric(1, -90, 90, 0));
             add(QStringLiteral("/lon"), new values::DoubleNumeric(2, -180, 180, 0));
             auto* c = new VCCoordEdit(w, "p");
             c->SetFormat(GeoDecimal);
             c->SetLatitude_ValuePath(QStringLiteral("/lat"));
             c->SetLongitude_ValuePath(QStringLiteral("/lon"));
             return qMakePair<QObject*, Observable*>(c, lat);
         },
         [](QWidget* c) { typeAndReturn(c, QStringLiteral("-10.5 -20.25")); },
         [] { return valueAt<values::DoubleNumeric>("/lat")->GetValue() == -10.5; }},
        {"lamp press",
         [](QWidget* w) {
             auto* b = add(QStringLiteral("/b"), new values::BoolValue(false));
             auto* c = new VCLED(w, "led", true);
             c->SetBool_ValuePath(QStringLiteral("/b"));
             return qMakePair<QObject*, Observable*>(c, b);
         },
         // A press alone: the lamp writes on it, and a release would go to a deleted widget.
         [](QWidget* c) { QTest::mousePress(c, Qt::LeftButton); },
         [] { return valueAt<values::BoolValue>("/b")->GetValue(); }},
        {"date-time edit, time stepped",
         [](QWidget* w) {
             auto* t = add(QStringLiteral("/t"), new values::Int64Value(90061000000LL));
             auto* c = new VCDateTimeEdit(w, "when");
             c->SetDifferential(true);
             c->SetDateTime_ValuePath(QStringLiteral("/t"));
             return qMakePair<QObject*, Observable*>(c, t);
         },
         [](QWidget* c) {
             QDateTimeEdit* edit = static_cast<VCDateTimeEdit*>(c)->GetTimeEdit();
             edit->setFocus();
             edit->setSelectedSection(QDateTimeEdit::HourSection);
             QTest::keyClick(edit, Qt::Key_Up);
         },
         [] { return valueAt<values::Int64Value>("/t")->GetValue() == 93661000000LL; }},
        {"date-time edit, time typed",
         [](QWidget* w) {
             auto* t = add(QStringLiteral("/t"), new values::Int64Value(0));
             auto* c = new VCDateTimeEdit(w, "when");
             c->SetDifferential(true);
             c->SetDateTime_ValuePath(QStringLiteral("/t"));
             return qMakePair<QObject*, Observable*>(c, t);
         },
         [](QWidget* c) {
             QDateTimeEdit* edit = static_cast<VCDateTimeEdit*>(c)->GetTimeEdit();
             edit->setFocus();
             edit->setSelectedSection(QDateTimeEdit::HourSection);
             QTest::keyClick(edit, Qt::Key_5); // 5 can begin no other hour: taken at once
         },
         [] { return valueAt<values::Int64Value>("/t")->GetValue() == 18000000000LL; }},
        {"date-time edit, days stepped",
         [](QWidget* w) {
             auto* t = add(QStringLiteral("/t"), new values::Int64Value(90061000000LL));
             auto* c = new VCDateTimeEdit(w, "when");
             c->SetDifferential(true);
             c->SetDateTime_ValuePath(QStringLiteral("/t"));
             return qMakePair<QObject*, Observable*>(c, t);
         },
         [](QWidget* c) {
             QSpinBox* days = static_cast<VCDateTimeEdit*>(c)->GetDaysEdit();
             days->setFocus();
             QTest::keyClick(days, Qt::Key_Up);
         },
         [] { return valueAt<values::Int64Value>("/t")->GetValue() == 176461000000LL; }},
        {"date-time edit, days shown cut to the box",
         [](QWidget* w) {
             auto* t = add(QStringLiteral("/t"), new values::Int64Value(0));
             auto* c = new VCDateTimeEdit(w, "when");
             c->SetDifferential(true);
             c->SetDateTime_ValuePath(QStringLiteral("/t"));
             return qMakePair<QObject*, Observable*>(c, t);
         },
         // The application's write makes the box show 20000 days, which the control writes back.
         [](QWidget*) { valueAt<values::Int64Value>("/t")->SetValue(30000 * 86400000000LL, nullptr); },
         [] { return valueAt<values::Int64Value>("/t")->GetValue() == 20000 * 86400000000LL; },
         1},
        {"date-time edit, bound to a number it writes back in whole seconds",
         [](QWidget* w) {
             auto* t = add(QStringLiteral("/t"), new values::DoubleNumeric(90061500000.0, 0.0, 1e12));
             add(QStringLiteral("/s"), new values::Int64Value(0));
             auto* c = new VCDateTimeEdit(w, "when");
             c->SetDifferential(true);
             c->SetDateTime_ValuePath(QStringLiteral("/s")); // enabled by a first value, then rebound
             return qMakePair<QObject*, Observable*>(c, t);
         },
         [](QWidget* c) { QVERIFY(static_cast<VCDateTimeEdit*>(c)->SetDateTime_ValuePath(QStringLiteral("/t"))); },
         [] { return valueAt<values::DoubleNumeric>("/t")->GetValue() == 90061000000.0; }},
        {"date-time edit, mode switch",
         [](QWidget* w) {
             auto* t = add(QStringLiteral("/t"), new values::Int64Value(1500000));
             auto* c = new VCDateTimeEdit(w, "when");
             c->SetDateTime_ValuePath(QStringLiteral("/t"));
             return qMakePair<QObject*, Observable*>(c, t);
         },
         [](QWidget* c) { static_cast<VCDateTimeEdit*>(c)->SetDifferential(true); },
         [] { return valueAt<values::Int64Value>("/t")->GetValue() % 1000000 == 0; }},
        {"undo button",
         [](QWidget* w) {
             auto* n = add(QStringLiteral("/u/n"), new values::IntNumeric(5, 0, 10, 1));
             {
                 UndoRecordingControlBase recording;
                 GuiUndoRecordingHelper span(&recording, QString());
                 n->SetValue(8, nullptr);
             }
             auto* c = new VCUndo(w, "undo");
             c->SetUndoRecordings_BasePath(QStringLiteral("/u"));
             return qMakePair<QObject*, Observable*>(c, n);
         },
         [](QWidget* c) { QTest::mouseClick(c->findChild<VCButton*>(), Qt::LeftButton); },
         [] { return valueAt<values::IntNumeric>("/u/n")->GetValue() == 5; }},
        {"multiple check on a vector",
         [](QWidget* w) {
             auto* v = add(QStringLiteral("/v"), new values::CheckedStringVector({values::CheckedString(QStringLiteral("a"), false)}));
             auto* c = new VCMultipleCheck(w, "m");
             c->SetCheckedStringVector_ValuePath(QStringLiteral("/v"));
             return qMakePair<QObject*, Observable*>(c, v);
         },
         clickFirstRow,
         [] { return valueAt<values::CheckedStringVector>("/v")->GetValueString() == QLatin1String("1:a;"); }},
        {"multiple check on a multi-selection, click",
         [](QWidget* w) {
             auto* m = add(QStringLiteral("/m"), new values::StringMultiSelection(0));
             m->AddItem(4, QStringLiteral("four"));
             auto* c = new VCMultipleCheck(w, "m");
             c->SetCheckedStringVector_ValuePath(QStringLiteral("/m"));
             return qMakePair<QObject*, Observable*>(c, m);
         },
         clickFirstRow,
         [] { return valueAt<values::StringMultiSelection>("/m")->IsItemChecked(4); }},
        {"multiple check on a multi-selection, every row read",
         [](QWidget* w) {
             auto* m = add(QStringLiteral("/m"), new values::StringMultiSelection(0));
             for (unsigned key : {1, 2, 3})
                 m->AddItem(key, QStringLiteral("item"));
             auto* c = new VCMultipleCheck(w, "m");
             c->SetCheckedStringVector_ValuePath(QStringLiteral("/m"));
             return qMakePair<QObject*, Observable*>(c, m);
         },
         // Every box checked unheard, then read from the last row on: the first write closes the list.
         [](QWidget* c) {
             for (QCheckBox* box : c->findChildren<QCheckBox*>()) {
                 const QSignalBlocker quiet(box);
                 box->setChecked(true);
             }
             static_cast<VCMultipleCheck*>(c)->slotStateChanged(0);
         },
         [] { return valueAt<values::StringMultiSelection>("/m")->GetCheckedKeys() == std::vector<unsigned>{3}; }},
        // The combo boxes: the list's picks by key, in its popup and by Commit; the menu button's picks
        // in its menu (triggered, and by keyboard in the menu opened with Space), keys, wheel and press.
        {"classic combo key",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCComboBoxClassic(w, "c");
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) {
             c->setFocus();
             QTest::keyClick(c, Qt::Key_Down);
         },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"classic combo popup pick",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCComboBoxClassic(w, "c");
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) {
             QWidget* window = c->window();
             QTest::mouseClick(c, Qt::LeftButton);
             QPointer<QAbstractItemView> view = static_cast<QComboBox*>(c)->view();
             QTRY_VERIFY(view->isVisible());
             QTest::keyClick(view, Qt::Key_Down);
             QTest::keyPress(view, Qt::Key_Return); // the pick, which may delete the list and its view
             if (view)
                 QTest::keyRelease(view, Qt::Key_Return);
             // The offscreen platform leaves no window active once a popup has closed.
             QTimer::singleShot(100, window, [window] { QApplication::setActiveWindow(window); });
         },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"classic combo on a multi-selection, deleted by the check after the unchecking",
         [](QWidget* w) {
             auto* m = add(QStringLiteral("/m"), new values::StringMultiSelection(1));
             m->AddItem(0, QStringLiteral("zero"), true);
             m->AddItem(1, QStringLiteral("one"));
             auto* c = new VCComboBoxClassic(w, "c");
             c->SetValueSelection_ValuePath(QStringLiteral("/m"));
             return qMakePair<QObject*, Observable*>(c, m);
         },
         [](QWidget* c) {
             c->setFocus();
             QTest::keyClick(c, Qt::Key_Down);
         },
         [] { return valueAt<values::StringMultiSelection>("/m")->IsItemChecked(1); },
         1},
        {"classic combo commit",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCComboBoxClassic(w, "c");
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             c->SetAutoCommit(false);
             c->setCurrentIndex(2);
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) { static_cast<VCComboBoxClassic*>(c)->Commit(); },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 2; }},
        {"button style combo, entry triggered",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCComboBoxButtonStyle(w, "b", false, false);
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) { static_cast<VCComboBoxButtonStyle*>(c)->GetPopup()->findItem(1)->trigger(); },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"button style combo, menu opened with Space, entry picked by keyboard",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCComboBoxButtonStyle(w, "b", false, false);
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) {
             QTimer::singleShot(50, [] {
                 if (QWidget* menu = QApplication::activePopupWidget()) {
                     QTest::keyClick(menu, Qt::Key_Down);
                     QTest::keyClick(menu, Qt::Key_Down);
                     QTest::keyClick(menu, Qt::Key_Return);
                 }
             });
             c->setFocus();
             QTest::keyClick(c, Qt::Key_Space);
         },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"button style combo, key",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCComboBoxButtonStyle(w, "b", false, false);
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) {
             c->setFocus();
             QTest::keyClick(c, Qt::Key_Down);
         },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"button style combo, wheel",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCComboBoxButtonStyle(w, "b", false, false);
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) {
             const QPointF pos = c->rect().center();
             QWheelEvent e(pos, c->mapToGlobal(pos.toPoint()), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                           Qt::NoScrollPhase, false);
             QApplication::sendEvent(c, &e);
         },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"button style combo, press flipping two items",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 2, 0);
             auto* c = new VCComboBoxButtonStyle(w, "b", false, true);
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         // A press alone: the flip comes with it, and a release would go to a deleted widget.
         [](QWidget* c) { QTest::mousePress(c, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2)); },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"button group, radio button",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCButtonGroup(w, "g", Qt::Horizontal);
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) {
             QWidget* radio = c->findChild<EnhancedRadioButton*>(QStringLiteral("item 1"));
             QTest::mouseClick(radio, Qt::LeftButton, Qt::NoModifier, QPoint(6, radio->height() / 2));
         },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"button group, check box",
         [](QWidget* w) {
             addSelection(QStringLiteral("/s"), 2, 0);
             auto* b = add(QStringLiteral("/b"), new values::BoolValue(true));
             auto* c = new VCButtonGroup(w, "g", Qt::Horizontal);
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             c->SetCheckable_ValuePath(QStringLiteral("/b"));
             return qMakePair<QObject*, Observable*>(c, b);
         },
         [](QWidget* c) {
             c->setFocus();
             QTest::keyClick(c, Qt::Key_Space);
         },
         [] { return !valueAt<values::BoolValue>("/b")->GetValue(); }},
        {"one-of button",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCOneOfButton(QStringLiteral("one"), w, static_cast<const char* const*>(nullptr), nullptr);
             c->SetSelection_ValuePath(QStringLiteral("/s"), QStringLiteral("item 1"), QString());
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) { QTest::mouseClick(c, Qt::LeftButton); },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"one-of combo, its button",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCOneOfButtonCombo(w, "oc", false);
             c->SetSelection_ValuePath(QStringLiteral("/s"), QStringLiteral("item 0"), QStringLiteral("item 2"), QPixmap(),
                                       QPixmap());
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) { QTest::mouseClick(c->findChild<VCOneOfButton*>(), Qt::LeftButton); },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 2; }},
        {"one-of combo, a pick in its menu",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCOneOfButtonCombo(w, "oc", false);
             c->SetSelection_ValuePath(QStringLiteral("/s"), QStringLiteral("item 0"), QStringLiteral("item 2"), QPixmap(),
                                       QPixmap());
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) { static_cast<VCOneOfButtonCombo*>(c)->GetPopup()->findItem(2)->trigger(); },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 2; }},
        {"button combo, its button",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCButtonCombo(w, QStringLiteral("bc"), false, false);
             c->SetValueSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) { QTest::mouseClick(static_cast<VCButtonCombo*>(c)->GetButton(), Qt::LeftButton); },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        // Menus: the pick is made in the open menu by keys; Return alone, since its release would go
        // to a deleted menu.
        {"popup menu switch, keys",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCPopupMenu(w, "m");
             c->InsertItem(QStringLiteral("on"), 4, QStringLiteral("/s"), QStringLiteral("item 1"), QStringLiteral("item 0"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) { pickInMenu(c, 1); },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
        {"popup menu generated, keys",
         [](QWidget* w) {
             auto* multi = add(QStringLiteral("/m"), new values::StringMultiSelection(0));
             for (unsigned key = 0; key < 3; ++key)
                 multi->AddItem(key, QStringLiteral("item %1").arg(key));
             auto* c = new VCPopupMenu(w, "m");
             c->SetValue1Selection_String_ValuePath(QStringLiteral("/m"));
             return qMakePair<QObject*, Observable*>(c, multi);
         },
         [](QWidget* c) { pickInMenu(c, 2); },
         [] { return valueAt<values::StringMultiSelection>("/m")->IsItemChecked(1); }},
        {"menu bar, click",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 1);
             auto* c = new VCMenuBar(w, "m");
             c->InsertItem(QStringLiteral("off"), 0, QStringLiteral("/s"), QStringLiteral("item 1"), QStringLiteral("item 2"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) {
             auto* bar = static_cast<QMenuBar*>(c);
             const QPoint at = bar->actionGeometry(bar->actions().at(0)).center();
             QPointer<QWidget> alive(c);
             QTest::mousePress(c, Qt::LeftButton, Qt::NoModifier, at);
             if (alive)
                 QTest::mouseRelease(c, Qt::LeftButton, Qt::NoModifier, at);
         },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 2; }},
        {"selection popup, keys",
         [](QWidget* w) {
             auto* sel = addSelection(QStringLiteral("/s"), 3, 0);
             auto* c = new VCSelectionPopup(w, "m");
             c->SetFirstSelection_ValuePath(QStringLiteral("/s"));
             return qMakePair<QObject*, Observable*>(c, sel);
         },
         [](QWidget* c) { pickInMenu(c, 2); },
         [] { return valueAt<values::ValueSelection>("/s")->GetCurrentKey() == 1; }},
    };
    return all;
}

} // namespace

class SelfDeletionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        tree().Clear();
        values::UndoRecorder::Instance().Clear();
        UndoRecordingControlBase::SetOptionalRecordingDefault(false);
    }

    void deletedByAnObserverOfItsOwnWrite_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("recording"); // also every control that records only on request
        for (int i = 0; i < cases().size(); ++i)
            QTest::newRow(cases().at(i).name) << i << false;
        for (int i = 0; i < cases().size(); ++i)
            QTest::newRow(qPrintable(QStringLiteral("%1, recording").arg(QLatin1String(cases().at(i).name)))) << i << true;
    }

    void deletedByAnObserverOfItsOwnWrite()
    {
        QFETCH(int, row);
        QFETCH(bool, recording);
        UndoRecordingControlBase::SetOptionalRecordingDefault(recording);
        const Case& c = cases().at(row);
        QWidget window;
        window.resize(300, 120);
        auto* elsewhere = new QLineEdit(&window);
        elsewhere->setObjectName(QStringLiteral("elsewhere"));
        elsewhere->move(0, 90);
        const auto made = c.make(&window);
        QPointer<QObject> control = made.first;
        // The scroll buttons are no widget themselves: the user clicks their plus button.
        auto* scroll = qobject_cast<VCScrollButtons*>(control);
        QWidget* target = scroll ? scroll->GetPlusButton() : static_cast<QWidget*>(control.data());
        if (!scroll)
            target->resize(target->sizeHint().expandedTo(QSize(120, 24)));
        window.show();
        QApplication::setActiveWindow(&window);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QVERIFY(target->isEnabled());

        Closer closer(made.second, control, c.spared);
        c.act(target);
        QTRY_VERIFY(closer.closed > 0);
        QVERIFY(control.isNull());
        QVERIFY(c.wrote());
        QVERIFY(!values::UndoRecorder::Instance().IsRecording()); // no span left open by the deletion
        // Events still queued for the control must find nothing of it, and Qt must not hold it as its
        // focus widget: the focus moves on as usual.
        QTest::qWait(250);
        auto* next = new QLineEdit(&window);
        next->show();
        next->setFocus();
        elsewhere->setFocus();
        QCOMPARE(QApplication::focusWidget(), elsewhere);
    }
};

QTEST_MAIN(SelfDeletionTest)
#include "selfdeletiontest.moc"
