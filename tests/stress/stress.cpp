// vandrel-stress: a seeded random walk over a value tree and every control, checking after each step
// that each bound control shows its value, follows its value's state, and that no value was written
// that the step did not ask for. Every choice comes from the seed, so a run replays exactly.

#include <plinthor/coordinates.h>
#include <plinthor/suffixeddouble.h>
#include <vandrel/vandrel.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QDateTimeEdit>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <QElapsedTimer>
#include <QKeySequence>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <deque>
#include <functional>
#include <memory>
#include <random>
#include <set>

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }

enum Kind { Bool, Int, Int64, Text, IntNum, DblNum, Sel, MultiOne, MultiMany, Vector, KindCount };
const char* const kKindNames[] = {"bool", "int", "int64", "text", "intnum", "dblnum", "sel", "multi1", "multi", "vector"};
constexpr int kCells = 16;
constexpr int kMaxControls = 14;

struct Harness;
bool unexpected(int cell);

// Menus whose values the walk can see.
struct HeldMenu : VCPopupMenu
{
    using VCPopupMenu::VCPopupMenu;
    using VCPopupMenu::m_pValue1Selection;
    using VCPopupMenu::m_tuples;
};
struct HeldBar : VCMenuBar
{
    explicit HeldBar(QWidget* parent) : VCMenuBar(parent, "menubar") {}
    using VCMenuBar::m_tuples;
};

// A selection popup whose selections the walk can see: it follows no state, so it may hold a value
// that the walk let go of.
struct HeldSelections : VCSelectionPopup
{
    explicit HeldSelections(QWidget* parent) : VCSelectionPopup(parent, "selectionpopup") {}
    using VCSelectionPopup::m_pFirstSelection;
    using VCSelectionPopup::m_pSecondSelection;
};
const bool trapUnexpected = qEnvironmentVariableIsSet("VANDREL_STRESS_TRAP");

// Counts the writes a value announces; the harness compares them with what the step intended. A
// pending number is no write: spin boxes line it up with the value whenever they are told of one.
struct Recorder : IObserver
{
    void Update(Observable*, TChangeCode code) override
    {
        if (code == ValueChanged) {
            ++writes;
            // Under a debugger, stops at the very write that the step did not ask for.
            if (trapUnexpected && unexpected(cell))
                abort();
        }
    }
    int writes = 0;
    int cell = 0;
};

// Deletes a control when its value changes: the control may be the one whose edit made the change.
struct Killer : IObserver
{
    void Update(Observable*, TChangeCode code) override;
    Harness* harness = nullptr;
    values::ValueBase* value = nullptr;
    int cell = -1;
    int control = -1;
    bool armed = false;
};

struct Cell
{
    QString path;
    Kind kind = Bool;
    values::ValueBase* value = nullptr; // null while nothing is in the tree at the path
    int state = Enabled;
    std::unique_ptr<Recorder> recorder;
    QString before; // the value's text at the start of a step
};

struct Control;

// One entry per control kind: how to make it, bind it, drive it like a user, and what it must show.
struct Driver
{
    const char* name;
    int roles;                                                       // bindable values
    std::function<QObject*(Harness&, Control&)> create;
    std::function<bool(int role, Kind)> accepts;
    std::function<bool(Harness&, Control&, int role, int cell)> bind; // the binding call's answer
    std::function<void(Harness&, Control&)> input;
    std::function<QString(Harness&, Control&)> shows; // empty when the control shows its values
    // What a bind may write back: Echo the value's own content, Rewrite a content of the control's making.
    std::function<int(Harness&, Control&, int cell)> echoesOnBind;
    bool keepsBindingOnFailure = false;
    bool distinctRoles = false; // a value bound in two roles would show in only one of them
    bool followsItems = false; // shows the current item after a rebuild of a selection's items
    bool itemsEnable = false; // new items enable it and clearing them disables it, whatever the state
    bool followsState = true;
};

struct Control
{
    const Driver* driver = nullptr;
    QPointer<QObject> object;
    QPointer<QWidget> host; // the widget that holds a control that is no widget
    int bound[2] = {-1, -1};
    int index = 0;
    int variant = 0;         // per driver: line edit type, spin mode, ...
    int expectEnabled = -1;  // -1: no expectation
    // Showing what a value held before it changed without telling it (a rebuild of items), or what a
    // value no longer bound gave it; until the next write of a bound value.
    bool stale = false;
    // A result's invalid flag changed while its label was disabled, which ignores changes; until the flag
    // changes again while the label sees it, a write of the number doesn't bring the look up to date.
    bool flagStale = false;
    qint64 lastUndoClickMs = -1000000;
    bool alive() const { return object; }
    template <class T> T* as() const { return qobject_cast<T*>(object.data()); }
};

enum BindWrites { NoWrite, Echo, Rewrite };

bool isNumeric(Kind k) { return k == IntNum || k == DblNum; }

struct Harness
{
    explicit Harness(quint64 seed)
        : rng(seed)
    {
        panel.resize(900, 700);
        sink = new QLineEdit(&panel);
        sink->setObjectName(QStringLiteral("sink"));
        sink->setGeometry(0, 0, 40, 20);
        panel.show();
        QApplication::setActiveWindow(&panel);
        if (!QTest::qWaitForWindowActive(&panel))
            qWarning("the panel did not become active");
        for (int i = 0; i < kCells; ++i) {
            // Each value is a result's VALUE, beside a name, a unit and an invalid flag that stay.
            cells[i].path = QStringLiteral("/stress/v%1/VALUE").arg(i);
            addValue(i, Kind(i % KindCount));
            values::Tree::Instance()->Add(branchOf(i) + QLatin1String("/NAME"), new values::StringValue(QStringLiteral("Level")));
            values::Tree::Instance()->Add(branchOf(i) + QLatin1String("/UNIT"), new values::StringValue(QStringLiteral("dB")));
            values::Tree::Instance()->Add(branchOf(i) + QLatin1String("/INVALID"), new values::BoolValue(false));
        }
        // Range boxes of entry fields are answered from a timer, as a user would, or the field is
        // deleted while its box stands when the step asks for that.
        QObject::connect(&boxCloser, &QTimer::timeout, [this] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box)
                return;
            ++boxes;
            if (deleteBoxOwner >= 0 && controls[size_t(deleteBoxOwner)].alive()) {
                destroy(deleteBoxOwner);
                deleteBoxOwner = -1;
                if (!QApplication::activeModalWidget())
                    return;
            }
            if (auto* b = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
                b->done(QMessageBox::Ok);
        });
        boxCloser.start(5);
        undoHistory = std::make_unique<values::UndoRecordingsToValueClient>(QStringLiteral("/"));
        // Odd seeds walk with every control recording, so that undo and redo meet their edits too.
        UndoRecordingControlBase::SetOptionalRecordingDefault(seed % 2 == 1);
    }
    ~Harness()
    {
        for (size_t i = 0; i < controls.size(); ++i)
            if (controls[i].alive())
                destroy(int(i));
        tree().Clear();
        killers.clear();
    }

    // --- random choices, all from the seed ---
    int pick(int n) { return n <= 0 ? 0 : int(std::uniform_int_distribution<int>(0, n - 1)(rng)); }
    bool chance(double p) { return std::uniform_real_distribution<double>(0, 1)(rng) < p; }
    double number()
    {
        switch (pick(5)) {
        case 0: return pick(21) - 10;
        case 1: return (pick(2001) - 1000) / 4.0;
        case 2: return (pick(20001) - 10000) / 7.0;
        case 3: return pick(1000001);
        default: return pick(201) - 100;
        }
    }
    QString word() { return QStringList{"alpha", "beta", "gamma", "", "x y", "Zurich", "42", "1e3"}[pick(8)]; }

    // --- the value tree ---
    void addValue(int s, Kind kind)
    {
        Cell& cell = cells[s];
        values::ValueBase* v = nullptr;
        switch (kind) {
        case Bool: v = new values::BoolValue(chance(0.5)); break;
        case Int: v = new values::IntValue(pick(100)); break;
        case Int64: v = new values::Int64Value(pick(100000)); break;
        case Text: v = new values::StringValue(word()); break;
        case IntNum: v = new values::IntNumeric(pick(50), -pick(100), pick(100), 1); break;
        case DblNum: v = new values::DoubleNumeric(pick(50) / 3.0, -pick(100) / 2.0, pick(100) / 2.0 + 0.5, 0.5); break;
        case Sel: {
            auto* sel = new values::ValueSelection;
            fillSelection(sel);
            v = sel;
            break;
        }
        case MultiOne:
        case MultiMany: {
            auto* multi = new values::StringMultiSelection(kind == MultiOne ? 1 : 0);
            for (unsigned k = 0; k < 4; ++k)
                multi->AddItem(k * 3, QStringLiteral("m%1").arg(k), chance(0.4));
            // A journal shorter than one write's changes: readers must notice the loss and rebuild.
            if (chance(0.5))
                multi->SetChangeLogCapacity(2 + pick(2));
            v = multi;
            break;
        }
        case Vector: v = new values::CheckedStringVector({values::CheckedString(word(), true)}); break;
        case KindCount: break;
        }
        cell.kind = kind;
        cell.value = v;
        cell.state = Enabled;
        tree().Add(cell.path, v);
        cell.recorder = std::make_unique<Recorder>();
        cell.recorder->cell = s;
        v->Attach(cell.recorder.get());
    }
    void fillSelection(values::ValueSelection* sel)
    {
        const int n = 1 + pick(5);
        const long first = pick(3);
        for (int i = 0; i < n; ++i)
            sel->AddItem(QStringLiteral("item%1").arg(first + i), (first + i) * 1000.0, first + i, nullptr);
    }
    values::IValueNumeric* numeric(int s) const
    {
        return s >= 0 && cells[s].value ? dynamic_cast<values::IValueNumeric*>(cells[s].value) : nullptr;
    }
    // The result branch of a cell: its path without the final "/VALUE".
    QString branchOf(int s) const { return cells[s].path.left(cells[s].path.size() - 6); }
    values::BoolValue* invalidFlagOf(int s) const
    {
        return dynamic_cast<values::BoolValue*>(values::Tree::Instance()->Find(branchOf(s) + QLatin1String("/INVALID")));
    }
    // A slider or scroll bar on the cell shows a number as a whole one and writes that back.
    bool wholeNumberEcho(int s) const
    {
        for (const Control& c : controls)
            if (c.alive() && (c.as<VCSlider>() || c.as<VCScrollBar>()) && c.bound[0] == s && c.as<QWidget>()->isEnabled())
                return true;
        return false;
    }
    // A date-time edit on the cell writes back a stamp of its own making as it shows a number.
    bool stampEcho(int s) const
    {
        for (const Control& c : controls)
            if (c.alive() && c.as<VCDateTimeEdit>() && c.bound[0] == s)
                return true;
        return false;
    }
    values::ValueSelection* selection(int s) const
    {
        return s >= 0 ? dynamic_cast<values::ValueSelection*>(cells[s].value) : nullptr;
    }

    // --- controls ---
    int create(const Driver& d)
    {
        Control c;
        c.driver = &d;
        c.variant = pick(8);
        c.index = int(controls.size());
        controls.push_back(c);
        Control& ref = controls.back();
        ref.object = d.create(*this, ref);
        if (auto* w = qobject_cast<QWidget*>(ref.object.data())) {
            w->move(50 + pick(700), 30 + pick(600));
            if (!qobject_cast<QMenu*>(w)) // a menu shows when its input opens it
                w->show();
        }
        return int(controls.size()) - 1;
    }
    void destroy(int i)
    {
        Control& c = controls[size_t(i)];
        for (int s : c.bound)
            if (s >= 0)
                writable.insert(s); // entry fields commit what they hold when they go
        // Forgotten before it goes, so that a killer woken by its last commit doesn't delete it twice.
        QObject* object = c.object.data();
        c.object = nullptr;
        QPointer<QWidget> host = c.host;
        delete object;
        delete host.data();
        c.bound[0] = c.bound[1] = -1;
    }
    std::vector<int> alive() const
    {
        std::vector<int> out;
        for (size_t i = 0; i < controls.size(); ++i)
            if (controls[i].alive())
                out.push_back(int(i));
        return out;
    }
    // A cell's value lets go of every control bound to it (Removed or destroyed).
    void unbindAll(int s)
    {
        for (Control& c : controls)
            for (int role = 0; role < 2; ++role)
                if (c.bound[role] == s)
                    letGo(c, role);
    }

    void itemsChanged(int s, bool any)
    {
        for (Control& c : controls) {
            if (c.alive() && c.driver->itemsEnable && c.bound[0] == s)
                c.expectEnabled = any;
            if (c.alive() && !c.driver->followsItems && (c.bound[0] == s || c.bound[1] == s))
                c.stale = true;
        }
    }
    // A role let go while another stays: the look stays that of the value let go.
    void letGo(Control& c, int role)
    {
        if (c.bound[role] >= 0 && c.driver->roles == 2 && c.bound[1 - role] >= 0)
            c.stale = true;
        c.bound[role] = -1;
    }

    // --- user input helpers: each event goes only to a widget that still exists ---
    void click(QWidget* w, QPoint pos = QPoint())
    {
        did += QStringLiteral(" click %1").arg(w->objectName());
        QPointer<QWidget> guard(w);
        if (pos.isNull())
            pos = w->rect().center();
        QTest::mousePress(w, Qt::LeftButton, Qt::NoModifier, pos);
        if (guard)
            QTest::mouseRelease(guard, Qt::LeftButton, Qt::NoModifier, pos);
    }
    void key(QWidget* w, int k, Qt::KeyboardModifiers mods = Qt::NoModifier)
    {
        did += QStringLiteral(" key %1").arg(QKeySequence(int(mods) | k).toString());
        QPointer<QWidget> guard(w);
        QTest::keyPress(w, Qt::Key(k), mods);
        if (guard)
            QTest::keyRelease(guard, Qt::Key(k), mods);
    }
    void wheel(QWidget* w, int notches)
    {
        did += QStringLiteral(" wheel %1").arg(notches);
        const QPointF pos = w->rect().center();
        QWheelEvent e(pos, w->mapToGlobal(pos.toPoint()), QPoint(), QPoint(0, 120 * notches), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(w, &e);
    }
    // Types over the whole text of \a w, then ends the edit with Return or by moving the focus away.
    void type(QWidget* w, const QString& text)
    {
        QPointer<QWidget> guard(w);
        w->setFocus();
        key(w, Qt::Key_A, Qt::ControlModifier);
        did += QStringLiteral(" type \"%1\"").arg(text);
        if (guard)
            QTest::keyClicks(guard, text);
        if (guard && chance(0.5))
            key(guard, Qt::Key_Return);
        did += QStringLiteral(" leave");
        sink->setFocus();
    }

    std::mt19937_64 rng;
    QWidget panel;
    QLineEdit* sink = nullptr;
    QString did; // the user's actions in this step, for the log
    std::pair<int, int> binding{-1, -1}; // the control and the value of a binding under way
    bool spareWriters = false; // killers never delete a control bound to the value that wakes them
    Cell cells[kCells];
    std::deque<Control> controls;
    std::vector<std::unique_ptr<Killer>> killers;
    std::set<int> writable;      // cells the current step may write
    std::set<int> echoes;        // cells the step may write with the content they hold
    std::set<int> contentMoves;  // cells whose content the step changes without a write
    QTimer boxCloser;
    int boxes = 0;
    int deleteBoxOwner = -1;
    std::unique_ptr<values::UndoRecordingsToValueClient> undoHistory;
    QElapsedTimer clock;
};

