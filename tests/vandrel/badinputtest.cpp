// Bad input on every binding and every number or pointer setter of the controls: each must fail
// quietly, never crash, and leave every value of the tree as it was.
#include <plinthor/plinthor.h>
#include <vandrel/vandrel.h>

#include <QSpinBox>
#include <QtTest>

#include <climits>
#include <clocale>
#include <cmath>
#include <functional>
#include <limits>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

// One value of each kind a binding may or may not take.
const QString kBool = QStringLiteral("/v/bool"), kInt = QStringLiteral("/v/int"), kDouble = QStringLiteral("/v/double"),
              kText = QStringLiteral("/v/text"), kSel = QStringLiteral("/v/sel"), kMulti = QStringLiteral("/v/multi"),
              kPlain = QStringLiteral("/v/plain");
const QStringList kKinds = {kBool, kInt, kDouble, kText, kSel, kMulti, kPlain};
const QStringList kNumbers = {kInt, kDouble};

void fillTree()
{
    tree().Add(kBool, new values::BoolValue(true));
    tree().Add(kInt, new values::IntNumeric(3, 0, 6, 1));
    auto* number = new values::DoubleNumeric(2.0, -10.0, 10.0, 0.5);
    tree().Add(kDouble, number);
    tree().Add(kText, new values::StringValue(QStringLiteral("hello")));
    auto* selection = new values::ValueSelection;
    selection->AddItem(QStringLiteral("AM"), 1000.0, 10, nullptr);
    selection->AddItem(QStringLiteral("FM"), 2000.0, 20, nullptr);
    selection->SelectKey(20, nullptr);
    tree().Add(kSel, selection);
    auto* multi = new values::StringMultiSelection(0);
    multi->AddItem(1, QStringLiteral("a"), true);
    multi->AddItem(2, QStringLiteral("b"));
    tree().Add(kMulti, multi);
    tree().Add(kPlain, new values::IntValue(7));
    Plinthor::Instance().GetPositionFormat(); // made on first use; a coordinate field's, not the input's
    // One undo recording under /v, so that an undo button wrongly following it would be enabled.
    UndoRecordingControlBase presets;
    GuiUndoRecordingHelper span(&presets, QString());
    number->SetValue(2.5, nullptr);
    number->SetPendingValue(2.5, nullptr); // as a spin box bound to it lines it up
}

// Everything a bad input must leave alone, per path: state, text, limits, pending number, items;
// and the undo history. Private values that controls make for themselves (VCUndo) are not the input's.
QMap<QString, QString> snapshot()
{
    QMap<QString, QString> out;
    for (const QString& path : tree().Paths()) {
        if (path.startsWith(QLatin1String("/.unique/")))
            continue;
        values::ValueBase* value = tree().Find(path);
        QString line = QString::number(value->GetState()) + QLatin1Char('|') + value->GetValueString();
        if (auto* n = dynamic_cast<values::IValueNumeric*>(value)) {
            for (double x : {n->GetValue(), n->GetMinimum(), n->GetMaximum(), n->GetStep(), n->GetPendingValue()})
                line += QLatin1Char('|') + QString::number(x, 'g', 17);
        }
        if (auto* s = dynamic_cast<values::ValueSelection*>(value)) {
            line += QStringLiteral("|current %1").arg(s->GetCurrentKey());
            for (int i = 0; i < s->GetItemCount(); ++i) {
                const values::SelectionItem* item = s->GetItemAt(i);
                line += QStringLiteral("|%1 %2 %3").arg(item->GetName()).arg(item->GetKey()).arg(item->GetValue());
            }
        }
        if (auto* m = dynamic_cast<values::IValueMultiSelection*>(value)) {
            std::vector<unsigned int> keys;
            m->GetKeys(keys);
            for (unsigned int key : keys)
                line += QStringLiteral("|%1 %2 %3").arg(key).arg(m->IsItemChecked(int(key)))
                            .arg(m->IsItemEnabled(int(key)));
        }
        out.insert(path, line);
    }
    out.insert(QStringLiteral("undo"), QString::number(values::UndoRecorder::Instance().Count()));
    return out;
}

