#include <vandrel/bindform.h>
#include <vandrel/bindform_p.h>

#include <vandrel/vcbutton.h>
#include <vandrel/vcbuttoncombo.h>
#include <vandrel/vcbuttongroup.h>
#include <vandrel/vccheckbox.h>
#include <vandrel/vccombobox.h>
#include <vandrel/vccoordedit.h>
#include <vandrel/vcdatetimeedit.h>
#include <vandrel/vclabel.h>
#include <vandrel/vcled.h>
#include <vandrel/vcline.h>
#include <vandrel/vclineedit.h>
#include <vandrel/vcmeasurementwidget.h>
#include <vandrel/vcmultiplecheck.h>
#include <vandrel/vcnumericfloatspin.h>
#include <vandrel/vconeofbutton.h>
#include <vandrel/vconeofbuttoncombo.h>
#include <vandrel/vcscrollbar.h>
#include <vandrel/vcslider.h>
#include <vandrel/vcspinselectionbox.h>
#include <vandrel/vctextedit.h>
#include <vandrel/vcundo.h>

#include <values/tree.h>

#include <QMetaObject>
#include <QPixmap>
#include <QPointer>
#include <QSet>
#include <QVariant>
#include <QWidget>

#include <functional>
#include <utility>
#include <vector>

namespace vandrel {

namespace {

// A call reads what it needs besides the path from the widget; `missing` names an argument property
// that is not set.
using BindCall = std::function<bool(QWidget* widget, const QString& path, QString* missing)>;

struct Binding
{
    const char* property;
    BindCall bind;
};

struct ControlBindings
{
    const QMetaObject* meta;
    std::vector<Binding> bindings; // in the order of the control's calls
    std::vector<const char*> arguments = {}; // properties a call reads besides the path
};

// Wraps a call that takes the control and the path only.
template <class Control, class Call>
Binding pathBinding(const char* property, Call call)
{
    return {property, [call](QWidget* widget, const QString& path, QString*) {
                return call(qobject_cast<Control*>(widget), path);
            }};
}

// The in and out strings of a one-of button: the in string must be set, the out string may be empty.
bool oneOfStrings(QWidget* widget, QString* value, QString* outValue, QString* missing)
{
    const QVariant in = widget->property("oneOfValue");
    if (in.toString().isEmpty()) {
        *missing = QStringLiteral("oneOfValue");
        return false;
    }
    *value = in.toString();
    *outValue = widget->property("oneOfOutValue").toString();
    return true;
}

const std::vector<ControlBindings>& registry()
{
    // Most derived classes needn't come first: the lookup walks the widget's own class chain.
    static const std::vector<ControlBindings> table = {
        {&VCButton::staticMetaObject,
         {pathBinding<VCButton>("valuePath", [](VCButton* c, const QString& p) { return c->SetValueSelection_ValuePath(p); }),
          pathBinding<VCButton>("statePath", [](VCButton* c, const QString& p) { return c->SetState_ValuePath(p); })}},
        {&VCButtonCombo::staticMetaObject,
         {pathBinding<VCButtonCombo>("valuePath", [](VCButtonCombo* c, const QString& p) { return c->SetValueSelection_ValuePath(p); })}},
        {&VCButtonGroup::staticMetaObject,
         {pathBinding<VCButtonGroup>("valuePath", [](VCButtonGroup* c, const QString& p) { return c->SetValueSelection_ValuePath(p); }),
          pathBinding<VCButtonGroup>("checkablePath", [](VCButtonGroup* c, const QString& p) { return c->SetCheckable_ValuePath(p); })}},
        {&VCCheckBox::staticMetaObject,
         {pathBinding<VCCheckBox>("valuePath", [](VCCheckBox* c, const QString& p) { return c->Set_ValuePath(p); }),
          {"multiSelectionPath", [](QWidget* w, const QString& p, QString* missing) {
               const QVariant key = w->property("multiSelectionKey");
               bool ok = false;
               const int k = key.toInt(&ok);
               if (!key.isValid() || !ok) {
                   *missing = QStringLiteral("multiSelectionKey");
                   return false;
               }
               return qobject_cast<VCCheckBox*>(w)->SetMultiSelection_ValuePath(p, k);
           }}},
         {"multiSelectionKey"}},
        {&VCComboBoxClassic::staticMetaObject,
         {pathBinding<VCComboBoxClassic>("valuePath", [](VCComboBoxClassic* c, const QString& p) { return c->SetValueSelection_ValuePath(p); })}},
        {&VCComboBoxButtonStyle::staticMetaObject,
         {pathBinding<VCComboBoxButtonStyle>("valuePath", [](VCComboBoxButtonStyle* c, const QString& p) { return c->SetValueSelection_ValuePath(p); }),
          pathBinding<VCComboBoxButtonStyle>("secondSelectionPath", [](VCComboBoxButtonStyle* c, const QString& p) { return c->SetSecondSelection_ValuePath(p); })}},
        {&VCCoordEdit::staticMetaObject,
         {pathBinding<VCCoordEdit>("valuePath", [](VCCoordEdit* c, const QString& p) { return c->SetLatitude_ValuePath(p); }),
          pathBinding<VCCoordEdit>("longitudePath", [](VCCoordEdit* c, const QString& p) { return c->SetLongitude_ValuePath(p); }),
          pathBinding<VCCoordEdit>("formatPath", [](VCCoordEdit* c, const QString& p) { return c->SetFormat_ValuePath(p); })}},
        {&VCDateTimeEdit::staticMetaObject,
         {pathBinding<VCDateTimeEdit>("valuePath", [](VCDateTimeEdit* c, const QString& p) { return c->SetDateTime_ValuePath(p); })}},
        {&VCLabel::staticMetaObject,
         {pathBinding<VCLabel>("valuePath", [](VCLabel* c, const QString& p) { return c->SetText_ValuePath(p, true); }),
          pathBinding<VCLabel>("numericOffsetPath", [](VCLabel* c, const QString& p) { return c->SetNumericOffset_ValuePath(p, true); }),
          pathBinding<VCLabel>("noValuePath", [](VCLabel* c, const QString& p) { return c->SetNoValue_ValuePath(p); }),
          pathBinding<VCLabel>("updateNowPath", [](VCLabel* c, const QString& p) { return c->SetUpdateNow_ValuePath(p); })}},
        {&VCLED::staticMetaObject,
         {pathBinding<VCLED>("valuePath", [](VCLED* c, const QString& p) { return c->SetBool_ValuePath(p); }),
          pathBinding<VCLED>("colorIndexPath", [](VCLED* c, const QString& p) { return c->SetColorIndex_ValuePath(p); }),
          pathBinding<VCLED>("textPath", [](VCLED* c, const QString& p) { return c->SetText_ValuePath(p); })}},
        {&VCLine::staticMetaObject, {}},
        {&VCLineEdit::staticMetaObject,
         {pathBinding<VCLineEdit>("valuePath", [](VCLineEdit* c, const QString& p) { return c->SetText_ValuePath(p); })}},
        {&VCMeasurementWidget::staticMetaObject,
         {pathBinding<VCMeasurementWidget>("valuePath", [](VCMeasurementWidget* c, const QString& p) { return c->SetValueTreePath(p); })}},
        {&VCMultipleCheck::staticMetaObject,
         {pathBinding<VCMultipleCheck>("valuePath", [](VCMultipleCheck* c, const QString& p) { return c->SetCheckedStringVector_ValuePath(p); })}},
        {&VCNumericFloatSpin::staticMetaObject,
         {pathBinding<VCNumericFloatSpin>("valuePath", [](VCNumericFloatSpin* c, const QString& p) { return c->SetNumeric_ValuePath(p); }),
          pathBinding<VCNumericFloatSpin>("numericFloatPath", [](VCNumericFloatSpin* c, const QString& p) { return c->SetNumericFloat_ValuePath(p); }),
          pathBinding<VCNumericFloatSpin>("numericIntPath", [](VCNumericFloatSpin* c, const QString& p) { return c->SetNumericInt_ValuePath(p); })}},
        {&VCOneOfButton::staticMetaObject,
         {{"valuePath", [](QWidget* w, const QString& p, QString* missing) {
               QString value, outValue;
               return oneOfStrings(w, &value, &outValue, missing)
                   && qobject_cast<VCOneOfButton*>(w)->SetSelection_ValuePath(p, value, outValue);
           }},
          pathBinding<VCOneOfButton>("statePath", [](VCOneOfButton* c, const QString& p) { return c->SetState_ValuePath(p); })},
         {"oneOfValue", "oneOfOutValue"}},
        {&VCOneOfButtonCombo::staticMetaObject,
         {{"valuePath", [](QWidget* w, const QString& p, QString* missing) {
               QString value, outValue;
               return oneOfStrings(w, &value, &outValue, missing)
                   && qobject_cast<VCOneOfButtonCombo*>(w)->SetSelection_ValuePath(p, value, outValue, QPixmap(), QPixmap());
           }},
          pathBinding<VCOneOfButtonCombo>("secondSelectionPath", [](VCOneOfButtonCombo* c, const QString& p) { return c->SetSecondSelection_ValuePath(p); })},
         {"oneOfValue", "oneOfOutValue"}},
        {&VCScrollBar::staticMetaObject,
         {pathBinding<VCScrollBar>("valuePath", [](VCScrollBar* c, const QString& p) { return c->Set_ValuePath(p); })}},
        {&VCSlider::staticMetaObject,
         {pathBinding<VCSlider>("valuePath", [](VCSlider* c, const QString& p) { return c->SetNumeric_ValuePath(p); })}},
        {&VCSpinSelectionBox::staticMetaObject,
         {pathBinding<VCSpinSelectionBox>("valuePath", [](VCSpinSelectionBox* c, const QString& p) { return c->SetValueSelection_ValuePath(p); })}},
        {&VCTextEdit::staticMetaObject,
         {pathBinding<VCTextEdit>("valuePath", [](VCTextEdit* c, const QString& p) { return c->SetText_ValuePath(p); })}},
        // The undo button reads the recordings below a base path; any path is one, so it always binds.
        {&VCUndo::staticMetaObject,
         {pathBinding<VCUndo>("undoRecordingsBasePath", [](VCUndo* c, const QString& p) {
             c->SetUndoRecordings_BasePath(p);
             return true;
         })}},
    };
    return table;
}

// The entry of the widget's own class or of the nearest base that has one; null for no Vandrel control.
const ControlBindings* bindingsOf(const QWidget* widget)
{
    for (const QMetaObject* meta = widget->metaObject(); meta; meta = meta->superClass()) {
        for (const ControlBindings& entry : registry()) {
            if (entry.meta == meta)
                return &entry;
        }
    }
    return nullptr;
}

// Every property name that binds something on some control: on any other widget it is a mistake.
const QSet<QByteArray>& knownProperties()
{
    static const QSet<QByteArray> names = [] {
        QSet<QByteArray> all;
        for (const ControlBindings& entry : registry()) {
            for (const Binding& b : entry.bindings)
                all.insert(QByteArray(b.property));
        }
        return all;
    }();
    return names;
}

QString setPath(const QWidget* widget, const QByteArray& property)
{
    return widget->property(property.constData()).toString();
}

void bindWidget(QWidget* widget, BindFormResult& result)
{
    const QString name = widget->objectName();
    auto entryText = [&name](const QByteArray& property, const QString& path) {
        return name + QLatin1Char('.') + QString::fromLatin1(property) + QStringLiteral(": ") + path;
    };

    const ControlBindings* control = bindingsOf(widget);
    const QList<QByteArray> dynamic = widget->dynamicPropertyNames();
    if (!control) {
        for (const QByteArray& property : dynamic) {
            const QString path = setPath(widget, property);
            if (knownProperties().contains(property) && !path.isEmpty())
                result.failed << entryText(property, path) + QStringLiteral(": not a Vandrel control");
        }
        return;
    }

    // Properties that look like bindings but that this control doesn't have.
    QSet<QByteArray> own;
    for (const Binding& b : control->bindings)
        own.insert(QByteArray(b.property));
    for (const QByteArray& property : dynamic) {
        if ((property.endsWith("Path") || knownProperties().contains(property)) && !own.contains(property)) {
            const QString path = setPath(widget, property);
            if (!path.isEmpty())
                result.failed << entryText(property, path) + QStringLiteral(": no such binding on ")
                        + QString::fromLatin1(control->meta->className());
        }
    }

    QPointer<QWidget> guard(widget);
    for (const Binding& b : control->bindings) {
        if (!guard)
            return; // an observer of a first binding took the control away
        const QString path = widget->property(b.property).toString();
        if (path.isEmpty())
            continue;
        QString missing;
        const bool ok = b.bind(widget, path, &missing);
        if (ok)
            result.bound << entryText(b.property, path);
        else if (!missing.isEmpty())
            result.failed << entryText(b.property, path) + QStringLiteral(": ") + missing + QStringLiteral(" missing");
        else if (!values::Tree::Instance()->Find(path))
            result.failed << entryText(b.property, path) + QStringLiteral(": not found");
        else
            result.failed << entryText(b.property, path) + QStringLiteral(": wrong kind of value");
    }
}

} // namespace

QList<QByteArray> BindingProperties(const QMetaObject* meta)
{
    QList<QByteArray> names;
    for (const ControlBindings& entry : registry()) {
        if (entry.meta != meta)
            continue;
        for (const Binding& b : entry.bindings)
            names << QByteArray(b.property);
        for (const char* argument : entry.arguments)
            names << QByteArray(argument);
    }
    return names;
}

BindFormResult BindForm(QWidget* root)
{
    BindFormResult result;
    if (!root)
        return result;
    // Taken before binding: a control may make child widgets as it binds (a radio button per item), and
    // those carry no properties of their own.
    QList<QPointer<QWidget>> widgets;
    widgets << root;
    const QList<QWidget*> below = root->findChildren<QWidget*>();
    for (QWidget* w : below)
        widgets << w;
    for (const QPointer<QWidget>& w : std::as_const(widgets)) {
        if (w)
            bindWidget(w, result);
    }
    return result;
}

} // namespace vandrel