Harness* g_h; // the one harness, for the recorders' trap
bool unexpected(int cell) { return !g_h->writable.count(cell) && !g_h->echoes.count(cell); }

void Killer::Update(Observable*, TChangeCode code)
{
    if (code == ValueDestroyed) {
        armed = false;
        value = nullptr;
        return;
    }
    if (code != ValueChanged || !armed)
        return;
    armed = false;
    Control& c = harness->controls[size_t(control)];
    const bool binding = harness->binding == std::make_pair(control, cell);
    const bool writesAnywhere = c.driver && c.driver->roles == 0; // an undo button
    if (harness->spareWriters && (c.bound[0] == cell || c.bound[1] == cell || binding || writesAnywhere))
        return; // spared, also when bound after the killer was set
    if (c.alive())
        harness->destroy(control);
}

QString expectNear(const char* what, double shown, double held, double tolerance)
{
    if (std::abs(shown - held) <= tolerance)
        return QString();
    return QStringLiteral("%1 shows %2, value holds %3").arg(QLatin1String(what)).arg(shown, 0, 'g', 15).arg(held, 0, 'g', 15);
}

QString expectEqual(const char* what, const QString& shown, const QString& held)
{
    if (shown == held)
        return QString();
    return QStringLiteral("%1 shows \"%2\", value holds \"%3\"").arg(QLatin1String(what), shown, held);
}

// A half goes up, as the slider rounds under Qt 5 and 6 alike (Qt 6's qRound takes it away from zero).
int roundToInt(double x) { return int(std::floor(qBound(double(INT_MIN), x, double(INT_MAX)) + 0.5)); }
int truncToInt(double x) { return int(qBound(double(INT_MIN), x, double(INT_MAX))); }
bool nonInteger(values::IValueNumeric* n) { return n && n->GetValue() != std::trunc(n->GetValue()); }

// Slider and scroll bar share everything but their conversions.
template <class W>
Driver sliderDriver(const char* name, int (*toPos)(double), int (*toMax)(double))
{
    Driver d;
    d.name = name;
    d.roles = 1;
    d.accepts = [](int, Kind k) { return isNumeric(k); };
    d.input = [](Harness& h, Control& c) {
        auto* w = c.as<W>();
        static const int keys[] = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};
        if (h.chance(0.3))
            h.wheel(w, h.pick(5) - 2);
        else
            h.key(w, keys[h.pick(7)]);
    };
    d.shows = [toPos, toMax](Harness& h, Control& c) {
        auto* w = c.as<W>();
        auto* n = h.numeric(c.bound[0]);
        QString e = expectNear("minimum", w->minimum(), toPos(n->GetMinimum()), 0);
        if (e.isEmpty())
            e = expectNear("maximum", w->maximum(), toMax(n->GetMaximum()), 0);
        // The upper limit rounds up, so the top position may stand above the largest number the value keeps.
        const bool top = w->value() == w->maximum() && n->GetValue() == n->GetMaximum();
        // The value kept its limit and told no one: the control shows its own top position until the
        // value next changes, also once new limits would take that position.
        if (top && w->value() != toPos(n->GetValue()))
            c.stale = true;
        if (e.isEmpty() && !top)
            e = expectNear("position", w->value(), qBound(w->minimum(), toPos(n->GetValue()), w->maximum()), 0);
        return e;
    };
    d.echoesOnBind = [](Harness& h, Control&, int s) { return nonInteger(h.numeric(s)) ? Rewrite : NoWrite; };
    return d;
}

