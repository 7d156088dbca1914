#include "vandrelwidgets.h"

#include <vandrel/bindform_p.h>
#include <vandrel/vandrel.h>

#include <QFont>
#include <QIcon>
#include <QPainter>
#include <QPixmap>

#include <utility>

namespace {

// Designer shows the controls as an application has them before it binds: disabled and empty. The
// descriptions say which property binds them.
QList<ControlDescription> descriptions()
{
    const QString bindHint = QStringLiteral(" Bound by setting the dynamic property valuePath to a value's path "
                                            "and calling vandrel::BindForm() on the loaded form.");
    return {
        {QStringLiteral("VCButton"), QStringLiteral("A tool button that cycles the items of a selection"),
         QStringLiteral("Shows the current item of a selection by text or picture; each click moves to the next item.") + bindHint,
         QSize(24, 24), QStringLiteral("Bt"), [](QWidget* p) -> QWidget* { return new VCButton(p); }},
        {QStringLiteral("VCButtonCombo"), QStringLiteral("A button that cycles a selection beside a narrow combo that drops down its items"),
         QStringLiteral("Button and combo on one selection in a fixed 40 by 24 frame.") + bindHint,
         QSize(40, 24), QStringLiteral("BC"), [](QWidget* p) -> QWidget* { return new VCButtonCombo(p); }},
        {QStringLiteral("VCButtonGroup"), QStringLiteral("A group box with one radio button per item of a selection"),
         QStringLiteral("The radio buttons follow the selection's items; checkablePath binds the group's check box to a boolean.") + bindHint,
         QSize(200, 80), QStringLiteral("Rg"), [](QWidget* p) -> QWidget* { return new VCButtonGroup(p); }},
        {QStringLiteral("VCCheckBox"), QStringLiteral("A check box on a boolean, a two-item selection or one item of a multi-selection"),
         QStringLiteral("Checked while the boolean is true or the selection stands at its checked key; a click writes the other state with undo.") + bindHint,
         QSize(120, 22), QStringLiteral("Cb"), [](QWidget* p) -> QWidget* { return new VCCheckBox(p); }},
        {QStringLiteral("VCComboBoxClassic"), QStringLiteral("A combo box on a selection or a multi-selection"),
         QStringLiteral("Lists the items of a selection; a pick writes the item with undo.") + bindHint,
         QSize(140, 24), QStringLiteral("Co"), [](QWidget* p) -> QWidget* { return new VCComboBoxClassic(p, nullptr); }},
        {QStringLiteral("VCComboBoxButtonStyle"), QStringLiteral("A button that drops down the items of one or two selections"),
         QStringLiteral("Shows the current item and drops down a menu of the items, with check marks.") + bindHint
             + QStringLiteral(" A second selection binds through secondSelectionPath."),
         QSize(120, 24), QStringLiteral("Cm"), [](QWidget* p) -> QWidget* { return new VCComboBoxButtonStyle(p, nullptr, false, false); }},
        {QStringLiteral("VCCoordEdit"), QStringLiteral("An editor of a latitude and longitude"),
         QStringLiteral("Edits a position in the format of a selection; valuePath binds the latitude, longitudePath the longitude, formatPath the format.") + bindHint,
         QSize(220, 24), QStringLiteral("Ge"), [](QWidget* p) -> QWidget* { return new VCCoordEdit(p); }},
        {QStringLiteral("VCDateTimeEdit"), QStringLiteral("A date and time editor on a time value"),
         QStringLiteral("Shows and edits a point in time or a duration held by a value.") + bindHint,
         QSize(160, 24), QStringLiteral("Dt"), [](QWidget* p) -> QWidget* { return new VCDateTimeEdit(p, nullptr); }},
        {QStringLiteral("VCLabel"), QStringLiteral("A label showing a value's text or number"),
         QStringLiteral("Shows a number with its unit or any value's text; noValuePath switches to the no-value look.") + bindHint,
         QSize(100, 22), QStringLiteral("La"), [](QWidget* p) -> QWidget* { return new VCLabel(p, nullptr, 0); }},
        {QStringLiteral("VCLED"), QStringLiteral("A lamp on a boolean or a colour index"),
         QStringLiteral("Lit while the boolean is true, or in the colour the index names.") + bindHint,
         QSize(20, 20), QStringLiteral("Ld"), [](QWidget* p) -> QWidget* { return new VCLED(p, nullptr, false); }},
        {QStringLiteral("VCLine"), QStringLiteral("An etched line that groups controls"),
         QStringLiteral("A passive decoration bound to no value."),
         QSize(120, 3), QStringLiteral("Ln"), [](QWidget* p) -> QWidget* { return new VCLine(p, nullptr); }},
        {QStringLiteral("VCLineEdit"), QStringLiteral("A line edit on a text or a number"),
         QStringLiteral("Shows a value's text and writes what the user commits, with a range check for numbers.") + bindHint,
         QSize(120, 24), QStringLiteral("Le"), [](QWidget* p) -> QWidget* { return new VCLineEdit(p); }},
        {QStringLiteral("VCMeasurementWidget"), QStringLiteral("The name, value and unit of one measurement result"),
         QStringLiteral("Shows a result branch of the value tree (NAME, VALUE, INVALID, UNIT); valuePath is the branch.") + bindHint,
         QSize(200, 24), QStringLiteral("Me"), [](QWidget* p) -> QWidget* { return new VCMeasurementWidget(p, VCMeasurementWidget::Level); }},
        {QStringLiteral("VCMultipleCheck"), QStringLiteral("A list of check boxes on a multi-selection"),
         QStringLiteral("One checkable row per item of a multi-selection of strings; a click writes that item's mark.") + bindHint,
         QSize(200, 120), QStringLiteral("Mc"), [](QWidget* p) -> QWidget* { return new VCMultipleCheck(p); }},
        {QStringLiteral("VCNumericFloatSpin"), QStringLiteral("A spin box on a number"),
         QStringLiteral("Shows and steps a number within its range and unit.") + bindHint,
         QSize(120, 24), QStringLiteral("Sp"), [](QWidget* p) -> QWidget* { return new VCNumericFloatSpin(p); }},
        {QStringLiteral("VCOneOfButton"), QStringLiteral("A button that stands for one item of a selection"),
         QStringLiteral("In while the selection's value is the string in oneOfValue; a click writes it, or oneOfOutValue when it is in already.") + bindHint,
         QSize(24, 24), QStringLiteral("1o"),
         [](QWidget* p) -> QWidget* { return new VCOneOfButton(QString(), p, static_cast<const char* const*>(nullptr), nullptr); }},
        {QStringLiteral("VCOneOfButtonCombo"), QStringLiteral("A one-of button beside a combo that chooses its pair of strings"),
         QStringLiteral("The button toggles the selection between the pair in oneOfValue and oneOfOutValue; the combo picks another item.") + bindHint,
         QSize(40, 24), QStringLiteral("1C"), [](QWidget* p) -> QWidget* { return new VCOneOfButtonCombo(p); }},
        {QStringLiteral("VCScrollBar"), QStringLiteral("A scroll bar on a number"),
         QStringLiteral("Moves a number through its range.") + bindHint,
         QSize(160, 18), QStringLiteral("Sb"), [](QWidget* p) -> QWidget* { return new VCScrollBar(p); }},
        {QStringLiteral("VCSlider"), QStringLiteral("A slider on a number"),
         QStringLiteral("Moves a number through its range.") + bindHint,
         QSize(160, 22), QStringLiteral("Sl"), [](QWidget* p) -> QWidget* { return new VCSlider(p); }},
        {QStringLiteral("VCSpinSelectionBox"), QStringLiteral("A spin box that steps through a selection's items"),
         QStringLiteral("Shows the current item of a selection and steps to the next or the one before.") + bindHint,
         QSize(120, 24), QStringLiteral("Ss"), [](QWidget* p) -> QWidget* { return new VCSpinSelectionBox(p); }},
        {QStringLiteral("VCTextEdit"), QStringLiteral("A text edit on a text value"),
         QStringLiteral("Shows a text value and writes it when the user leaves the field.") + bindHint,
         QSize(200, 80), QStringLiteral("Te"), [](QWidget* p) -> QWidget* { return new VCTextEdit(p); }},
        {QStringLiteral("VCUndo"), QStringLiteral("An undo button with the list of recorded edits"),
         QStringLiteral("Takes back the newest recorded edit, or drops down the list of them. Bound by the dynamic "
                        "property undoRecordingsBasePath (\"/\" for every recording) and vandrel::BindForm()."),
         QSize(24, 24), QStringLiteral("Un"), [](QWidget* p) -> QWidget* { return new VCUndo(p); }},
    };
}

QIcon glyphIcon(const QString& glyph)
{
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QColor(0x2e, 0x5e, 0x7e));
    painter.setBrush(QColor(0xdd, 0xee, 0xf6));
    painter.drawRoundedRect(QRectF(0.5, 0.5, 21, 21), 4, 4);
    QFont font = painter.font();
    font.setPixelSize(10);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(pixmap.rect(), Qt::AlignCenter, glyph);
    return QIcon(pixmap);
}

} // namespace