// The entries that differ, as "path: before -> after"; empty when none does.
QString changes(const QMap<QString, QString>& before, const QMap<QString, QString>& after)
{
    QStringList keys = before.keys() + after.keys(), out;
    keys.removeDuplicates();
    for (const QString& key : qAsConst(keys)) {
        if (before.value(key) != after.value(key))
            out << key + QStringLiteral(": ") + before.value(key) + QStringLiteral(" -> ") + after.value(key);
    }
    return out.join(QLatin1Char('\n'));
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

// A binding under test: makes its control on a host widget, names the widget whose enabled state
// tells whether the control follows a value, and binds by path or by pointer.
struct Probe
{
    const char* name;
    QStringList accepts;
    std::function<QObject*(QWidget*)> make;
    std::function<bool(QObject*, const QString&)> byPath;
    std::function<bool(QObject*, values::ValueBase*)> byPointer = nullptr;
    std::function<QWidget*(QObject*)> face = [](QObject* c) { return qobject_cast<QWidget*>(c); };
};

template <class C>
QObject* make(QWidget* host)
{
    return new C(host, "badinput");
}

template <class C>
std::function<bool(QObject*, const QString&)> byPath(bool (C::*bind)(const QString&))
{
    return [bind](QObject* c, const QString& p) { return (static_cast<C*>(c)->*bind)(p); };
}

template <class C, class V, class Bind>
std::function<bool(QObject*, values::ValueBase*)> byPointer(Bind bind)
{
    return [bind](QObject* c, values::ValueBase* v) { return bind(static_cast<C*>(c), dynamic_cast<V*>(v)); };
}

VCScrollButtons* makeScrollButtons(QWidget* host)
{
    auto* buttons = new VCScrollButtons(host, VCScrollButtons::ScrollButtonsLine | VCScrollButtons::ScrollButtonsPage);
    buttons->setParent(host); // no widget: the host deletes it
    return buttons;
}

QObject* makeLabel(QWidget* host)
{
    return new VCLabel(host, "badinput", 0);
}

std::function<bool(QObject*, const QString&)> bindLabel(bool (VCLabel::*bind)(const QString&, bool), bool observe)
{
    return [bind, observe](QObject* c, const QString& p) { return (static_cast<VCLabel*>(c)->*bind)(p, observe); };
}

// A label on the double, wrapping into a circle, in the no-value state when \a noValue.
VCLabel* boundLabel(QWidget* host, bool noValue = false)
{
    auto* label = new VCLabel(host, "badinput", 0);
    label->SetWrapInto(0, 360, 360);
    label->SetText_ValuePath(kDouble, true);
    label->SetDisplayNoValue(noValue);
    return label;
}

QObject* makeButtonCombo(QWidget* host)
{
    return new VCComboBoxButtonStyle(host, "badinput", true, true);
}

QObject* makeOneOfCombo(QWidget* host)
{
    return new VCOneOfButtonCombo(host, "badinput", true);
}

QObject* makeLed(QWidget* host)
{
    return new VCLED(host, "badinput", true);
}

const QList<Probe>& probes()
{
    using Spin = VCNumericFloatSpin;
    using Numeric = values::IValueNumeric;
    const QStringList lineEditKinds = kNumbers + QStringList{kText, kSel};
    static const QList<Probe> list = {
        {"VCButton::SetValueSelection_ValuePath", {kSel}, make<VCButton>, byPath(&VCButton::SetValueSelection_ValuePath)},
        {"VCButton::SetState_ValuePath", kKinds, make<VCButton>, byPath(&VCButton::SetState_ValuePath)},
        {"VCCheckBox::Set_ValuePath", {kBool, kSel}, make<VCCheckBox>, byPath(&VCCheckBox::Set_ValuePath)},
        {"VCCheckBox::SetMultiSelection_ValuePath", {kMulti}, make<VCCheckBox>,
         [](QObject* c, const QString& p) { return static_cast<VCCheckBox*>(c)->SetMultiSelection_ValuePath(p, 1); }},
        {"VCCheckBox::SetBoolean", {kBool}, make<VCCheckBox>, {},
         byPointer<VCCheckBox, values::BoolValue>([](VCCheckBox* c, values::BoolValue* v) { return c->SetBoolean(v); })},
        {"VCCheckBox::SetSelection", {kSel}, make<VCCheckBox>, {},
         byPointer<VCCheckBox, values::ValueSelection>(
             [](VCCheckBox* c, values::ValueSelection* v) { return c->SetSelection(v, 10, 20); })},
        {"VCCoordEdit::SetLatitude_ValuePath", kNumbers, make<VCCoordEdit>, byPath(&VCCoordEdit::SetLatitude_ValuePath)},
        {"VCCoordEdit::SetLongitude_ValuePath", kNumbers, make<VCCoordEdit>, byPath(&VCCoordEdit::SetLongitude_ValuePath)},
        {"VCCoordEdit::SetFormat_ValuePath", kNumbers + QStringList{kSel}, make<VCCoordEdit>,
         byPath(&VCCoordEdit::SetFormat_ValuePath)},
        {"VCLineEdit::SetText_ValuePath", lineEditKinds, make<VCLineEdit>, byPath(&VCLineEdit::SetText_ValuePath)},
        {"VCLineEdit::SetValueBase", lineEditKinds, make<VCLineEdit>, {},
         byPointer<VCLineEdit, values::ValueBase>([](VCLineEdit* c, values::ValueBase* v) { return c->SetValueBase(v); })},
        {"VCNumericFloatSpin::SetNumeric_ValuePath", kNumbers, make<Spin>, byPath(&Spin::SetNumeric_ValuePath)},
        {"VCNumericFloatSpin::SetNumericFloat_ValuePath", kNumbers, make<Spin>, byPath(&Spin::SetNumericFloat_ValuePath)},
        {"VCNumericFloatSpin::SetNumericInt_ValuePath", kNumbers, make<Spin>, byPath(&Spin::SetNumericInt_ValuePath)},
        {"VCNumericFloatSpin::SetNumericValue", kNumbers, make<Spin>, {},
         byPointer<Spin, Numeric>([](Spin* c, Numeric* v) { return c->SetNumericValue(v); })},
        {"VCScrollBar::Set_ValuePath", kNumbers, make<VCScrollBar>, byPath(&VCScrollBar::Set_ValuePath)},
        {"VCSlider::SetNumeric_ValuePath", kNumbers, make<VCSlider>, byPath(&VCSlider::SetNumeric_ValuePath)},
        {"VCSlider::SetNumericValue", kNumbers, make<VCSlider>, {},
         byPointer<VCSlider, Numeric>([](VCSlider* c, Numeric* v) { return c->SetNumericValue(v); })},
        {"VCScrollButtons::Set_ValuePath", kNumbers, makeScrollButtons, byPath(&VCScrollButtons::Set_ValuePath), {},
         [](QObject* c) -> QWidget* { return static_cast<VCScrollButtons*>(c)->GetPlusButton(); }},
        {"VCSpinSelectionBox::SetValueSelection_ValuePath", {kSel}, make<VCSpinSelectionBox>,
         byPath(&VCSpinSelectionBox::SetValueSelection_ValuePath)},
        {"VCTextEdit::SetText_ValuePath", {kText}, [](QWidget* host) -> QObject* { return new VCTextEdit(host); },
         byPath(&VCTextEdit::SetText_ValuePath)},
        {"VCTextEdit::SetValueBase", {kText}, [](QWidget* host) -> QObject* { return new VCTextEdit(host); }, {},
         byPointer<VCTextEdit, values::ValueBase>([](VCTextEdit* c, values::ValueBase* v) { return c->SetValueBase(v); })},
        {"VCLED::SetBool_ValuePath", {kBool}, makeLed, byPath(&VCLED::SetBool_ValuePath)},
        {"VCLED::SetColorIndex_ValuePath", {kPlain}, makeLed, byPath(&VCLED::SetColorIndex_ValuePath)},
        {"VCLED::SetText_ValuePath", {kText}, makeLed, byPath(&VCLED::SetText_ValuePath)},
        {"VCDateTimeEdit::SetDateTime_ValuePath", kNumbers, make<VCDateTimeEdit>,
         byPath(&VCDateTimeEdit::SetDateTime_ValuePath)},
        // No result to give: a bad base path must only leave the button with nothing to undo. An empty
        // one stands for the whole tree, as "/" does.
        {"VCUndo::SetUndoRecordings_BasePath", kKinds, make<VCUndo>,
         [](QObject* c, const QString& p) {
             if (!p.isEmpty())
                 static_cast<VCUndo*>(c)->SetUndoRecordings_BasePath(p);
             return false;
         },
         {}, [](QObject* c) -> QWidget* { return c->findChild<VCButton*>(); }},
        {"VCLabel::SetText_ValuePath", kKinds, makeLabel, bindLabel(&VCLabel::SetText_ValuePath, true)},
        {"VCLabel::SetText_ValuePath unobserved", kKinds, makeLabel, bindLabel(&VCLabel::SetText_ValuePath, false)},
        {"VCLabel::SetNumericOffset_ValuePath", kNumbers, makeLabel, bindLabel(&VCLabel::SetNumericOffset_ValuePath, true)},
        {"VCLabel::SetNoValue_ValuePath", {kBool}, makeLabel, byPath(&VCLabel::SetNoValue_ValuePath)},
        {"VCLabel::SetUpdateNow_ValuePath", {kInt}, makeLabel, byPath(&VCLabel::SetUpdateNow_ValuePath)},
        {"VCComboBoxClassic::SetValueSelection_ValuePath", {kSel}, make<VCComboBoxClassic>,
         byPath(&VCComboBoxClassic::SetValueSelection_ValuePath)},
        {"VCComboBoxClassic::SetValueSelection", {kSel}, make<VCComboBoxClassic>, {},
         byPointer<VCComboBoxClassic, values::ValueSelection>(
             [](VCComboBoxClassic* c, values::ValueSelection* v) { return c->SetValueSelection(v); })},
        {"VCComboBoxButtonStyle::SetValueSelection_ValuePath", {kSel, kMulti}, makeButtonCombo,
         byPath(&VCComboBoxButtonStyle::SetValueSelection_ValuePath)},
        {"VCComboBoxButtonStyle::SetSecondSelection_ValuePath", {kSel, kMulti}, makeButtonCombo,
         byPath(&VCComboBoxButtonStyle::SetSecondSelection_ValuePath)},
        {"VCComboBoxButtonStyle::SetValueSelection", {kSel}, makeButtonCombo, {},
         byPointer<VCComboBoxButtonStyle, values::ValueSelection>(
             [](VCComboBoxButtonStyle* c, values::ValueSelection* v) { return c->SetValueSelection(v); })},
        // No single value is a result branch: every path gives false.
        {"VCMeasurementWidget::SetValueTreePath", {},
         [](QWidget* host) -> QObject* { return new VCMeasurementWidget(host, VCMeasurementWidget::Level); },
         byPath(&VCMeasurementWidget::SetValueTreePath)},
        {"VCMultipleCheck::SetCheckedStringVector_ValuePath", {kMulti}, make<VCMultipleCheck>,
         byPath(&VCMultipleCheck::SetCheckedStringVector_ValuePath)},
        {"VCButtonGroup::SetValueSelection_ValuePath", {kSel}, make<VCButtonGroup>,
         byPath(&VCButtonGroup::SetValueSelection_ValuePath)},
        {"VCButtonGroup::SetValueSelection", {kSel}, make<VCButtonGroup>, {},
         byPointer<VCButtonGroup, values::ValueSelection>(
             [](VCButtonGroup* c, values::ValueSelection* v) { return c->SetValueSelection(v); })},
        {"VCButtonGroup::SetCheckable_ValuePath", {kBool}, make<VCButtonGroup>,
         byPath(&VCButtonGroup::SetCheckable_ValuePath)},
        {"VCOneOfButton::SetSelection_ValuePath", {kSel},
         [](QWidget* host) -> QObject* {
             return new VCOneOfButton(QStringLiteral("b"), host, static_cast<const char* const*>(nullptr), nullptr);
         },
         [](QObject* c, const QString& p) {
             return static_cast<VCOneOfButton*>(c)->SetSelection_ValuePath(p, QStringLiteral("AM"), QStringLiteral("FM"));
         }},
        // The compound stays enabled: its button tells whether it follows a value.
        {"VCOneOfButtonCombo::SetSelection_ValuePath", {kSel}, makeOneOfCombo,
         [](QObject* c, const QString& p) {
             return static_cast<VCOneOfButtonCombo*>(c)->SetSelection_ValuePath(p, QStringLiteral("AM"), QStringLiteral("FM"),
                                                                                QPixmap(), QPixmap());
         },
         {}, [](QObject* c) -> QWidget* { return c->findChild<VCOneOfButton*>(); }},
        {"VCOneOfButtonCombo::SetSecondSelection_ValuePath", {kSel, kMulti}, makeOneOfCombo,
         byPath(&VCOneOfButtonCombo::SetSecondSelection_ValuePath), {},
         [](QObject* c) -> QWidget* { return c->findChild<VCComboBoxButtonStyle*>(); }},
        {"VCButtonCombo::SetValueSelection_ValuePath", {kSel},
         [](QWidget* host) -> QObject* { return new VCButtonCombo(host, QStringLiteral("badinput"), true, false); },
         byPath(&VCButtonCombo::SetValueSelection_ValuePath), {},
         [](QObject* c) -> QWidget* { return static_cast<VCButtonCombo*>(c)->GetButton(); }},
        {"VCPopupMenu::SetSelection_ValuePath", {kSel}, make<VCPopupMenu>,
         [](QObject* c, const QString& p) { return static_cast<VCPopupMenu*>(c)->SetSelection_ValuePath(0, p, "AM", "FM"); }},
        {"VCPopupMenu::SetValue1Selection_String_ValuePath", {kMulti}, make<VCPopupMenu>,
         byPath(&VCPopupMenu::SetValue1Selection_String_ValuePath)},
        {"VCMenuBar::SetSelection_ValuePath", {kSel},
         [](QWidget* host) -> QObject* {
             auto* bar = new VCMenuBar(host, "badinput");
             bar->addAction(QStringLiteral("plain")); // a place to bind, with no entry yet
             return bar;
         },
         [](QObject* c, const QString& p) { return static_cast<VCMenuBar*>(c)->SetSelection_ValuePath(0, p, "AM", "FM"); }},
        {"VCSelectionPopup::SetFirstSelection_ValuePath", {kSel}, make<VCSelectionPopup>,
         byPath(&VCSelectionPopup::SetFirstSelection_ValuePath)},
        {"VCSelectionPopup::SetSecondSelection_ValuePath", {kSel}, make<VCSelectionPopup>,
         byPath(&VCSelectionPopup::SetSecondSelection_ValuePath)},
        {"VCSelectionPopup::SetFirstSelection", {kSel}, make<VCSelectionPopup>, {},
         byPointer<VCSelectionPopup, values::ValueSelection>(
             [](VCSelectionPopup* c, values::ValueSelection* v) { return c->SetFirstSelection(v); })},
    };
    return list;
}

// A control of class C on \a host, bound as an application binds it.
template <class C, class... Extra>
C* bound(QWidget* host, bool (C::*bind)(const QString&), const QString& path, Extra... extra)
{
    auto* control = new C(host, "badinput", extra...);
    (control->*bind)(path);
    return control;
}

VCNumericFloatSpin* boundSpin(QWidget* host)
{
    return bound(host, &VCNumericFloatSpin::SetNumericFloat_ValuePath, kDouble);
}

} // namespace

class BadInputTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { previousHandler = qInstallMessageHandler(collectTraces); }
    void cleanupTestCase() { qInstallMessageHandler(previousHandler); }
    void init()
    {
        ErrorHandler::Instance().SetReportingMask(ErrorHandler::Assertions | ErrorHandler::Failures);
        fillTree();
        traces.clear();
    }
    void cleanup() { tree().Clear(); }

    // The suite runs once more under LC_ALL (scripts/test.sh --locale): Qt and the C library must both
    // have taken it, or that run proves nothing.
    void localeOfTheRun()
    {
        const QByteArray wanted = qgetenv("LC_ALL");
        if (wanted.isEmpty() || wanted == "C" || wanted == "POSIX")
            QSKIP("no locale asked for");
        qInfo("locale of the run: %s", qPrintable(QLocale().name()));
        QCOMPARE(QLocale().name(), QString::fromLatin1(wanted).section(QLatin1Char('.'), 0, 0));
        QCOMPARE(QByteArray(std::setlocale(LC_NUMERIC, nullptr)), wanted);
        QCOMPARE(QString(QLatin1Char(*std::localeconv()->decimal_point)), QString(QLocale().decimalPoint()));
    }

    void bindings_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("wrongKinds"); // every value of a kind the binding does not take
        QTest::addColumn<bool>("pointer");    // the pointer form; a null path stands for a null pointer

        const QList<QPair<const char*, QString>> paths = {
            {"null path", QString()},
            {"empty", QStringLiteral("")},
            {"relative", QStringLiteral("v/int")},
            {"dot segment", QStringLiteral("/v/./int")},
            {"trailing slash", QStringLiteral("/v/int/")},
            {"doubled slashes", QStringLiteral("//v//int")},
            {"blanks around", QStringLiteral(" /v/int ")},
            {"other case", QStringLiteral("/V/INT")},
            {"unknown key", QStringLiteral("/v/none")},
            {"below a value", QStringLiteral("/v/int/x")},
            {"100,000 characters", QStringLiteral("/v/") + QString(100000, QLatin1Char('i'))},
            {"non-ASCII", QStringLiteral("/v/\u00efnt")},
            {"look-alike letter", QStringLiteral("/v/\u0456nt")},
            {"astral plane", QStringLiteral("/v/\U0001F4E1")},
            {"embedded NUL", kBool + QChar(0)},
        };
        for (const auto& p : paths)
            QTest::newRow(p.first) << p.second << false << false;
        QTest::newRow("wrong kind") << QString() << true << false;
        QTest::newRow("null pointer") << QString() << false << true;
        QTest::newRow("wrong kind pointer") << QString() << true << true;
    }

    void bindings()
    {
        QFETCH(QString, path);
        QFETCH(bool, wrongKinds);
        QFETCH(bool, pointer);

        for (const Probe& probe : probes()) {
            if (pointer ? !probe.byPointer : !probe.byPath)
                continue;
            QStringList targets{path};
            if (wrongKinds) {
                targets = kKinds;
                for (const QString& kind : probe.accepts)
                    targets.removeAll(kind);
            }
            for (const QString& target : qAsConst(targets)) {
                const QByteArray what = QByteArray(probe.name) + " with " + target.left(24).toUtf8();
                QWidget host;
                QObject* control = probe.make(&host);
                QWidget* face = probe.face(control);
                const bool enabled = face->isEnabled();
                const QMap<QString, QString> before = snapshot();
                traces.clear();

                const bool bound = pointer ? probe.byPointer(control, target.isNull() ? nullptr : tree().Find(target))
                                           : probe.byPath(control, target);
                QVERIFY2(!bound, what);
                const QString changed = changes(before, snapshot());
                QVERIFY2(changed.isEmpty(), what + ": " + changed.toUtf8());
                QVERIFY2(traces.isEmpty(), what + ": " + traces.join(QLatin1Char('\n')).toUtf8());
                // A control that attached anyway would follow these state changes.
                for (int state : {Disabled, Enabled}) {
                    for (const QString& kind : kKinds)
                        tree().Find(kind)->SetState(state);
                }
                QVERIFY2(face->isEnabled() == enabled, what);
            }
        }
    }

    void numberSetters_data()
    {
        QTest::addColumn<QString>("setter");
        QTest::addColumn<double>("number");
        QTest::addColumn<QString>("trace");     // a part of the trace expected; empty: none at all
        QTest::addColumn<QString>("mayChange"); // a value the setter writes by design; the value clamps

        using Numbers = QList<QPair<const char*, double>>;
        const double inf = std::numeric_limits<double>::infinity();
        const Numbers doubles = {{"NaN", std::nan("")}, {"+inf", inf}, {"-inf", -inf}};
        const Numbers scales = doubles + Numbers{{"0", 0.0}};
        const Numbers ints = {{"INT_MIN", double(INT_MIN)}, {"-1", -1.0}, {"0", 0.0}, {"INT_MAX", double(INT_MAX)}};
        const auto rows = [](const char* setter, const Numbers& numbers, const QString& mayChange = QString(),
                             const QString& nanTrace = QString()) {
            for (const auto& n : numbers)
                QTest::addRow("%s %s", setter, n.first) << QString::fromLatin1(setter) << n.second
                                                        << (std::isnan(n.second) ? nanTrace : QString()) << mayChange;
        };
        rows("VCButton::SetRepeaterTime", ints);
        rows("VCButton::setCurrentItem", ints);
        rows("VCButton::SetSpecialPicture", ints);
        rows("VCCheckBox::SetSelection", ints);
        rows("VCCheckBox::SetMultiSelection_ValuePath", ints);
        rows("VCCoordEdit::SetLatitude", doubles);
        rows("VCCoordEdit::SetLongitude", doubles);
        rows("VCCoordEdit::slotSetFormat",
             {{"INT_MIN", double(INT_MIN)}, {"-1", -1.0}, {"7", 7.0}, {"INT_MAX", double(INT_MAX)}});
        rows("VCCoordEdit::SetFormat", {{"7", 7.0}});
        rows("VCLineEdit::SetNumeric", doubles, kDouble, QStringLiteral("value = NaN , parentname :badinput"));
        rows("VCLineEdit::SetNumeric unbound", doubles);
        rows("VCLineEdit::SetFormat factor", scales);
        rows("VCLineEdit::SetFormat digits", ints);
        rows("VCLineEdit::SetFactor", ints);
        rows("VCNumericFloatSpin::SetFactor", scales);
        rows("VCNumericFloatSpin::SetUnitScale", scales);
        rows("VCNumericFloatSpin::SetDisplayScalingFactor", scales);
        rows("VCNumericFloatSpin::SetDisplayAdditveOffset", doubles);
        rows("VCNumericFloatSpin::setValue", doubles);
        rows("VCNumericFloatSpin::setAdditionalPrecision", ints);
        rows("VCNumericFloatSpin::stepBy", ints, kDouble);
        rows("VCScrollButtons steps", ints, kInt);
        rows("VCScrollButtons unbound", ints);
        rows("VCSlider::setMinValue", ints);
        rows("VCSpinSelectionBox::setOrderOfMagnitudeVSValues", ints, kSel);
        rows("VCLabel::SetFactor", scales);
        rows("VCLabel::SetFormat factor", scales);
        rows("VCLabel::SetFormat digits", ints);
        rows("VCLabel::SetFormatString", doubles);
        rows("VCLabel::SetWrapInto", doubles);
        rows("VCLabel::SetHeight", ints);
        rows("VCLabel::SetAlignmentNoValue", ints);
        // The number refuses a NaN itself, with its own trace; the edit reads what it kept.
        rows("VCDateTimeEdit on a number", doubles + Numbers{{"1e300", 1e300}, {"-1e300", -1e300}}, QString(),
             QStringLiteral("NaN refused for /w/n"));
        rows("VCDateTimeEdit::ChangeToTimeSpec", {{"LocalTime", 0.0}, {"UTC", 1.0}, {"OffsetFromUTC", 2.0}, {"TimeZone", 3.0}},
             kDouble);
        rows("VCDateTimeEdit days", ints, kDouble);
        rows("VCMultipleCheck::slotStateChanged", ints);
        // A row number from code that names no row, on a selection of two items: nothing is picked.
        rows("VCComboBoxClassic::slotSet2Value", {{"INT_MIN", double(INT_MIN)}, {"-1", -1.0}, {"2", 2.0}, {"INT_MAX", double(INT_MAX)}});
        rows("VCComboBoxClassic::setCurrentItem", {{"texts", 0.0}});
        rows("VCComboBoxButtonStyle null and empty", {{"null", 0.0}});
        rows("VCButtonGroup keys", ints + Numbers{{"10", 10.0}, {"20", 20.0}});
        // An empty string names no item: the binding stands and says so (the NaN only asks for the trace).
        rows("VCOneOfButtonCombo null and empty", {{"null", std::nan("")}}, QString(),
             QStringLiteral("m_OneOfValueSelection->GetItem(m_Value)"));
        rows("VCButtonCombo null pictures", ints);
        // Entry ids and places from code that name nothing: nothing is written.
        const Numbers ids = {{"INT_MIN", double(INT_MIN)}, {"-1", -1.0}, {"5", 5.0}, {"INT_MAX", double(INT_MAX)}};
        rows("VCPopupMenu ids", ints);
        rows("VCMenuBar ids", ints);
        rows("VCSelectionPopup ids", ids);

    }

    // Each setter runs on a control bound as an application binds it; only the value named in
    // mayChange may change, and only within its limits.
    void numberSetters()
    {
        QFETCH(QString, setter);
        QFETCH(double, number);
        QFETCH(QString, trace);
        QFETCH(QString, mayChange);
        using Spin = VCNumericFloatSpin;
        using Setter = std::function<void(QWidget*, double, int)>;
        // A plain store, then what may follow it: a redraw and a finished edit.
        const auto spinStore = [](void (Spin::*set)(double)) -> Setter {
            return [set](QWidget* host, double x, int) {
                Spin* spin = boundSpin(host);
                (spin->*set)(x);
                spin->textFromValue(2.5);
                spin->SlotEditingFinished();
            };
        };
        static const QHash<QString, Setter> setters = {
            {"VCButton::SetRepeaterTime",
             [](QWidget* host, double, int n) {
                 bound(host, &VCButton::SetValueSelection_ValuePath, kSel)->SetRepeaterTime(n);
             }},
            {"VCButton::setCurrentItem",
             [](QWidget* host, double, int n) {
                 VCButton* button = bound(host, &VCButton::SetValueSelection_ValuePath, kSel);
                 button->setCurrentItem(n);
                 QCOMPARE(button->GetCurrentText(), QStringLiteral("FM"));
             }},
            {"VCButton::SetSpecialPicture",
             [](QWidget* host, double, int n) {
                 VCButton* button = bound(host, &VCButton::SetValueSelection_ValuePath, kSel);
                 button->SetDefaultPicture(static_cast<const char* const*>(nullptr));
                 button->SetButtonClickCallback(nullptr);
                 QVERIFY(button->SetSpecialPicture(n, static_cast<const char* const*>(nullptr), true));
                 button->setCurrentItem(n);
             }},
            // The keys name no item: a click must leave the selection's current item.
            {"VCCheckBox::SetSelection",
             [](QWidget* host, double, int n) {
                 auto* box = new VCCheckBox(host, "badinput");
                 QVERIFY(box->SetSelection(dynamic_cast<values::ValueSelection*>(tree().Find(kSel)), n, n));
                 box->toggle();
                 box->slotInternalChange();
             }},
            {"VCCheckBox::SetMultiSelection_ValuePath",
             [](QWidget* host, double, int n) {
                 auto* box = new VCCheckBox(host, "badinput");
                 QVERIFY(box->SetMultiSelection_ValuePath(kMulti, n));
                 box->toggle();
                 box->slotInternalChange();
             }},
            {"VCCoordEdit::SetLatitude",
             [](QWidget* host, double x, int) {
                 bound(host, &VCCoordEdit::SetLatitude_ValuePath, kDouble)->SetLatitude(x);
             }},
            {"VCCoordEdit::SetLongitude",
             [](QWidget* host, double x, int) {
                 bound(host, &VCCoordEdit::SetLongitude_ValuePath, kDouble)->SetLongitude(x);
             }},
            {"VCCoordEdit::slotSetFormat",
             [](QWidget* host, double, int n) {
                 bound(host, &VCCoordEdit::SetFormat_ValuePath, kInt)->slotSetFormat(n);
             }},
            {"VCCoordEdit::SetFormat",
             [](QWidget* host, double, int n) {
                 bound(host, &VCCoordEdit::SetFormat_ValuePath, kInt)->SetFormat(CoordFormat(n));
             }},
            // The line edit hands even a NaN to its value, after a trace; the value refuses it and
            // clamps the infinities, and the field shows what the value kept.
            {"VCLineEdit::SetNumeric",
             [](QWidget* host, double x, int) {
                 VCLineEdit* edit = bound(host, &VCLineEdit::SetText_ValuePath, kDouble);
                 edit->SetNumeric(x);
                 const double kept = std::isnan(x) ? 2.5 : qBound(-10.0, x, 10.0);
                 QCOMPARE(dynamic_cast<values::IValueNumeric*>(tree().Find(kDouble))->GetValue(), kept);
                 QCOMPARE(edit->text().toDouble(), kept);
             }},
            {"VCLineEdit::SetNumeric unbound",
             [](QWidget* host, double x, int) { (new VCLineEdit(host, "badinput"))->SetNumeric(x); }},
            {"VCLineEdit::SetFormat factor",
             [](QWidget* host, double x, int) {
                 VCLineEdit* edit = bound(host, &VCLineEdit::SetText_ValuePath, kDouble);
                 edit->SetFormat(2, 2, QStringLiteral("dB"), QStringLiteral("k"), x);
                 edit->SetNumeric(2.5);
             }},
            {"VCLineEdit::SetFormat digits",
             [](QWidget* host, double, int n) {
                 VCLineEdit* edit = bound(host, &VCLineEdit::SetText_ValuePath, kDouble);
                 edit->SetFormat(n, n, QString(), QString(), 1.0);
                 edit->SetNumeric(2.5);
             }},
            {"VCLineEdit::SetFactor",
             [](QWidget* host, double, int n) {
                 VCLineEdit* edit = bound(host, &VCLineEdit::SetText_ValuePath, kDouble, VCLineEdit::SuffixedNumber);
                 const QString shown = edit->text();
                 QVERIFY(edit->SetFactor(n));
                 if (n < 2)
                     QCOMPARE(edit->text(), shown);
             }},
            // A factor or unit scale of zero, NaN or an infinity is refused: the one in force stays, with
            // a trace, and a finished edit writes the number as it was.
            {"VCNumericFloatSpin::SetFactor",
             [](QWidget* host, double x, int) {
                 Spin* spin = boundSpin(host);
                 traces.clear();
                 spin->SetFactor(x);
                 QVERIFY(!traces.isEmpty());
                 traces.clear();
                 spin->setValue(2.5);
                 QCOMPARE(spin->value(), 2.5);
                 spin->SlotEditingFinished();
             }},
            {"VCNumericFloatSpin::SetUnitScale",
             [](QWidget* host, double x, int) {
                 Spin* spin = boundSpin(host);
                 const QString shown = spin->textFromValue(2.5);
                 traces.clear();
                 spin->SetUnitScale(x);
                 QVERIFY(!traces.isEmpty());
                 traces.clear();
                 QCOMPARE(spin->textFromValue(2.5), shown);
                 spin->SlotEditingFinished();
             }},
            {"VCNumericFloatSpin::SetDisplayScalingFactor", spinStore(&Spin::SetDisplayScalingFactor)},
            {"VCNumericFloatSpin::SetDisplayAdditveOffset", spinStore(&Spin::SetDisplayAdditveOffset)},
            {"VCNumericFloatSpin::setValue", [](QWidget* host, double x, int) { boundSpin(host)->setValue(x); }},
            {"VCNumericFloatSpin::setAdditionalPrecision",
             [](QWidget* host, double, int n) { boundSpin(host)->setAdditionalPrecision(n); }},
            {"VCNumericFloatSpin::stepBy", [](QWidget* host, double, int n) { boundSpin(host)->stepBy(n); }},
            {"VCScrollButtons steps",
             [](QWidget* host, double, int n) {
                 VCScrollButtons* buttons = makeScrollButtons(host);
                 buttons->Set_ValuePath(kInt);
                 buttons->setSingleStep(n);
                 buttons->setPageStep(n);
                 for (VCButton* button : {buttons->GetPlusButton(), buttons->GetPlusPageButton(),
                                          buttons->GetMinusButton(), buttons->GetMinusPageButton()})
                     button->click();
                 buttons->Up();
                 buttons->Down();
                 QVERIFY(buttons->value() >= 0 && buttons->value() <= 6);
             }},
            {"VCScrollButtons unbound",
             [](QWidget* host, double, int n) {
                 VCScrollButtons* buttons = makeScrollButtons(host);
                 buttons->setMinValue(n);
                 buttons->setMaxValue(~n); // the other end of the int range
                 buttons->setValue(n);
                 buttons->setSingleStep(n);
                 buttons->setPageStep(~n);
                 buttons->addLine();
                 buttons->addPage();
                 buttons->subtractLine();
                 buttons->subtractPage();
                 buttons->Up();
                 buttons->Down();
             }},
            {"VCSlider::setMinValue",
             [](QWidget* host, double, int n) {
                 VCSlider* slider = bound(host, &VCSlider::SetNumeric_ValuePath, kInt);
                 slider->setMinValue(n);
                 slider->setMaxValue(n);
                 QCOMPARE(slider->minimum(), 0);
                 QCOMPARE(slider->maximum(), 6);
             }},
            // A number of any size, or none, is read as some stamp; the edit shows a moment for it.
            // The number lives only for the row, so that what the edit writes back to it is no change.
            {"VCDateTimeEdit on a number",
             [](QWidget* host, double x, int) {
                 const double inf = std::numeric_limits<double>::infinity();
                 auto* number = new values::DoubleNumeric(0, -inf, inf, 0);
                 QVERIFY(tree().Add(QStringLiteral("/w/n"), number));
                 number->SetValue(x, nullptr);
                 auto* edit = new VCDateTimeEdit(host, "badinput");
                 for (bool differential : {true, false, true}) {
                     edit->SetDifferential(differential);
                     QVERIFY(edit->SetDateTime_ValuePath(QStringLiteral("/w/n")));
                     QVERIFY(edit->dateTime().isValid());
                     QVERIFY(std::fmod(number->GetValue(), 1e6) == 0 || !std::isfinite(number->GetValue()) ||
                             number->GetValue() == x);
                 }
                 QVERIFY(tree().Remove(QStringLiteral("/w/n")));
             }},
            {"VCDateTimeEdit::ChangeToTimeSpec",
             [](QWidget* host, double, int n) {
                 VCDateTimeEdit* edit = bound(host, &VCDateTimeEdit::SetDateTime_ValuePath, kDouble);
                 edit->ChangeToTimeSpec(Qt::TimeSpec(n));
                 QVERIFY(edit->dateTime().isValid());
             }},
            {"VCDateTimeEdit days",
             [](QWidget* host, double, int n) {
                 VCDateTimeEdit* edit = bound(host, &VCDateTimeEdit::SetDateTime_ValuePath, kDouble);
                 edit->SetDifferential(true);
                 edit->GetDaysEdit()->setValue(n);
                 edit->GetDaysEdit()->setValue(0);
                 QCOMPARE(edit->GetDaysEdit()->value(), 0);
             }},
            {"VCComboBoxClassic::slotSet2Value",
             [](QWidget* host, double, int n) {
                 VCComboBoxClassic* box = bound(host, &VCComboBoxClassic::SetValueSelection_ValuePath, kSel);
                 QVERIFY(QMetaObject::invokeMethod(box, "slotSet2Value", Q_ARG(int, n)));
                 box->SetAutoCommit(false);
                 box->setCurrentIndex(-1);
                 box->Commit();
             }},
            // Shows nothing else and writes nothing: empty, blank, long, non-ASCII and astral texts.
            {"VCComboBoxClassic::setCurrentItem",
             [](QWidget* host, double, int) {
                 VCComboBoxClassic* box = bound(host, &VCComboBoxClassic::SetValueSelection_ValuePath, kSel);
                 for (const QString& text : {QString(), QStringLiteral(" "), QString(100000, QLatin1Char('F')),
                                             QStringLiteral("F\u00c4M"), QStringLiteral("\U0001F4E1"), QStringLiteral("fm")})
                     box->setCurrentItem(text);
                 QCOMPARE(box->currentText(), QStringLiteral("FM"));
             }},
            // Null and empty arguments; then the additional entry and the value's entries' picks of
            // what is current change nothing.
            {"VCComboBoxButtonStyle null and empty",
             [](QWidget* host, double, int) {
                 auto* combo = static_cast<VCComboBoxButtonStyle*>(makeButtonCombo(host));
                 QVERIFY(combo->SetValueSelection_ValuePath(kMulti));
                 QVERIFY(combo->SetSecondSelection_ValuePath(kSel));
                 QVERIFY(!combo->SetValueSelection(nullptr));
                 combo->AddAction(nullptr);
                 combo->AddMenuEntry(QString(), nullptr, nullptr);
                 combo->AddMenuEntry(QStringLiteral("x"), host, nullptr);
                 combo->setCurrentItem(QString());
                 combo->SetOneOfButtonCombo(nullptr);
                 QColor none;
                 combo->SetColor(none);
                 combo->setEnabled(false);
                 combo->RebuildMenu();
                 for (QAction* action : combo->GetPopup()->actions())
                     if (action->data().toInt() == -32768 || action->data().toInt() == 10020)
                         action->trigger();
             }},
            // Keys that name no button of a selection keyed 10 and 20: nothing is checked, nothing written.
            {"VCButtonGroup keys",
             [](QWidget* host, double, int n) {
                 auto* group = new VCButtonGroup(host, "badinput", Qt::Vertical);
                 QVERIFY(group->SetValueSelection_ValuePath(kSel));
                 QVERIFY(group->SetCheckable_ValuePath(kBool));
                 group->setCurrentItem(n);
                 QCOMPARE(group->EnableRadioButton(true, n), n == 10 || n == 20);
                 group->setContentsMargins(n, n, n, n);
                 QCOMPARE(group->GetCurrentIndex(), 1);
             }},
            {"VCOneOfButtonCombo null and empty",
             [](QWidget* host, double, int) {
                 auto* combo = new VCOneOfButtonCombo(host, nullptr, true);
                 QVERIFY(combo->SetSelection_ValuePath(kSel, QString(), QString(), static_cast<const char* const*>(nullptr),
                                                       nullptr));
                 QVERIFY(combo->AddSelection(QString(), QString(), static_cast<const char* const*>(nullptr), nullptr));
                 combo->SetDefaultPicture(static_cast<const char* const*>(nullptr));
                 combo->AddMenuEntry(QString(), nullptr, nullptr);
                 combo->setCurrentItem(QString());
                 combo->SetToolTipText(QString());
                 combo->NewValueFromCombo(QString());
                 combo->Select(QStringLiteral("no such item"));
                 QVERIFY(combo->isValueValid(QString()));
                 combo->findChild<VCOneOfButton*>()->click(); // an empty string names no item
             }},
            {"VCButtonCombo null pictures",
             [](QWidget* host, double, int n) {
                 auto* combo = new VCButtonCombo(host, QString(), true, false);
                 QVERIFY(combo->SetValueSelection_ValuePath(kSel));
                 combo->SetDefaultPicture(nullptr);
                 QVERIFY(combo->SetSpecialPicture(n, nullptr, true));
                 combo->AddAction(nullptr);
                 combo->setCurrentItem(QString());
                 combo->setEnabled(false);
             }},
            // A switch whose off name is empty writes it, which the selection refuses; a generated entry
            // of an id that no key has checks nothing.
            {"VCPopupMenu ids",
             [](QWidget* host, double, int n) {
                 auto* menu = new VCPopupMenu(host, "badinput");
                 menu->InsertItem(QString(), n, QKeySequence(n), kSel, QStringLiteral("FM"), QString());
                 QVERIFY(menu->SetSelection_ValuePath(n, kSel, QString(), QString()));
                 QVERIFY(menu->actions().at(0)->isChecked());
                 menu->actions().at(0)->trigger();
                 auto* generated = new VCPopupMenu(host, "badinput");
                 QVERIFY(generated->SetValue1Selection_String_ValuePath(kMulti));
                 generated->insertItem(QStringLiteral("stray"), n, -1)->trigger();
             }},
            // The bar's places: an id that is no place binds nothing, and a click finds no entry.
            {"VCMenuBar ids",
             [](QWidget* host, double, int n) {
                 auto* bar = new VCMenuBar(host, "badinput");
                 QCOMPARE(bar->InsertItem(QStringLiteral("x"), n, kSel, QStringLiteral("FM"), QStringLiteral("FM")), 0);
                 QCOMPARE(bar->SetSelection_ValuePath(n, kSel, QStringLiteral("FM"), QStringLiteral("FM")), n == 0);
                 QCOMPARE(bar->InsertItem(QStringLiteral("y"), n, n, kSel, QStringLiteral("AM"), QStringLiteral("AM")), 1);
                 for (QAction* action : bar->actions())
                     action->trigger();
             }},
            {"VCSelectionPopup ids",
             [](QWidget* host, double, int n) {
                 auto* popup = new VCSelectionPopup(host, "badinput");
                 QVERIFY(popup->SetFirstSelection_ValuePath(kSel));
                 QVERIFY(popup->SetSecondSelection_ValuePath(kSel));
                 popup->AddAdditionalItem(QString(), nullptr, nullptr);
                 popup->SlotFirstSelectionItemActivated(n);
                 popup->SlotSecondSelectionItemActivated(n);
                 popup->SlotAdditionItemActivated(n);
                 popup->SlotAdditionItemActivated(4); // the command, routed nowhere
             }},
            // A typed magnitude selects the nearest item; an unknown letter must not break that.
            {"VCSpinSelectionBox::setOrderOfMagnitudeVSValues",
             [](QWidget* host, double, int n) {
                 VCSpinSelectionBox* box = bound(host, &VCSpinSelectionBox::SetValueSelection_ValuePath, kSel);
                 box->setOrderOfMagnitudeVSValues(wchar_t(n));
                 box->findChild<QLineEdit*>()->setText(QStringLiteral("2 k"));
                 box->interpretText();
             }},
            // A label writes nothing; no number may hold it in a loop or break its formatting.
            {"VCLabel::SetFactor", [](QWidget* host, double x, int) { boundLabel(host)->SetFactor(x); }},
            {"VCLabel::SetFormat factor",
             [](QWidget* host, double x, int) {
                 VCLabel* label = boundLabel(host);
                 label->SetFormat(3, 0, x);
                 label->Display();
             }},
            {"VCLabel::SetFormat digits",
             [](QWidget* host, double, int n) {
                 VCLabel* label = boundLabel(host);
                 label->SetFormat(n, n, 1.0);
                 label->Display();
             }},
            {"VCLabel::SetFormatString",
             [](QWidget* host, double x, int) {
                 VCLabel* label = boundLabel(host);
                 label->SetFormatString(x, QStringLiteral("dB"));
                 label->SetLuminescence(true);
                 label->SetDisplayNoValue(true);
                 label->SetFormatString(x, QString());
             }},
            {"VCLabel::SetWrapInto",
             [](QWidget* host, double x, int) {
                 VCLabel* label = boundLabel(host);
                 for (const QVector<double>& wrap : {QVector<double>{x, 360, 360}, {0, x, 360}, {0, 360, x}, {x, x, x}}) {
                     label->SetWrapInto(wrap[0], wrap[1], wrap[2]);
                     label->Display();
                     label->SetFormatString(1e300, QString());
                     label->SetFormatString(-1e300, QString());
                 }
             }},
            {"VCLabel::SetHeight", [](QWidget* host, double, int n) { boundLabel(host)->SetHeight(n); }},
            {"VCLabel::SetAlignmentNoValue",
             [](QWidget* host, double, int n) {
                 VCLabel* label = boundLabel(host, true);
                 label->SetAlignmentNoValue(n);
                 label->SetDisplayNoValue(false);
             }},
            // The argument is not read: every row is written as it stands, which changes nothing.
            {"VCMultipleCheck::slotStateChanged",
             [](QWidget* host, double, int n) {
                 bound(host, &VCMultipleCheck::SetCheckedStringVector_ValuePath, kMulti)->slotStateChanged(n);
             }},
        };
        QVERIFY2(setters.contains(setter), qPrintable(setter));

        QMap<QString, QString> before = snapshot();
        {
            QWidget host;
            setters.value(setter)(&host, number, int(number));
        }
        QMap<QString, QString> after = snapshot();
        if (!mayChange.isEmpty()) {
            if (auto* value = dynamic_cast<values::IValueNumeric*>(tree().Find(mayChange))) {
                for (double x : {value->GetValue(), value->GetPendingValue()})
                    QVERIFY(x >= value->GetMinimum() && x <= value->GetMaximum());
            }
            for (const QString& key : {mayChange, QStringLiteral("undo")}) {
                before.remove(key);
                after.remove(key);
            }
        }
        QCOMPARE(changes(before, after), QString());
        const QString said = traces.join(QLatin1Char('\n'));
        QVERIFY2(trace.isEmpty() ? said.isEmpty() : said.contains(trace), qPrintable(said));
    }
};

QTEST_MAIN(BadInputTest)
#include "badinputtest.moc"