std::vector<Driver> makeDrivers()
{
    std::vector<Driver> ds;

    { // VCButton: cycles a selection; a second value's state enables it too.
        Driver d;
        d.name = "VCButton";
        d.roles = 2;
        d.create = [](Harness& h, Control&) { return new VCButton(&h.panel, QStringLiteral("button")); };
        d.accepts = [](int role, Kind k) { return role == 1 || k == Sel; };
        d.followsItems = true;
        d.bind = [](Harness& h, Control& c, int role, int s) {
            return role == 0 ? c.as<VCButton>()->SetValueSelection_ValuePath(h.cells[s].path)
                             : c.as<VCButton>()->SetState_ValuePath(h.cells[s].path);
        };
        d.input = [](Harness& h, Control& c) {
            if (h.chance(0.7))
                h.click(c.as<VCButton>());
            else
                h.key(c.as<VCButton>(), Qt::Key_Space);
        };
        d.shows = [](Harness& h, Control& c) {
            if (c.bound[0] < 0)
                return QString();
            return expectEqual("button", c.as<VCButton>()->GetCurrentText(), h.cells[c.bound[0]].value->GetValueString());
        };
        ds.push_back(d);
    }
    { // VCCheckBox: a boolean or selection, and an item of a multi-selection.
        Driver d;
        d.name = "VCCheckBox";
        d.roles = 2;
        d.create = [](Harness& h, Control&) { return new VCCheckBox(&h.panel, "check"); };
        d.accepts = [](int role, Kind k) { return role == 0 ? (k == Bool || k == Sel) : (k == MultiOne || k == MultiMany); };
        d.bind = [](Harness& h, Control& c, int role, int s) {
            if (role == 0)
                return c.as<VCCheckBox>()->Set_ValuePath(h.cells[s].path);
            c.variant = 3 * h.pick(4);
            return c.as<VCCheckBox>()->SetMultiSelection_ValuePath(h.cells[s].path, c.variant);
        };
        d.input = [](Harness& h, Control& c) { h.click(c.as<VCCheckBox>(), QPoint(8, c.as<VCCheckBox>()->height() / 2)); };
        d.shows = [](Harness& h, Control& c) {
            const bool checked = c.as<VCCheckBox>()->isChecked();
            if (c.bound[0] >= 0 && c.bound[1] >= 0)
                return QString(); // two values: the box shows whichever changed last
            if (c.bound[0] >= 0) {
                values::ValueBase* v = h.cells[c.bound[0]].value;
                auto* sel = dynamic_cast<values::ValueSelection*>(v);
                if (sel && (!sel->GetItemByKey(0) || !sel->GetItemByKey(1)))
                    return QString(); // a click whose key the selection lacks is refused, and no one is told
                const bool held = sel ? sel->GetCurrentKey() == 1 : static_cast<values::BoolValue*>(v)->GetValue();
                return expectNear("check box", checked, held, 0);
            }
            if (c.bound[1] >= 0) {
                auto* multi = dynamic_cast<values::IValueMultiSelection*>(h.cells[c.bound[1]].value);
                if (multi->GetItemByKey(c.variant))
                    return expectNear("check box (item)", checked, multi->IsItemChecked(c.variant), 0);
            }
            return QString();
        };
        ds.push_back(d);
    }
    { // VCCoordEdit: latitude and longitude, typed in the application's position format.
        Driver d;
        d.name = "VCCoordEdit";
        d.roles = 2;
        d.keepsBindingOnFailure = true;
        d.distinctRoles = true;
        d.create = [](Harness& h, Control& c) {
            c.expectEnabled = 1; // bound to the position format from the start
            return new VCCoordEdit(&h.panel, "coord");
        };
        d.accepts = [](int, Kind k) { return isNumeric(k); };
        d.bind = [](Harness& h, Control& c, int role, int s) {
            return role == 0 ? c.as<VCCoordEdit>()->SetLatitude_ValuePath(h.cells[s].path)
                             : c.as<VCCoordEdit>()->SetLongitude_ValuePath(h.cells[s].path);
        };
        d.input = [](Harness& h, Control& c) {
            // A position inside the bound limits, so that what the field shows is what the values keep.
            auto inside = [&](int s, double limit) {
                double lo = -limit, hi = limit;
                if (auto* n = h.numeric(s)) {
                    lo = std::max(lo, n->GetMinimum());
                    hi = std::min(hi, n->GetMaximum());
                }
                return lo > hi ? qQNaN() : lo + (hi - lo) * h.pick(1001) / 1000.0;
            };
            auto* edit = c.as<VCCoordEdit>();
            const double latitude = inside(c.bound[0], 89), longitude = inside(c.bound[1], 179);
            if (std::isnan(latitude) || std::isnan(longitude)) { // the values would clamp what the field shows
                h.did += QStringLiteral(" none: no position the values can hold");
                return;
            }
            h.type(edit, basecontrols::CoordText::Format(latitude, longitude, edit->getFormat()));
        };
        d.shows = [](Harness& h, Control& c) {
            auto* edit = c.as<VCCoordEdit>();
            for (int role = 0; role < 2; ++role) {
                auto* n = h.numeric(c.bound[role]);
                if (!n || std::abs(n->GetValue()) > (role ? 180 : 90))
                    continue;
                // An int value keeps the typed position rounded; the field shows what was typed.
                const double tolerance = h.cells[c.bound[role]].kind == IntNum ? 0.5001 : 1e-3;
                QString e = expectNear(role ? "longitude" : "latitude", role ? edit->getLongitude() : edit->getLatitude(),
                                       n->GetValue(), tolerance);
                if (!e.isEmpty())
                    return e;
            }
            return QString();
        };
        ds.push_back(d);
    }
    { // VCLineEdit: numbers in four text forms, texts and selections; a few fields show range boxes.
        Driver d;
        d.name = "VCLineEdit";
        d.roles = 1;
        d.create = [](Harness& h, Control& c) {
            static const VCLineEdit::LineEditType types[] = {VCLineEdit::PlainEdit, VCLineEdit::Frequency,
                                                             VCLineEdit::SuffixedNumber, VCLineEdit::FrequencySuffix3};
            auto* e = new VCLineEdit(&h.panel, "line", types[c.variant % 4]);
            e->SuppressErrorMessage(c.variant >= 2); // a quarter of the fields show range boxes
            return e;
        };
        d.accepts = [](int, Kind k) { return isNumeric(k) || k == Text || k == Sel; };
        d.bind = [](Harness& h, Control& c, int, int s) { return c.as<VCLineEdit>()->SetText_ValuePath(h.cells[s].path); };
        // A text is shown by writing it to the value, also the text the value gave it.
        d.echoesOnBind = [](Harness& h, Control&, int s) { return h.cells[s].kind == Text ? Echo : NoWrite; };
        d.input = [](Harness& h, Control& c) {
            static const char* const units[] = {"", "k", " MHz", "M", "kHz", "G"};
            QString text;
            switch (h.pick(4)) {
            case 0: text = QString::number(h.number()); break;
            case 1: text = QString::number(h.number()) + QLatin1String(units[h.pick(6)]); break;
            case 2: text = QStringLiteral("item%1").arg(h.pick(6)); break;
            default: text = h.word(); break;
            }
            if (c.variant < 2 && h.chance(0.3) && !h.spareWriters)
                h.deleteBoxOwner = c.index;
            h.type(c.as<VCLineEdit>(), text);
            h.deleteBoxOwner = -1;
        };
        d.shows = [](Harness& h, Control& c) {
            auto* e = c.as<VCLineEdit>();
            const Cell& cell = h.cells[c.bound[0]];
            if (e->isModified())
                return QString();
            if (cell.kind == Sel && !h.selection(c.bound[0])->GetCurrentItem())
                return QString(); // nothing current: the field keeps its text
            if (cell.kind == Text || cell.kind == Sel)
                return expectEqual("line edit", e->text(), cell.value->GetValueString());
            auto* n = h.numeric(c.bound[0]);
            double shown = 0;
            double relative = 1e-9;
            if (c.variant % 4 == 0) {
                shown = e->text().toDouble();
                relative = 1e-5; // six significant digits
            } else {
                SuffixedDouble parser(c.variant % 4 == 2 ? QString() : QStringLiteral("Hz"), 1000, c.variant % 4 == 2);
                if (!parser.SetFrequencyString(e->text()))
                    return QStringLiteral("line edit shows \"%1\", not a number").arg(e->text());
                shown = parser.GetValue();
            }
            // A plain field shows six digits also of a whole number (1354514 as 1.35451e+06).
            const double tolerance = std::max(cell.kind == IntNum ? 0.5001 : 0.0, relative * std::max(1.0, std::abs(n->GetValue())));
            return expectNear("line edit", shown, n->GetValue(), tolerance);
        };
        ds.push_back(d);
    }
    { // VCNumericFloatSpin: steps go through the pending number in the optimised mode.
        Driver d;
        d.name = "VCNumericFloatSpin";
        d.roles = 1;
        d.create = [](Harness& h, Control& c) { return new VCNumericFloatSpin(&h.panel, "spin", c.variant < 2); };
        d.accepts = [](int, Kind k) { return isNumeric(k); };
        d.bind = [](Harness& h, Control& c, int, int s) {
            auto* spin = c.as<VCNumericFloatSpin>();
            return c.variant % 2 ? spin->SetNumericFloat_ValuePath(h.cells[s].path) : spin->SetNumericInt_ValuePath(h.cells[s].path);
        };
        d.input = [](Harness& h, Control& c) {
            QPointer<VCNumericFloatSpin> spin = c.as<VCNumericFloatSpin>();
            switch (h.pick(3)) {
            case 0: h.wheel(spin, h.chance(0.5) ? 1 : -1); break;
            case 1: h.key(spin, h.chance(0.5) ? Qt::Key_Up : Qt::Key_PageDown); break;
            default: {
                // Typed as a user of the application's language writes numbers; what was typed must arrive.
                QLocale locale;
                locale.setNumberOptions(QLocale::OmitGroupSeparator);
                const double typed = std::round(h.number() * 100) / 100;
                auto* n = spin->isEnabled() ? h.numeric(c.bound[0]) : nullptr;
                // Asked before typing: the slider may be deleted by an observer of the write it echoes.
                const bool wholeEcho = h.wholeNumberEcho(c.bound[0]);
                const bool stampEcho = h.stampEcho(c.bound[0]);
                h.type(spin, locale.toString(typed, 'f', spin->decimals()));
                if (n && spin && h.numeric(c.bound[0]) == n && !stampEcho) {
                    const double scale = std::pow(10.0, spin->decimals());
                    // Clamped into the limits, then held in the box's decimals, which the value clamps once more.
                    auto clamp = [n](double x) { return qBound(n->GetMinimum(), x, n->GetMaximum()); };
                    // A half may go up or away from zero.
                    auto up = [scale](double x) { return std::floor(x * scale + 0.5) / scale; };
                    auto away = [scale](double x) { return std::round(x * scale) / scale; };
                    auto near = [&](double expected) {
                        return std::abs(n->GetValue() - expected) <= 1e-9 * std::max(1.0, std::abs(expected));
                    };
                    // An int value rounds a half up (-59.5 holds -59).
                    auto fits = [&](double expected) {
                        if (h.cells[c.bound[0]].kind == IntNum)
                            return near(clamp(std::floor(expected + 0.5)));
                        return near(expected);
                    };
                    // A slider on the value takes the number's fraction away as it shows it.
                    auto whole = [&](double expected) {
                        return wholeEcho && n->GetValue() == std::trunc(n->GetValue())
                            && std::abs(n->GetValue() - expected) < 1.0;
                    };
                    const double expectUp = clamp(up(clamp(up(typed)))), expectAway = clamp(away(clamp(away(typed))));
                    if (!fits(expectUp) && !fits(expectAway) && !whole(expectUp))
                        throw QStringLiteral("typed %1 into #%2 (limits %3..%4), the value holds %5, the box shows \"%6\"")
                            .arg(typed).arg(c.index).arg(n->GetMinimum()).arg(n->GetMaximum()).arg(n->GetValue())
                            .arg(spin ? spin->text() : QString());
                }
                break;
            }
            }
            if (c.variant < 2) // the pending number is committed 200 ms after the last step
                QTest::qWait(230);
            h.sink->setFocus();
        };
        d.shows = [](Harness& h, Control& c) {
            auto* spin = c.as<VCNumericFloatSpin>();
            auto* n = h.numeric(c.bound[0]);
            const double tolerance = 0.5 * std::pow(10.0, -spin->decimals()) + 1e-9;
            if (std::abs(spin->value() - n->GetPendingValue()) <= tolerance)
                return QString();
            // A wheel step goes past a limit; the value keeps the limit it holds and tells no one, so
            // the box goes on showing its own number, also once new limits would take it, until the
            // value next changes.
            if ((spin->value() < n->GetMinimum() && n->GetValue() == n->GetMinimum())
                || (spin->value() > n->GetMaximum() && n->GetValue() == n->GetMaximum())) {
                c.stale = true;
                return QString();
            }
            return expectNear("spin box", spin->value(), n->GetValue(), tolerance);
        };
        ds.push_back(d);
    }
    ds.push_back(sliderDriver<VCScrollBar>("VCScrollBar", truncToInt, [](double m) { return truncToInt(m + 0.5); }));
    ds.back().create = [](Harness& h, Control& c) {
        auto* w = new VCScrollBar(&h.panel, "scroll");
        w->setOrientation(c.variant % 2 ? Qt::Horizontal : Qt::Vertical);
        return w;
    };
    ds.back().bind = [](Harness& h, Control& c, int, int s) { return c.as<VCScrollBar>()->Set_ValuePath(h.cells[s].path); };
    ds.push_back(sliderDriver<VCSlider>("VCSlider", roundToInt, roundToInt));
    ds.back().create = [](Harness& h, Control&) { return new VCSlider(&h.panel, "slider"); };
    ds.back().bind = [](Harness& h, Control& c, int, int s) { return c.as<VCSlider>()->SetNumeric_ValuePath(h.cells[s].path); };
    { // VCScrollButtons: arrow buttons on a plain widget; they move an integer position.
        Driver d;
        d.name = "VCScrollButtons";
        d.roles = 1;
        d.followsState = false;
        d.create = [](Harness& h, Control& c) {
            c.host = new QWidget(&h.panel);
            c.host->resize(120, 80);
            const unsigned sides[] = {VCScrollButtons::ScrollButtonsTop, VCScrollButtons::ScrollButtonsRight};
            return new VCScrollButtons(c.host, sides[c.variant % 2] | VCScrollButtons::ScrollButtonsLine
                                                   | VCScrollButtons::ScrollButtonsPage);
        };
        d.accepts = [](int, Kind k) { return isNumeric(k); };
        d.bind = [](Harness& h, Control& c, int, int s) { return c.as<VCScrollButtons>()->Set_ValuePath(h.cells[s].path); };
        d.input = [](Harness& h, Control& c) {
            auto* sb = c.as<VCScrollButtons>();
            VCButton* buttons[] = {sb->GetMinusButton(), sb->GetPlusButton(), sb->GetMinusPageButton(), sb->GetPlusPageButton()};
            if (VCButton* b = buttons[h.pick(4)])
                h.click(b);
        };
        d.shows = [](Harness& h, Control& c) {
            auto* sb = c.as<VCScrollButtons>();
            auto* n = h.numeric(c.bound[0]);
            QString e = expectNear("lower limit", sb->minValue(), truncToInt(n->GetMinimum()), 0);
            if (e.isEmpty())
                e = expectNear("upper limit", sb->maxValue(), truncToInt(n->GetMaximum() + 0.5), 0);
            const bool top = sb->value() == sb->maxValue() && n->GetValue() == n->GetMaximum();
            if (e.isEmpty() && !top)
                e = expectNear("position", sb->value(), truncToInt(n->GetValue()), 0);
            return e;
        };
        ds.push_back(d);
    }
    { // VCSpinSelectionBox: steps through a selection's items.
        Driver d;
        d.name = "VCSpinSelectionBox";
        d.roles = 1;
        d.create = [](Harness& h, Control&) { return new VCSpinSelectionBox(&h.panel, "spinsel"); };
        d.accepts = [](int, Kind k) { return k == Sel; };
        d.itemsEnable = true;
        d.followsItems = true;
        d.bind = [](Harness& h, Control& c, int, int s) {
            return c.as<VCSpinSelectionBox>()->SetValueSelection_ValuePath(h.cells[s].path);
        };
        d.input = [](Harness& h, Control& c) {
            auto* box = c.as<VCSpinSelectionBox>();
            if (h.chance(0.5))
                h.wheel(box, h.chance(0.5) ? 1 : -1);
            else
                h.key(box, h.chance(0.5) ? Qt::Key_Up : Qt::Key_Down);
        };
        d.shows = [](Harness& h, Control& c) {
            auto* box = c.as<VCSpinSelectionBox>();
            auto* sel = h.selection(c.bound[0]);
            if (sel->GetItemCount() == 0)
                return QString();
            QString e = expectEqual("spin selection", box->text(), sel->GetValueString());
            if (e.isEmpty())
                e = expectNear("spin selection index", box->value(), sel->GetCurrentIndex(), 0);
            return e;
        };
        ds.push_back(d);
    }
    { // VCTextEdit: writes when it loses the focus.
        Driver d;
        d.name = "VCTextEdit";
        d.roles = 1;
        d.create = [](Harness& h, Control&) { return new VCTextEdit(&h.panel); };
        d.accepts = [](int, Kind k) { return k == Text; };
        d.bind = [](Harness& h, Control& c, int, int s) { return c.as<VCTextEdit>()->SetText_ValuePath(h.cells[s].path); };
        // It shows a text by writing it to the value, also the text the value gave it.
        d.echoesOnBind = [](Harness&, Control&, int) { return Echo; };
        d.input = [](Harness& h, Control& c) {
            QPointer<VCTextEdit> edit = c.as<VCTextEdit>();
            edit->setFocus();
            h.key(edit, Qt::Key_A, Qt::ControlModifier);
            const QString text = h.word();
            h.did += QStringLiteral(" type \"%1\" leave").arg(text);
            if (edit)
                QTest::keyClicks(edit, text);
            h.sink->setFocus();
        };
        d.shows = [](Harness& h, Control& c) {
            return expectEqual("text edit", c.as<VCTextEdit>()->GetText(), h.cells[c.bound[0]].value->GetValueString());
        };
        ds.push_back(d);
    }
    { // VCUndo: undoes the newest recording of the whole tree.
        Driver d;
        d.name = "VCUndo";
        d.roles = 0;
        d.followsState = false;
        d.create = [](Harness& h, Control&) {
            auto* u = new VCUndo(&h.panel, "undo");
            u->SetUndoRecordings_BasePath(QStringLiteral("/"));
            return u;
        };
        d.input = [](Harness& h, Control& c) {
            c.lastUndoClickMs = h.clock.elapsed();
            h.click(c.as<VCUndo>()->findChild<VCButton*>());
        };
        d.shows = [](Harness& h, Control& c) {
            const bool something = !h.undoHistory->GetUndoRecordingDescriptions().empty();
            const bool enabled = c.as<VCUndo>()->findChild<VCButton*>()->isEnabled();
            // After a click that changed nothing, a watchdog gives the button back within 5 s.
            if (enabled == something || (!enabled && h.clock.elapsed() - c.lastUndoClickMs < 6000))
                return QString();
            return QStringLiteral("undo button %1 with %2 recordings")
                .arg(enabled ? "enabled" : "disabled")
                .arg(h.undoHistory->GetUndoRecordingDescriptions().size());
        };
        ds.push_back(d);
    }
    { // VCLabel: a number formatted or any value's text; a boolean switches it to "- - -".
        Driver d;
        d.name = "VCLabel";
        d.roles = 2;
        // variant: 1 while the no-value flag may have changed unheard, until the label hears of it again.
        d.create = [](Harness& h, Control& c) {
            c.variant = 0;
            return new VCLabel(&h.panel, "label", 0);
        };
        d.accepts = [](int role, Kind k) { return role == 0 || k == Bool; };
        d.bind = [](Harness& h, Control& c, int role, int s) {
            auto* label = c.as<VCLabel>();
            if (role == 1) {
                c.variant = 0;
                return label->SetNoValue_ValuePath(h.cells[s].path);
            }
            // A number would join an earlier text binding; the walk binds one value at a time.
            label->SetText_ValuePath(QString(), true);
            return label->SetText_ValuePath(h.cells[s].path, true);
        };
        d.input = [](Harness& h, Control& c) { h.click(c.as<VCLabel>()); }; // a display: changes nothing
        d.shows = [](Harness& h, Control& c) {
            auto* label = c.as<VCLabel>();
            // Disabled, it ignores changes, and once enabled it waits for the next one.
            if (!label->isEnabled()) {
                c.stale = true;
                if (c.bound[1] >= 0)
                    c.variant = 1;
                return QString();
            }
            if (c.bound[1] >= 0 && h.cells[c.bound[1]].recorder->writes)
                c.variant = 0;
            if (c.variant)
                return QString();
            if (c.bound[1] >= 0) {
                const bool invalid = static_cast<values::BoolValue*>(h.cells[c.bound[1]].value)->GetValue();
                if (label->GetDisplayNoValue() != invalid)
                    return QStringLiteral("label's no-value state is %1, its value %2").arg(!invalid).arg(invalid);
            }
            if (label->GetDisplayNoValue())
                return expectEqual("label", label->text(), QStringLiteral("- - -"));
            if (c.bound[0] < 0)
                return QString();
            const QString held = h.numeric(c.bound[0]) ? QString::number(h.numeric(c.bound[0])->GetValue(), 'f', 1)
                                                       : h.cells[c.bound[0]].value->GetValueString();
            return expectEqual("label", label->text(), held);
        };
        ds.push_back(d);
    }
    { // VCLED: a lamp on a boolean (clicked when clickable) or a colour index, and a text beside it.
        Driver d;
        d.name = "VCLED";
        d.roles = 2;
        d.followsState = false; // the lamp's values enable it, the text never does
        d.create = [](Harness& h, Control& c) { return new VCLED(&h.panel, "led", c.variant % 2); };
        d.accepts = [](int role, Kind k) { return role == 0 ? (k == Bool || k == Int) : k == Text; };
        d.bind = [](Harness& h, Control& c, int role, int s) {
            auto* led = c.as<VCLED>();
            if (role == 1)
                return led->SetText_ValuePath(h.cells[s].path);
            const bool index = h.cells[s].kind == Int || (h.cells[s].kind != Bool && h.chance(0.5));
            return index ? led->SetColorIndex_ValuePath(h.cells[s].path) : led->SetBool_ValuePath(h.cells[s].path);
        };
        d.input = [](Harness& h, Control& c) { h.click(c.as<VCLED>()); };
        d.shows = [](Harness& h, Control& c) {
            auto* led = c.as<VCLED>();
            QLabel* labels[2] = {};
            for (QLabel* label : led->findChildren<QLabel*>())
                labels[label->objectName().startsWith(QLatin1String("LEDText"))] = label;
            if (c.bound[1] >= 0) {
                QString e = expectEqual("lamp text", labels[1]->text(), h.cells[c.bound[1]].value->GetValueString());
                if (!e.isEmpty())
                    return e;
            }
            if (c.bound[0] < 0)
                return QString();
            // The rim colour of the disc and the size tell the lamps apart.
            QString expected;
            if (h.cells[c.bound[0]].kind == Bool) {
                expected = static_cast<values::BoolValue*>(h.cells[c.bound[0]].value)->GetValue() ? "8 #820000" : "8 #a9a9a9";
            } else {
                static const char* const rims[] = {"16 #a9a9a9", "16 #820000", "16 #ffa500", "16 #008200"};
                const int index = static_cast<values::IntValue*>(h.cells[c.bound[0]].value)->GetValue();
                expected = QLatin1String(rims[index >= 0 && index <= 3 ? index : 0]);
            }
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
            const QImage image = labels[0]->pixmap().toImage();
#else
            const QImage image = labels[0]->pixmap(Qt::ReturnByValue).toImage();
#endif
            const int o = image.width() == 16 ? 4 : 0;
            const QString shown = image.isNull() ? QStringLiteral("none")
                                                 : QStringLiteral("%1 %2").arg(image.width()).arg(image.pixelColor(o + 4, o + 5).name());
            return expectEqual("lamp", shown, expected);
        };
        ds.push_back(d);
    }
    { // VCDateTimeEdit: a time stamp as a span (variant 0) or a moment (1), or in the toolkit's format (2).
        Driver d;
        d.name = "VCDateTimeEdit";
        d.roles = 1;
        d.create = [](Harness& h, Control& c) {
            auto* edit = new VCDateTimeEdit(&h.panel, "datetime");
            if (c.variant % 3 < 2)
                edit->SetDifferential(c.variant % 3 == 0);
            return edit;
        };
        d.accepts = [](int, Kind k) { return k == Int64 || isNumeric(k); };
        d.bind = [](Harness& h, Control& c, int, int s) { return c.as<VCDateTimeEdit>()->SetDateTime_ValuePath(h.cells[s].path); };
        // A span whose days the box shows anew is written back in whole seconds.
        d.echoesOnBind = [](Harness&, Control& c, int) { return c.variant % 3 == 0 ? Rewrite : NoWrite; };
        d.input = [](Harness& h, Control& c) {
            auto* edit = c.as<VCDateTimeEdit>();
            QPointer<QSpinBox> days = edit->GetDaysEdit();
            // A day count below 0 writes 0 and is not shown again: the walk keeps to 0 and more.
            // Each key may write, and the write may delete the control: typed one key at a time.
            auto typeKeys = [&h](QAbstractSpinBox* box, const QString& keys) {
                QPointer<QAbstractSpinBox> guard(box);
                h.did += QStringLiteral(" type \"%1\"").arg(keys);
                for (QChar key : keys)
                    if (guard)
                        QTest::keyClick(guard, key.toLatin1());
            };
            if (edit->GetDifferential() && h.chance(0.4)) {
                if (h.chance(0.5)) {
                    days->setFocus();
                    h.key(days, Qt::Key_A, Qt::ControlModifier);
                    typeKeys(days, QString::number(h.pick(25000)));
                } else {
                    h.key(days, days->value() > 0 && h.chance(0.5) ? Qt::Key_Down : Qt::Key_Up);
                }
                h.sink->setFocus();
                return;
            }
            // The time of day only: a date stepped past 2106 or before 1970 is written, but not shown
            // as written, since stamps wrap on reading.
            static const QDateTimeEdit::Section sections[] = {QDateTimeEdit::HourSection, QDateTimeEdit::MinuteSection,
                                                              QDateTimeEdit::SecondSection};
            const int section = h.pick(3);
            QPointer<QDateTimeEdit> time = edit->GetTimeEdit();
            time->setFocus();
            time->setSelectedSection(sections[section]);
            h.did += QStringLiteral(" section %1").arg(section);
            if (h.chance(0.5)) {
                h.key(time, h.chance(0.5) ? Qt::Key_Up : Qt::Key_Down);
            } else {
                typeKeys(time, QStringLiteral("%1").arg(h.pick(section ? 60 : 24), 2, 10, QLatin1Char('0')));
            }
            h.sink->setFocus();
        };
        d.shows = [](Harness& h, Control& c) {
            auto* edit = c.as<VCDateTimeEdit>();
            values::ValueBase* v = h.cells[c.bound[0]].value;
            long long stamp = 0;
            if (auto* n = h.numeric(c.bound[0])) {
                // A number that kept less than it was given is not shown again. In a span the edit then
                // keeps its time of day apart from the number, while a new day count takes the number's:
                // the two agree again only when the number is shown anew.
                if (n->GetValue() == n->GetMinimum() || n->GetValue() == n->GetMaximum() || edit->GetDifferential()) {
                    // Until the number changes again, also when new limits would take what the edit shows.
                    c.stale = true;
                    return QString();
                }
                stamp = static_cast<long long>(n->GetValue());
            } else {
                stamp = static_cast<values::Int64Value*>(v)->GetValue();
            }
            const qint64 secs = qint64(quint32(quint64(stamp / 1000000))); // 32 unsigned bits of seconds
            const QDateTime shown = edit->GetTimeEdit()->dateTime();
            if (edit->GetDifferential()) {
                const QDateTime held = QDateTime::fromSecsSinceEpoch(secs, Qt::UTC);
                const qint64 heldDays = QDate(1970, 1, 1).daysTo(held.date());
                QString e = expectNear("days", edit->GetDaysEdit()->value(), double(std::min<qint64>(heldDays, 20000)), 0);
                if (e.isEmpty())
                    e = expectEqual("time of day", shown.toUTC().time().toString(), held.time().toString());
                return e;
            }
            QDateTime held = QDateTime::fromSecsSinceEpoch(secs, Qt::LocalTime);
            held = qBound(edit->GetTimeEdit()->minimumDateTime(), held, edit->GetTimeEdit()->maximumDateTime());
            // A moment on the epoch's own day counts from local midnight, not from 1970 UTC; one before
            // that midnight (west of UTC, where no lower limit is set) is written as 0 and stays shown.
            const QDateTime midnight(QDate(1970, 1, 1), QTime(0, 0), Qt::LocalTime);
            if ((shown.date() == midnight.date() && midnight.secsTo(shown) == secs) || (shown < midnight && secs == 0))
                return QString();
            return expectEqual("moment", shown.toUTC().toString(Qt::ISODate), held.toUTC().toString(Qt::ISODate));
        };
        ds.push_back(d);
    }
    { // VCMeasurementWidget: three labels on a cell's result branch; the application flags it invalid.
        Driver d;
        d.name = "VCMeasurementWidget";
        d.roles = 1;
        d.followsState = false; // its labels follow the values' states, the block does not
        d.create = [](Harness& h, Control&) { return new VCMeasurementWidget(&h.panel, VCMeasurementWidget::MeasurementWidgetType(0)); };
        d.accepts = [](int, Kind) { return true; };
        d.bind = [](Harness& h, Control& c, int, int s) { return c.as<VCMeasurementWidget>()->SetValueTreePath(h.branchOf(s)); };
        d.input = [](Harness& h, Control& c) {
            if (c.bound[0] >= 0 && h.chance(0.5)) {
                const int cell = c.bound[0];
                values::BoolValue* flag = h.invalidFlagOf(cell);
                h.did += QStringLiteral(" flag invalid %1").arg(!flag->GetValue());
                flag->SetValue(!flag->GetValue(), nullptr);
                // Every block on this result hears the flag, or misses it while its label is disabled.
                for (Control& other : h.controls) {
                    if (other.alive() && other.driver == c.driver && other.bound[0] == cell) {
                        auto* label = other.object->findChild<VCLabel*>(QStringLiteral("RESULT_MEAS_Level"));
                        other.flagStale = !label || !label->isEnabled();
                    }
                }
            } else {
                h.click(c.as<VCMeasurementWidget>());
            }
        };
        d.shows = [](Harness& h, Control& c) {
            auto* block = c.as<VCMeasurementWidget>();
            auto* value = block->findChild<VCLabel*>(QStringLiteral("RESULT_MEAS_Level"));
            if (!value)
                return QStringLiteral("no value label named after the result");
            // Disabled, the label ignores changes, and once enabled it waits for the next one.
            if (!value->isEnabled()) {
                c.stale = true;
                return QString();
            }
            if (c.flagStale)
                return QString();
            if (h.invalidFlagOf(c.bound[0])->GetValue())
                return expectEqual("result", value->text(), QStringLiteral("- - -"));
            const QString held = h.numeric(c.bound[0]) ? QString::number(h.numeric(c.bound[0])->GetValue(), 'f', 1)
                                                       : h.cells[c.bound[0]].value->GetValueString();
            return expectEqual("result", value->text(), held);
        };
        ds.push_back(d);
    }
    { // VCMultipleCheck: a list of check boxes on a multi-selection or a checked-string vector.
        Driver d;
        d.name = "VCMultipleCheck";
        d.roles = 1;
        d.followsItems = true;
        d.create = [](Harness& h, Control&) {
            auto* list = new VCMultipleCheck(&h.panel, "multicheck");
            list->resize(160, 140);
            return list;
        };
        d.accepts = [](int, Kind k) { return k == MultiMany || k == Vector; };
        d.bind = [](Harness& h, Control& c, int, int s) {
            return c.as<VCMultipleCheck>()->SetCheckedStringVector_ValuePath(h.cells[s].path);
        };
        d.input = [](Harness& h, Control& c) {
            auto* list = c.as<VCMultipleCheck>();
            if (list->topLevelItemCount() == 0) {
                h.did += QStringLiteral(" none: no rows");
                return;
            }
            const int row = h.pick(list->topLevelItemCount());
            QCheckBox* box = static_cast<CheckSortListViewItem*>(list->topLevelItem(row))->GetCheckBox();
            h.did += QStringLiteral(" row %1").arg(row);
            h.click(box, QPoint(5, box->height() / 2));
        };
        // Every row's text and mark, top to bottom, against the value's elements or its items by key.
        d.shows = [](Harness& h, Control& c) {
            auto* list = c.as<VCMultipleCheck>();
            QStringList shown, held;
            for (int row = 0; row < list->topLevelItemCount(); ++row) {
                QCheckBox* box = static_cast<CheckSortListViewItem*>(list->topLevelItem(row))->GetCheckBox();
                shown << QStringLiteral("%1:%2").arg(box->text()).arg(box->isChecked());
            }
            values::ValueBase* v = h.cells[c.bound[0]].value;
            if (auto* vector = dynamic_cast<values::CheckedStringVector*>(v)) {
                for (const values::CheckedString& element : vector->GetValue())
                    held << QStringLiteral("%1:%2").arg(element.GetString()).arg(element.GetChecked());
            } else {
                auto* multi = dynamic_cast<values::IValueMultiSelection*>(v);
                std::vector<unsigned int> keys;
                multi->GetKeys(keys);
                std::sort(keys.begin(), keys.end());
                for (unsigned int key : keys)
                    held << QStringLiteral("%1:%2").arg(multi->GetItemByKey(int(key))->GetName()).arg(multi->IsItemChecked(int(key)));
            }
            return expectEqual("check list", shown.join(QLatin1String(", ")), held.join(QLatin1String(", ")));
        };
        ds.push_back(d);
    }
    { // VCComboBoxClassic: a drop-down list on a selection or a single-choice multi-selection.
        Driver d;
        d.name = "VCComboBoxClassic";
        d.roles = 1;
        d.create = [](Harness& h, Control&) { return new VCComboBoxClassic(&h.panel, "comboclassic"); };
        d.accepts = [](int, Kind k) { return k == Sel || k == MultiOne; };
        d.bind = [](Harness& h, Control& c, int, int s) {
            const bool bound = c.as<VCComboBoxClassic>()->SetValueSelection_ValuePath(h.cells[s].path);
            if (!bound)
                c.expectEnabled = 0; // a failed binding disables the list
            return bound;
        };
        d.input = [](Harness& h, Control& c) {
            QPointer<VCComboBoxClassic> box = c.as<VCComboBoxClassic>();
            switch (h.pick(3)) {
            case 0: h.key(box, h.chance(0.5) ? Qt::Key_Up : Qt::Key_Down); break;
            case 1: h.wheel(box, h.chance(0.5) ? 1 : -1); break;
            default: {
                h.click(box);
                QPointer<QAbstractItemView> view = box ? box->view() : nullptr;
                if (!view || !view->isVisible())
                    break; // a disabled list opens nothing
                for (int n = h.pick(4); n > 0 && view; --n)
                    h.key(view, Qt::Key_Down);
                if (view)
                    h.key(view, Qt::Key_Return);
                // A pick in the popup is written on the next turn of the loop.
                QCoreApplication::processEvents();
                break;
            }
            }
        };
        d.shows = [](Harness& h, Control& c) {
            auto* box = c.as<VCComboBoxClassic>();
            if (auto* sel = h.selection(c.bound[0])) {
                QString e = expectNear("list rows", box->count(), sel->GetItemCount(), 0);
                if (e.isEmpty() && sel->GetCurrentItem())
                    e = expectEqual("list", box->currentText(), sel->GetValueString());
                return e;
            }
            auto* multi = dynamic_cast<values::StringMultiSelection*>(h.cells[c.bound[0]].value);
            QString e = expectNear("list rows", box->count(), multi->GetKeyCount(), 0);
            // With nothing checked the list keeps the row it shows.
            if (e.isEmpty() && multi->GetCheckedKeys().size() == 1)
                e = expectEqual("list", box->currentText(), multi->GetValueString());
            return e;
        };
        ds.push_back(d);
    }
    { // VCComboBoxButtonStyle: a menu button on a first and a second selection or multi-selection.
        Driver d;
        d.name = "VCComboBoxButtonStyle";
        d.roles = 2;
        d.followsItems = true;
        d.followsState = false; // a value's state enables its entries, not the button
        d.create = [](Harness& h, Control& c) {
            auto* b = new VCComboBoxButtonStyle(&h.panel, "combobutton", c.variant % 2, c.variant % 4 >= 2);
            if (c.variant % 2)
                b->AddMenuEntry(QStringLiteral("extra"), &h.panel, SLOT(update()));
            return b;
        };
        d.accepts = [](int, Kind k) { return k == Sel || k == MultiOne || k == MultiMany; };
        d.bind = [](Harness& h, Control& c, int role, int s) {
            auto* b = c.as<VCComboBoxButtonStyle>();
            return role == 0 ? b->SetValueSelection_ValuePath(h.cells[s].path) : b->SetSecondSelection_ValuePath(h.cells[s].path);
        };
        d.input = [](Harness& h, Control& c) {
            QPointer<VCComboBoxButtonStyle> b = c.as<VCComboBoxButtonStyle>();
            // A menu that opens is answered from a timer by keys: some Downs, then Return.
            QTimer picker;
            picker.setSingleShot(true);
            const int downs = 1 + h.pick(4);
            QObject::connect(&picker, &QTimer::timeout, [&h, downs] {
                QPointer<QWidget> menu = QApplication::activePopupWidget();
                for (int n = downs; n > 0 && menu; --n)
                    h.key(menu, Qt::Key_Down);
                if (menu)
                    h.key(menu, Qt::Key_Return);
                if (auto* open = qobject_cast<QMenu*>(menu.data()))
                    open->close(); // nothing enabled to pick
            });
            switch (h.pick(5)) {
            case 0: h.key(b, h.chance(0.5) ? Qt::Key_Up : Qt::Key_Down); break;
            case 1: h.wheel(b, h.chance(0.5) ? 1 : -1); break;
            case 2: { // a pick as the menu's entry would make it
                if (!b->GetPopup() || !b->isEnabled() || !b->GetPopup()->isEnabled())
                    break;
                QList<QAction*> live;
                for (QAction* a : b->GetPopup()->actions())
                    if (!a->isSeparator() && a->isEnabled())
                        live << a;
                if (!live.isEmpty()) {
                    QAction* a = live[h.pick(live.size())];
                    h.did += QStringLiteral(" trigger %1").arg(a->text());
                    a->trigger();
                }
                break;
            }
            case 3: // the menu through Space, after the key's animated click
                picker.start(30);
                h.key(b, Qt::Key_Space);
                QCoreApplication::processEvents();
                break;
            default: // a press opens the menu, or flips a two-item selection
                picker.start(30);
                h.click(b, QPoint(3, 3));
                break;
            }
        };
        d.shows = [](Harness& h, Control& c) {
            auto* b = c.as<VCComboBoxButtonStyle>();
            ResortPopupMenu* menu = b->GetPopup();
            if (c.bound[0] >= 0) {
                values::ValueBase* v = h.cells[c.bound[0]].value;
                if (auto* sel = dynamic_cast<values::ValueSelection*>(v)) {
                    values::SelectionItem* current = sel->GetCurrentItem();
                    if (!current)
                        return QString();
                    // A rebuild ends with the second selection's text: only a lone first is compared.
                    if (c.bound[1] < 0) {
                        QString e = expectEqual("menu button", b->text(), current->GetName());
                        if (!e.isEmpty())
                            return e;
                    }
                    QAction* entry = menu ? menu->findItem(int(current->GetKey())) : nullptr;
                    if (entry && !entry->isChecked())
                        return QStringLiteral("current entry %1 unchecked").arg(current->GetKey());
                } else {
                    auto* multi = static_cast<values::StringMultiSelection*>(v);
                    std::vector<unsigned int> keys;
                    multi->GetKeys(keys);
                    for (unsigned key : keys) {
                        QAction* entry = menu ? menu->findItem(int(key)) : nullptr;
                        if (entry && entry->isChecked() != multi->IsItemChecked(int(key)))
                            return QStringLiteral("entry %1 %2checked").arg(key).arg(entry->isChecked() ? "" : "un");
                    }
                    const std::vector<unsigned int> checked = multi->GetCheckedKeys();
                    if (c.bound[1] < 0 || c.bound[1] == c.bound[0] || h.cells[c.bound[1]].kind != Sel)
                        return expectEqual("menu button", b->text(),
                                           checked.size() == 1 ? multi->GetValueString() : QString());
                }
            }
            if (auto* second = h.selection(c.bound[1])) {
                values::SelectionItem* current = second->GetCurrentItem();
                // A pick in the second selection looks its item up by place: where keys and places
                // differ it is not written, and the entry clicked loses its mark until the next change.
                if (current && second->GetItemAt(int(current->GetKey())) != current)
                    return QString();
                QAction* entry = current && menu ? menu->findItem(int(current->GetKey()) + 10000) : nullptr;
                if (entry && !entry->isChecked())
                    return QStringLiteral("second's current entry %1 unchecked").arg(current->GetKey());
            }
            return QString();
        };
        ds.push_back(d);
    }
    // --- the button compounds ---
    // The names a one-of button stands for: items of the selection at bind time, the out one maybe none.
    const auto oneOfNames = [](Harness& h, Control& c, int s) {
        values::ValueSelection* sel = h.selection(s);
        const int n = sel ? sel->GetItemCount() : 0;
        const auto name = [&](int i) { return n > 0 ? sel->GetItemAt(i % n)->GetName() : QString(); };
        return qMakePair(name(c.variant), c.variant % 3 ? name(c.variant + 1) : QString());
    };
    const auto iconColour = [](const QAbstractButton* b) { return b->icon().pixmap(16, 16).toImage().pixel(8, 8); };
    const auto filled = [](Qt::GlobalColor colour) {
        QPixmap pixmap(16, 16);
        pixmap.fill(colour);
        return pixmap;
    };
    // A pick among the enabled entries of a menu button's popup, as the entry's own trigger makes it.
    const auto pickEntry = [](Harness& h, VCComboBoxButtonStyle* b) {
        if (!b || !b->GetPopup() || !b->isEnabled() || !b->GetPopup()->isEnabled())
            return;
        QList<QAction*> live;
        for (QAction* a : b->GetPopup()->actions())
            if (!a->isSeparator() && a->isEnabled())
                live << a;
        if (!live.isEmpty()) {
            QAction* a = live[h.pick(live.size())];
            h.did += QStringLiteral(" trigger %1").arg(a->text());
            a->trigger();
        }
    };
    { // VCButtonGroup: radio buttons that follow a selection's items, the check box on a boolean.
        Driver d;
        d.name = "VCButtonGroup";
        d.roles = 2;
        d.distinctRoles = true;
        d.followsItems = true;
        d.followsState = false; // the selection's state alone enables it: checked in shows
        d.create = [](Harness& h, Control& c) {
            auto* g = new VCButtonGroup(&h.panel, "group", c.variant % 2 ? Qt::Horizontal : Qt::Vertical);
            g->setAddStretch(c.variant % 4 >= 2);
            return g;
        };
        d.accepts = [](int role, Kind k) { return role == 0 ? k == Sel : k == Bool; };
        d.bind = [](Harness& h, Control& c, int role, int s) {
            auto* g = c.as<VCButtonGroup>();
            return role == 0 ? g->SetValueSelection_ValuePath(h.cells[s].path) : g->SetCheckable_ValuePath(h.cells[s].path);
        };
        d.input = [](Harness& h, Control& c) {
            auto* g = c.as<VCButtonGroup>();
            const QList<EnhancedRadioButton*> radios = g->findChildren<EnhancedRadioButton*>(QString(), Qt::FindDirectChildrenOnly);
            if (g->isCheckable() && h.chance(0.2)) {
                g->setFocus();
                h.key(g, Qt::Key_Space); // the group's check box
            } else if (!radios.isEmpty()) {
                QWidget* radio = radios[h.pick(radios.size())];
                h.click(radio, QPoint(6, radio->height() / 2));
            }
        };
        d.shows = [](Harness& h, Control& c) {
            auto* g = c.as<VCButtonGroup>();
            if (c.bound[1] >= 0) {
                const bool held = static_cast<values::BoolValue*>(h.cells[c.bound[1]].value)->GetValue();
                if (g->isChecked() != held)
                    return QStringLiteral("check box %1, boolean %2").arg(g->isChecked()).arg(held);
            }
            values::ValueSelection* sel = h.selection(c.bound[0]);
            if (!sel)
                return QString();
            if (g->isEnabled() != (h.cells[c.bound[0]].state == Enabled))
                return QStringLiteral("enabled %1, state %2").arg(g->isEnabled()).arg(h.cells[c.bound[0]].state);
            const QList<EnhancedRadioButton*> radios = g->findChildren<EnhancedRadioButton*>(QString(), Qt::FindDirectChildrenOnly);
            QString e = expectNear("radio buttons", radios.size(), sel->GetItemCount(), 0);
            // Only keys below the number of buttons are shown (keys are taken to count from 0).
            const long key = sel->GetCurrentKey();
            if (e.isEmpty() && key >= 0 && key < sel->GetItemCount()) {
                QString checked;
                for (EnhancedRadioButton* r : radios)
                    if (r->isChecked())
                        checked = r->text();
                e = expectEqual("radio group", checked, sel->GetValueString());
            }
            return e;
        };
        ds.push_back(d);
    }
    { // VCOneOfButton: in while the selection holds its string; a click writes it, or its out string.
        Driver d;
        d.name = "VCOneOfButton";
        d.roles = 1;
        d.create = [](Harness& h, Control&) {
            return new VCOneOfButton(QStringLiteral("oneof"), &h.panel, static_cast<const char* const*>(nullptr), nullptr);
        };
        d.accepts = [](int, Kind k) { return k == Sel; };
        d.bind = [oneOfNames](Harness& h, Control& c, int, int s) {
            const auto names = oneOfNames(h, c, s);
            c.object->setProperty("inString", names.first);
            return c.as<VCOneOfButton>()->SetSelection_ValuePath(h.cells[s].path, names.first, names.second);
        };
        d.input = [](Harness& h, Control& c) {
            if (h.chance(0.7))
                h.click(c.as<VCOneOfButton>());
            else
                h.key(c.as<VCOneOfButton>(), Qt::Key_Space);
            QCoreApplication::processEvents(); // the key's animated click
            h.sink->setFocus(); // a click that wrote nothing shows out until the focus leaves
        };
        d.shows = [](Harness& h, Control& c) {
            auto* b = c.as<VCOneOfButton>();
            const bool in = h.cells[c.bound[0]].value->GetValueString() == c.object->property("inString").toString();
            return b->isChecked() == in ? QString() : QStringLiteral("checked %1, in %2").arg(b->isChecked()).arg(in);
        };
        ds.push_back(d);
    }
    { // VCOneOfButtonCombo: a one-of button whose pair a menu button beside it chooses.
        Driver d;
        d.name = "VCOneOfButtonCombo";
        d.roles = 1;
        d.followsState = false; // the parts follow the state, the compound never
        d.create = [](Harness& h, Control& c) { return new VCOneOfButtonCombo(&h.panel, "oneofcombo", c.variant % 2); };
        d.accepts = [](int, Kind k) { return k == Sel; };
        d.bind = [oneOfNames, filled](Harness& h, Control& c, int, int s) {
            auto* combo = c.as<VCOneOfButtonCombo>();
            const auto names = oneOfNames(h, c, s);
            const bool bound = combo->SetSelection_ValuePath(h.cells[s].path, names.first, names.second, filled(Qt::green),
                                                             filled(Qt::red));
            // A second pair, in blue, on another item.
            c.variant += 2;
            const auto second = oneOfNames(h, c, s);
            c.object->setProperty("pairs", QStringList{names.first, second.first});
            combo->AddSelection(second.first, second.second, filled(Qt::blue), filled(Qt::gray));
            if (!bound) // the menu button may have taken a multi-selection the others refused
                combo->findChild<VCComboBoxButtonStyle*>()->SetValueSelection_ValuePath(QString());
            return bound;
        };
        d.input = [pickEntry](Harness& h, Control& c) {
            auto* combo = c.as<VCOneOfButtonCombo>();
            if (h.chance(0.5))
                h.click(combo->findChild<VCOneOfButton*>());
            else
                pickEntry(h, combo->findChild<VCComboBoxButtonStyle*>());
        };
        d.shows = [iconColour](Harness& h, Control& c) {
            auto* button = c.as<VCOneOfButtonCombo>()->findChild<VCOneOfButton*>();
            const QStringList pairs = c.object->property("pairs").toStringList();
            const QString held = h.cells[c.bound[0]].value->GetValueString();
            // The first pair whose in string the value holds is the button's, showing its in picture.
            const int pair = pairs.indexOf(held);
            // Two pairs on one string: a pick gives the button the last of them, a change the first.
            if (pair < 0 || held.isEmpty() || pairs.count(held) > 1)
                return QString();
            const QRgb want = QColor(pair == 0 ? Qt::green : Qt::blue).rgb();
            return iconColour(button) == want ? QString() : QStringLiteral("pair %1 not shown for %2").arg(pair).arg(held);
        };
        ds.push_back(d);
    }
    { // VCButtonCombo: a cycling button and a menu button on one selection.
        Driver d;
        d.name = "VCButtonCombo";
        d.roles = 1;
        d.followsItems = true;
        d.followsState = false; // the frame stays enabled; its button follows the state
        d.create = [](Harness& h, Control& c) {
            return new VCButtonCombo(&h.panel, QStringLiteral("buttoncombo"), c.variant % 2, false);
        };
        d.accepts = [](int, Kind k) { return k == Sel; };
        d.bind = [](Harness& h, Control& c, int, int s) {
            auto* combo = c.as<VCButtonCombo>();
            const bool bound = combo->SetValueSelection_ValuePath(h.cells[s].path);
            if (!bound) // the menu button may have taken a multi-selection the button refused
                combo->GetCombo()->SetValueSelection_ValuePath(QString());
            return bound;
        };
        d.input = [pickEntry](Harness& h, Control& c) {
            auto* combo = c.as<VCButtonCombo>();
            if (h.chance(0.5))
                h.click(combo->GetButton());
            else
                pickEntry(h, combo->GetCombo());
        };
        d.shows = [](Harness& h, Control& c) {
            auto* combo = c.as<VCButtonCombo>();
            values::ValueSelection* sel = h.selection(c.bound[0]);
            if (combo->GetButton()->isEnabled() != (h.cells[c.bound[0]].state == Enabled))
                return QStringLiteral("button enabled %1, state %2").arg(combo->GetButton()->isEnabled()).arg(h.cells[c.bound[0]].state);
            if (!sel->GetCurrentItem())
                return QString();
            QString e = expectEqual("button", combo->GetButton()->GetCurrentText(), sel->GetValueString());
            if (e.isEmpty())
                e = expectEqual("menu button", combo->GetCombo()->text(), sel->GetValueString());
            return e;
        };
        ds.push_back(d);
    }
    // --- menus: a pick in the open menu, by keys; the menu is sometimes left open for the next steps,
    // so that values change, go and are rebuilt under it ---
    struct MenuInput
    {
        // Opens \a menu (closing it first if it stood open), picks \a downs entries down, or leaves it open.
        static void pick(Harness& h, QMenu* menu, int downs)
        {
            QPointer<QMenu> m(menu);
            if (m->isVisible())
                m->close();
            h.did += QStringLiteral(" popup");
            m->popup(h.panel.mapToGlobal(QPoint(40 + h.pick(400), 40 + h.pick(300))));
            if (h.chance(0.2)) {
                h.did += QStringLiteral(" left open");
                return;
            }
            for (int n = downs; n > 0 && m; --n)
                h.key(m, Qt::Key_Down);
            if (m)
                h.key(m, Qt::Key_Return);
            if (m && m->isVisible())
                m->close(); // a disabled menu takes no keys
        }
        // Qt toggles a checkable entry itself; only a write that comes back corrects it, so a pick that
        // wrote nothing (a name the selection lacks, a key no item has) leaves the menu stale.
        static void staleUnlessWritten(Harness& h, Control& c, const int before[2])
        {
            for (int role = 0; role < 2; ++role)
                if (c.alive() && c.bound[role] >= 0 && h.cells[c.bound[role]].recorder->writes == before[role])
                    c.stale = true;
        }
        // The menus' bindings read no state, and the context menu follows none: a menu may hold a value
        // bound while it stood Removed, or one Removed since, which the walk counts let go. It writes them.
        static void allowHeld(Harness& h, std::initializer_list<const void*> held)
        {
            for (int i = 0; i < kCells; ++i)
                for (const void* value : held)
                    if (value && h.cells[i].value && value == h.cells[i].value)
                        h.writable.insert(i);
        }
        static void writesOf(Harness& h, const Control& c, int out[2])
        {
            for (int role = 0; role < 2; ++role)
                out[role] = c.bound[role] >= 0 ? h.cells[c.bound[role]].recorder->writes : 0;
        }
    };
    { // VCPopupMenu with one switch entry on a selection.
        Driver d;
        d.name = "VCPopupMenu switch";
        d.roles = 1;
        d.followsState = false; // a binding takes no state; only a change of it reaches the menu
        d.keepsBindingOnFailure = true;
        d.create = [](Harness& h, Control& c) {
            auto* m = new HeldMenu(&h.panel, "popupmenu");
            static const char* const outs[] = {"item0", "item2", ""};
            const int mask = ErrorHandler::Instance().GetReportingMask();
            ErrorHandler::Instance().SetReportingMask(0); // the entry comes unbound: no trace of that
            m->InsertItem(QStringLiteral("switch"), 3, QString(), QStringLiteral("item1"), QLatin1String(outs[c.variant % 3]));
            ErrorHandler::Instance().SetReportingMask(mask);
            return m;
        };
        d.accepts = [](int, Kind k) { return k == Sel; };
        d.bind = [](Harness& h, Control& c, int, int s) {
            return c.as<VCPopupMenu>()->SetSelection_ValuePath(3, h.cells[s].path, QString(), QString());
        };
        d.input = [](Harness& h, Control& c) {
            int before[2];
            MenuInput::writesOf(h, c, before);
            auto* menu = static_cast<HeldMenu*>(c.as<VCPopupMenu>());
            MenuInput::allowHeld(h, {menu->m_tuples[3].m_sel});
            MenuInput::pick(h, c.as<QMenu>(), 1);
            MenuInput::staleUnlessWritten(h, c, before);
        };
        d.shows = [](Harness& h, Control& c) {
            QAction* entry = c.as<QMenu>()->actions().value(0);
            const bool on = h.cells[c.bound[0]].value->GetValueString() == QLatin1String("item1");
            if (!entry || entry->isChecked() != on)
                return QStringLiteral("switch %1checked, value holds \"%2\"").arg(on ? "un" : "", h.cells[c.bound[0]].value->GetValueString());
            return QString();
        };
        ds.push_back(d);
    }
    { // VCPopupMenu generated from a multi-selection.
        Driver d;
        d.name = "VCPopupMenu generated";
        d.roles = 1;
        d.followsState = false;
        d.followsItems = true;
        d.create = [](Harness& h, Control&) { return new HeldMenu(&h.panel, "generatedmenu"); };
        d.accepts = [](int, Kind k) { return k == MultiOne || k == MultiMany; };
        d.bind = [](Harness& h, Control& c, int, int s) {
            return c.as<VCPopupMenu>()->SetValue1Selection_String_ValuePath(h.cells[s].path);
        };
        d.input = [](Harness& h, Control& c) {
            int before[2];
            MenuInput::writesOf(h, c, before);
            MenuInput::allowHeld(h, {static_cast<values::ValueBase*>(static_cast<HeldMenu*>(c.as<VCPopupMenu>())->m_pValue1Selection)});
            MenuInput::pick(h, c.as<QMenu>(), 1 + h.pick(4));
            MenuInput::staleUnlessWritten(h, c, before);
        };
        d.shows = [](Harness& h, Control& c) {
            auto* multi = static_cast<values::StringMultiSelection*>(h.cells[c.bound[0]].value);
            std::vector<unsigned int> keys;
            multi->GetKeys(keys);
            std::sort(keys.begin(), keys.end());
            QStringList held, shown;
            if (multi->HasNoneEntry())
                held << multi->GetNoneEntryText() + QStringLiteral("=-1");
            for (size_t i = 0; i < keys.size(); ++i)
                held << QStringLiteral("%1=%2%3%4").arg(multi->GetItemByKey(int(keys[i]))->GetName()).arg(i)
                            .arg(multi->IsItemChecked(int(keys[i])) ? "*" : "").arg(multi->IsItemEnabled(int(keys[i])) ? "" : "~");
            for (QAction* a : c.as<QMenu>()->actions())
                shown << QStringLiteral("%1=%2%3%4").arg(a->text(), a->data().toString()).arg(a->isChecked() ? "*" : "")
                             .arg(a->isEnabled() ? "" : "~");
            return expectEqual("generated menu", shown.join(QLatin1Char(' ')), held.join(QLatin1Char(' ')));
        };
        ds.push_back(d);
    }
    { // VCMenuBar with one switch entry, checkable in some variants.
        Driver d;
        d.name = "VCMenuBar";
        d.roles = 1;
        d.followsState = false;
        d.keepsBindingOnFailure = true; // a failed rebinding keeps the binding in force
        d.create = [](Harness& h, Control& c) {
            auto* bar = new HeldBar(&h.panel);
            QAction* entry = bar->addAction(QStringLiteral("switch"));
            entry->setData(0);
            entry->setCheckable(c.variant % 2);
            bar->resize(160, 24);
            return bar;
        };
        d.accepts = [](int, Kind k) { return k == Sel; };
        d.bind = [](Harness& h, Control& c, int, int s) {
            const bool answer = c.as<VCMenuBar>()->SetSelection_ValuePath(0, h.cells[s].path, QStringLiteral("item1"),
                                                                         QStringLiteral("item%1").arg(c.variant % 3 * 2));
            // (A value bound while Removed is held by the bar, though the walk counts it let go.)
            if (!h.selection(s) && c.bound[0] >= 0 && !answer)
                throw QStringLiteral("a failed rebinding answered %1").arg(answer);
            return answer && h.selection(s);
        };
        d.input = [](Harness& h, Control& c) {
            int before[2];
            MenuInput::writesOf(h, c, before);
            MenuInput::allowHeld(h, {static_cast<HeldBar*>(c.as<VCMenuBar>())->m_tuples[0].sel});
            auto* bar = c.as<QMenuBar>();
            h.click(bar, bar->actionGeometry(bar->actions().at(0)).center());
            MenuInput::staleUnlessWritten(h, c, before);
        };
        d.shows = [](Harness& h, Control& c) {
            QAction* entry = c.as<QMenuBar>()->actions().value(0);
            const bool on = entry->isCheckable() && h.cells[c.bound[0]].value->GetValueString() == QLatin1String("item1");
            return entry->isChecked() == on ? QString() : QStringLiteral("bar entry %1checked").arg(on ? "un" : "");
        };
        ds.push_back(d);
    }
    { // VCSelectionPopup on a first and a second selection, with a command in some variants.
        Driver d;
        d.name = "VCSelectionPopup";
        d.roles = 2;
        d.followsState = false; // a Disabled value stays selectable
        d.followsItems = true;
        d.create = [](Harness& h, Control& c) {
            auto* p = new HeldSelections(&h.panel);
            if (c.variant % 2)
                p->AddAdditionalItem(QStringLiteral("extra"), &h.panel, SLOT(update()));
            return p;
        };
        d.accepts = [](int, Kind k) { return k == Sel; };
        d.bind = [](Harness& h, Control& c, int role, int s) {
            auto* p = c.as<VCSelectionPopup>();
            return role == 0 ? p->SetFirstSelection_ValuePath(h.cells[s].path) : p->SetSecondSelection_ValuePath(h.cells[s].path);
        };
        d.input = [](Harness& h, Control& c) {
            int before[2];
            MenuInput::writesOf(h, c, before);
            auto* held = static_cast<HeldSelections*>(c.as<VCSelectionPopup>());
            MenuInput::allowHeld(h, {held->m_pFirstSelection, held->m_pSecondSelection});
            MenuInput::pick(h, c.as<QMenu>(), 1 + h.pick(5));
            MenuInput::staleUnlessWritten(h, c, before);
        };
        d.shows = [](Harness& h, Control& c) {
            // The popup follows no state: a value Removed but still in the tree keeps its part. What it
            // holds must be what the walk bound, and what it shows what it holds.
            auto* p = static_cast<HeldSelections*>(c.as<VCSelectionPopup>());
            values::ValueSelection* roles[2] = {p->m_pFirstSelection, p->m_pSecondSelection};
            for (int role = 0; role < 2; ++role)
                if (c.bound[role] >= 0 && roles[role] != h.selection(c.bound[role]))
                    return QStringLiteral("role %1 holds another value than bound").arg(role);
            QStringList held;
            const auto part = [&](values::ValueSelection* sel) {
                for (int i = 0; i < sel->GetItemCount(); ++i)
                    held << sel->GetItemAt(i)->GetName() + (i == sel->GetCurrentIndex() ? "*" : "");
            };
            if (roles[0])
                part(roles[0]);
            if (roles[0] && roles[1])
                held << QStringLiteral("-");
            if (roles[1])
                part(roles[1]);
            if (c.variant % 2) {
                if (roles[0] || roles[1])
                    held << QStringLiteral("-");
                held << QStringLiteral("extra");
            }
            QStringList shown;
            for (QAction* a : c.as<QMenu>()->actions())
                shown << (a->isSeparator() ? QStringLiteral("-") : a->text() + (a->isChecked() ? "*" : ""));
            return expectEqual("selection popup", shown.join(QLatin1Char(' ')), held.join(QLatin1Char(' ')));
        };
        ds.push_back(d);
    }
    for (Driver& d : ds)
        if (!d.echoesOnBind)
            d.echoesOnBind = [](Harness&, Control&, int) { return NoWrite; };
    return ds;
}