VandrelWidget::VandrelWidget(ControlDescription description, QObject* parent)
    : QObject(parent)
    , m_description(std::move(description))
{
}

QString VandrelWidget::name() const { return m_description.className; }
QString VandrelWidget::group() const { return QStringLiteral("Vandrel"); }
QString VandrelWidget::toolTip() const { return m_description.toolTip; }
QString VandrelWidget::whatsThis() const { return m_description.whatsThis; }
QString VandrelWidget::includeFile() const
{
    // One header per control, named after the class; the two combo boxes share one.
    const QString unit = m_description.className.startsWith(QLatin1String("VCComboBox")) ? QStringLiteral("vccombobox")
                                                                                         : m_description.className.toLower();
    return QStringLiteral("vandrel/") + unit + QStringLiteral(".h");
}
QIcon VandrelWidget::icon() const { return glyphIcon(m_description.glyph); }
bool VandrelWidget::isContainer() const { return false; }
bool VandrelWidget::isInitialized() const { return m_bInitialized; }
void VandrelWidget::initialize(QDesignerFormEditorInterface*) { m_bInitialized = true; }

QWidget* VandrelWidget::createWidget(QWidget* parent)
{
    return m_description.create(parent);
}

QString VandrelWidget::domXml() const
{
    // The binding properties go in as empty dynamic string properties, so that the property editor shows
    // them on every new control; an empty one binds nothing. A path is no text to translate: marked so,
    // lupdate leaves it out of the catalogs and QUiLoader hands it over as it stands.
    QString xml = QStringLiteral("<ui language=\"c++\">\n <widget class=\"%1\" name=\"%2\">\n"
                                 "  <property name=\"geometry\"><rect><x>0</x><y>0</y><width>%3</width><height>%4</height></rect></property>\n")
                      .arg(m_description.className,
                           m_description.className.left(2).toLower() + m_description.className.mid(2))
                      .arg(m_description.size.width())
                      .arg(m_description.size.height());
    const QMetaObject* meta = nullptr;
    QWidget* probe = m_description.create(nullptr);
    meta = probe->metaObject();
    const QList<QByteArray> properties = vandrel::BindingProperties(meta);
    delete probe;
    for (const QByteArray& property : properties) {
        const bool number = property.endsWith("Key");
        xml += QStringLiteral("  <property name=\"%1\" stdset=\"0\">%2</property>\n")
                   .arg(QString::fromLatin1(property),
                        number ? QStringLiteral("<number>0</number>") : QStringLiteral("<string notr=\"true\"></string>"));
    }
    xml += QStringLiteral(" </widget>\n</ui>\n");
    return xml;
}

VandrelWidgets::VandrelWidgets(QObject* parent)
    : QObject(parent)
{
    for (const ControlDescription& d : descriptions())
        m_widgets << new VandrelWidget(d, this);
}

QList<QDesignerCustomWidgetInterface*> VandrelWidgets::customWidgets() const
{
    return m_widgets;
}