// One step of the walk: a random action, described for the replay log. Sets what it may write.
QString step(Harness& h, const std::vector<Driver>& drivers)
{
    std::vector<int> live = h.alive();
    const int s = h.pick(kCells);
    Cell& cell = h.cells[s];
    const int kind = h.pick(100);

    if (live.size() < 4 || (kind < 6 && live.size() < size_t(kMaxControls))) {
        const Driver& d = drivers[size_t(h.pick(int(drivers.size())))];
        const int i = h.create(d);
        return QStringLiteral("create #%1 %2 variant %3").arg(i).arg(QLatin1String(d.name)).arg(h.controls[size_t(i)].variant);
    }
    const int ci = live[size_t(h.pick(int(live.size())))];
    Control& c = h.controls[size_t(ci)];
    const QString who = QStringLiteral("#%1 %2").arg(ci).arg(QLatin1String(c.driver->name));

    if (kind < 30 && c.driver->roles > 0) { // bind or rebind, to a fitting kind mostly
        const int role = h.pick(c.driver->roles);
        int target = s;
        for (int tries = 0; tries < 8 && h.chance(0.8) && !(h.cells[target].value && c.driver->accepts(role, h.cells[target].kind)); ++tries)
            target = h.pick(kCells);
        Cell& t = h.cells[target];
        if (c.driver->distinctRoles && c.bound[1 - role] == target)
            return QStringLiteral("no bind");
        const bool removedState = t.value && t.state == Removed;
        const bool expected = t.value && c.driver->accepts(role, t.kind);
        if (expected) {
            const int writes = c.driver->echoesOnBind(h, c, target);
            if (writes == Rewrite)
                h.writable.insert(target);
            else if (writes == Echo)
                h.echoes.insert(target);
        }
        h.binding = {ci, target};
        const bool answer = c.driver->bind(h, c, role, target);
        h.binding = {-1, -1};
        const QString what = QStringLiteral("bind %1 role %2 to %3 (%4%5)")
                                 .arg(who).arg(role).arg(t.path)
                                 .arg(QLatin1String(t.value ? kKindNames[t.kind] : "absent"))
                                 .arg(removedState ? QStringLiteral(", removed") : QString());
        if (removedState && expected) { // the control lets go at once
            if (c.alive())
                h.letGo(c, role);
            c.expectEnabled = -1;
            return what;
        }
        if (answer != expected)
            throw QStringLiteral("%1: binding answered %2").arg(what).arg(answer);
        if (!c.alive())
            return what;
        if (expected) {
            c.bound[role] = target;
            c.stale = false;
            c.flagStale = false;
            if (c.driver->followsState)
                c.expectEnabled = t.state == Enabled || c.driver->itemsEnable;
        } else if (!c.driver->keepsBindingOnFailure) {
            h.letGo(c, role);
        }
        return what;
    }
    if (kind < 36) {
        h.destroy(ci);
        return QStringLiteral("destroy %1").arg(who);
    }
    if (kind < 58) { // user input; a control writes only the values it is bound to
        for (int b : c.bound)
            if (b >= 0)
                h.writable.insert(b);
        if (c.driver->roles == 0) // an undo reaches any value
            for (int i = 0; i < kCells; ++i)
                h.writable.insert(i);
        h.did.clear();
        c.driver->input(h, c);
        return QStringLiteral("input %1:%2").arg(who, h.did);
    }
    if (kind < 62) { // a killer: deletes a control when the value next changes
        if (!cell.value)
            return QStringLiteral("no killer");
        int target = ci;
        auto boundHere = [&](int i) { return h.controls[size_t(i)].bound[0] == s || h.controls[size_t(i)].bound[1] == s; };
        for (int i : live)
            if (boundHere(i) && h.chance(0.7))
                target = i;
        if (h.spareWriters && boundHere(target))
            return QStringLiteral("no killer");
        auto k = std::make_unique<Killer>();
        k->harness = &h;
        k->control = target;
        k->armed = true;
        k->value = cell.value;
        k->cell = s;
        cell.value->Attach(k.get());
        h.killers.push_back(std::move(k));
        return QStringLiteral("killer on %1 for #%2").arg(cell.path).arg(target);
    }
    if (kind < 70) { // state change
        if (!cell.value)
            return QStringLiteral("no state change");
        const int state = h.chance(0.1) ? Removed : (h.chance(0.5) ? Disabled : Enabled);
        const bool changes = state != cell.state; // only a change is told
        cell.state = state;
        cell.value->SetState(state);
        for (Control& other : h.controls)
            for (int b : other.bound)
                if (b == s && changes && other.alive() && other.driver->followsState && state != Removed)
                    other.expectEnabled = state == Enabled;
        if (state == Removed)
            h.unbindAll(s);
        return QStringLiteral("state %1 = %2").arg(cell.path).arg(state);
    }
    if (kind < 74) { // removal from the tree, or a new value of any kind at an empty path
        if (cell.value) {
            h.unbindAll(s);
            cell.value = nullptr;
            tree().Remove(cell.path);
            return QStringLiteral("remove %1").arg(cell.path);
        }
        const Kind k = Kind(h.pick(KindCount));
        h.addValue(s, k);
        h.contentMoves.insert(s);
        return QStringLiteral("add %1 (%2)").arg(cell.path).arg(QLatin1String(kKindNames[k]));
    }
    if (kind < 76) { // the application undoes the newest recording
        for (int i = 0; i < kCells; ++i)
            h.writable.insert(i);
        if (h.chance(0.25)) {
            h.undoHistory->ExecuteRedo(1);
            return QStringLiteral("redo");
        }
        h.undoHistory->ExecuteUndo(1);
        return QStringLiteral("undo");
    }
    // application writes
    if (!cell.value)
        return QStringLiteral("no write");
    h.writable.insert(s);
    values::ValueBase* v = cell.value;
    switch (cell.kind) {
    case Bool: static_cast<values::BoolValue*>(v)->SetValue(h.chance(0.5), nullptr); break;
    case Int: static_cast<values::IntValue*>(v)->SetValue(h.pick(1000), nullptr); break;
    case Int64: static_cast<values::Int64Value*>(v)->SetValue(h.pick(1000) * 1000000000LL, nullptr); break;
    case Text: static_cast<values::StringValue*>(v)->SetValue(h.word(), nullptr); break;
    case IntNum:
    case DblNum: {
        auto* n = static_cast<values::NumericValueBase*>(v);
        if (h.chance(0.25)) {
            // An int value with a fractional limit would hold a fraction, which every echo then rounds.
            const bool integral = cell.kind == IntNum;
            double lo = h.number(), hi = lo + std::abs(h.number());
            if (integral)
                lo = std::ceil(lo), hi = std::floor(hi) + 1;
            n->SetRange(lo, hi, integral || h.chance(0.5) ? 1 : 0.25);
            return QStringLiteral("range %1 = %2..%3").arg(cell.path).arg(lo).arg(hi);
        }
        const double x = h.number();
        n->SetValue(x, nullptr);
        return QStringLiteral("write %1 = %2").arg(cell.path).arg(x);
    }
    case Sel: {
        auto* sel = static_cast<values::ValueSelection*>(v);
        if (h.chance(0.25)) { // a rebuild of the items is no write: the framework picks the current item
            h.writable.erase(s);
            h.contentMoves.insert(s);
            sel->ClearItems(nullptr);
            if (h.chance(0.8))
                h.fillSelection(sel);
            h.itemsChanged(s, sel->GetItemCount() > 0);
            return QStringLiteral("rebuild %1 (%2 items)").arg(cell.path).arg(sel->GetItemCount());
        }
        if (h.chance(0.3) && sel->GetItemCount() > 0) {
            const long key = sel->GetItemAt(sel->GetItemCount() - 1)->GetKey() + 1;
            h.writable.erase(s);
            sel->AddItem(QStringLiteral("item%1").arg(key), key * 1000.0, key, nullptr);
            h.itemsChanged(s, true);
            return QStringLiteral("add item %1 to %2").arg(key).arg(cell.path);
        }
        const long key = h.pick(7);
        sel->SelectKey(key, nullptr);
        return QStringLiteral("select %1 = %2").arg(cell.path).arg(key);
    }
    case MultiOne:
    case MultiMany: {
        auto* m = static_cast<values::StringMultiSelection*>(v);
        const unsigned key = 3 * unsigned(h.pick(5));
        if (h.chance(0.2)) {
            h.writable.erase(s);
            h.contentMoves.insert(s);
            m->ClearItems();
            for (unsigned k = 0; k < unsigned(h.pick(5)); ++k)
                m->AddItem(k * 3, QStringLiteral("m%1").arg(k), h.chance(0.4));
            h.itemsChanged(s, m->GetKeyCount() > 0);
            return QStringLiteral("rebuild %1").arg(cell.path);
        }
        if (h.chance(0.2)) {
            m->UncheckAll(nullptr);
            return QStringLiteral("uncheck all %1").arg(cell.path);
        }
        if (h.chance(0.2)) {
            // Many marks at once, one notification: more changes than a short journal holds.
            std::vector<unsigned> keys;
            std::vector<unsigned> all;
            m->GetKeys(all);
            for (unsigned k : all)
                if (h.chance(0.5) && (cell.kind == MultiMany || keys.empty()))
                    keys.push_back(k);
            m->SetCheckedKeys(keys, nullptr);
            return QStringLiteral("check %1 items %2 at once").arg(cell.path).arg(keys.size());
        }
        const bool on = h.chance(0.5);
        m->SetItemChecked(int(key), on, nullptr);
        return QStringLiteral("check %1 item %2 = %3").arg(cell.path).arg(key).arg(on);
    }
    case Vector:
        static_cast<values::CheckedStringVector*>(v)->SetValue({values::CheckedString(h.word(), h.chance(0.5))}, nullptr);
        break;
    case KindCount: break;
    }
    return QStringLiteral("write %1 (%2)").arg(cell.path).arg(QLatin1String(kKindNames[cell.kind]));
}

// What must hold after every step; throws the first fault found.
void check(Harness& h)
{
    for (int s = 0; s < kCells; ++s) {
        Cell& cell = h.cells[s];
        if (!cell.value || h.writable.count(s))
            continue;
        if (cell.recorder->writes && !h.echoes.count(s))
            throw QStringLiteral("%1 was written %2 times, by no one's request").arg(cell.path).arg(cell.recorder->writes);
        if (!h.contentMoves.count(s) && cell.value->GetValueString() != cell.before)
            throw QStringLiteral("%1 changed from \"%2\" to \"%3\" unasked").arg(cell.path, cell.before, cell.value->GetValueString());
    }
    for (size_t i = 0; i < h.controls.size(); ++i) {
        Control& c = h.controls[i];
        if (!c.alive())
            continue;
        for (int b : c.bound)
            if (b >= 0 && !h.cells[b].value)
                throw QStringLiteral("#%1 is bound to %2, which is gone").arg(i).arg(h.cells[b].path);
        auto* w = qobject_cast<QWidget*>(c.object.data());
        if (w && c.expectEnabled >= 0 && w->isEnabled() != bool(c.expectEnabled))
            throw QStringLiteral("#%1 %2 is %3, its values say otherwise")
                .arg(i).arg(QLatin1String(c.driver->name)).arg(w->isEnabled() ? "enabled" : "disabled");
        for (int b : c.bound)
            if (b >= 0 && h.cells[b].recorder->writes)
                c.stale = false;
        const bool bound = c.driver->roles == 0 || c.bound[0] >= 0 || c.bound[1] >= 0;
        if (bound && !c.stale) {
            const QString fault = c.driver->shows(h, c);
            if (!fault.isEmpty())
                throw QStringLiteral("#%1 %2: %3").arg(i).arg(QLatin1String(c.driver->name), fault);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // a crash must not swallow the last steps printed
    quint64 seed = std::random_device{}();
    long long steps = 2000;
    bool verbose = false;
    bool spareWriters = false;
    bool keepGoing = false; // report each failing step and go on
    int coalesce = 0; // merge value changes within this many ms; what waits is delivered before each check
    long long faults = 0;
    std::set<QString> kinds;
    QString locale;
    const QStringList args = app.arguments();
    for (int i = 1; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--steps") && i + 1 < args.size())
            steps = args[++i].toLongLong();
        else if (args[i] == QLatin1String("--seed") && i + 1 < args.size())
            seed = args[++i].toULongLong();
        else if (args[i] == QLatin1String("--locale") && i + 1 < args.size())
            locale = args[++i];
        else if (args[i] == QLatin1String("--keep-going"))
            keepGoing = true;
        else if (args[i] == QLatin1String("--spare-writers"))
            spareWriters = true;
        else if (args[i] == QLatin1String("--coalesce") && i + 1 < args.size())
            coalesce = args[++i].toInt();
        else if (args[i] == QLatin1String("--verbose"))
            verbose = true;
        else if (args[i] == QLatin1String("--value-status")) // every check holds with the display on too
            vandrel::SetValueStatusShown(true);
        else {
            std::fprintf(stderr, "usage: vandrel-stress [--steps N] [--seed S] [--locale NAME] [--spare-writers] [--coalesce MS] [--keep-going] [--verbose] [--value-status]\n");
            return 2;
        }
    }
    // Numbers are typed in the language the seed chose, as users of that language write them.
    static const char* const locales[] = {"C", "de_DE", "en_US"};
    if (locale.isEmpty())
        locale = QLatin1String(locales[seed % 3]);
    QLocale::setDefault(QLocale(locale));
    std::printf("vandrel-stress --seed %llu --steps %lld --locale %s\n", (unsigned long long)seed, steps,
                qPrintable(locale));
    std::fflush(stdout);

    const std::vector<Driver> drivers = makeDrivers();
    Harness h(seed);
    h.spareWriters = spareWriters;
    g_h = &h;
    h.clock.start();
    std::deque<QString> log;
    values::Tree::Instance()->SetUpdateInterval(coalesce);
    for (long long n = 1; n <= steps; ++n) {
        h.did.clear();
        // Timers due (a pending number's commit) land before the step, and so does the commit of a
        // field that got the focus back from a closing message box.
        QCoreApplication::processEvents();
        if (!h.panel.isActiveWindow()) // a closed message box leaves no window active
            QApplication::setActiveWindow(&h.panel);
        if (QApplication::focusWidget() != h.sink)
            h.sink->setFocus();
        for (auto it = h.killers.begin(); it != h.killers.end();) {
            if ((*it)->armed) {
                ++it;
                continue;
            }
            if ((*it)->value)
                (*it)->value->Detach(it->get());
            it = h.killers.erase(it);
        }
        h.writable.clear();
        h.echoes.clear();
        h.contentMoves.clear();
        for (Cell& cell : h.cells) {
            if (cell.recorder)
                cell.recorder->writes = 0;
            cell.before = cell.value ? cell.value->GetValueString() : QString();
        }
        QString what;
        try {
            what = step(h, drivers);
            log.push_back(what);
            if (log.size() > 40)
                log.pop_front();
            if (verbose)
                std::printf("%lld: %s\n", n, qPrintable(what));
            if (coalesce > 0) {
                values::Tree::Instance()->SetUpdateInterval(0);
                values::Tree::Instance()->SetUpdateInterval(coalesce);
            }
            check(h);
        } catch (const QString& fault) {
            if (what.isEmpty())
                log.push_back(QStringLiteral("(this step)%1").arg(h.did));
            ++faults;
            // Going on, a fault of a kind already told (numbers aside) is only counted: a control
            // that shows the wrong thing goes on showing it step after step.
            QString kind = fault;
            kind.replace(QRegularExpression(QStringLiteral("[-0-9.]+")), QStringLiteral("#"));
            if (keepGoing && !kinds.insert(kind).second)
                continue;
            std::printf("FAILED at step %lld: %s\nlast steps:\n", n, qPrintable(fault));
            long long first = n - (long long)log.size() + 1;
            for (const QString& line : log)
                std::printf("  %lld: %s\n", first++, qPrintable(line));
            std::printf("replay: vandrel-stress --seed %llu --steps %lld --locale %s%s%s --verbose\n", (unsigned long long)seed,
                        n, qPrintable(locale), spareWriters ? " --spare-writers" : "",
                        coalesce ? qPrintable(QStringLiteral(" --coalesce %1").arg(coalesce)) : "");
            std::fflush(stdout);
            if (!keepGoing)
                return 1;
            log.clear();
        }
        if (keepGoing && n % 10000 == 0) {
            std::printf("%lld steps, %lld failed, %zu kinds of fault\n", n, faults, kinds.size());
            std::fflush(stdout);
        }
    }
    if (faults) {
        std::printf("%lld steps, %lld of them failed\n", steps, faults);
        return 1;
    }
    std::printf("%lld steps held (%d range boxes answered)\n", steps, h.boxes);
    return 0;
}
