#include <vandrel/bindform.h>
#include <vandrel/vclabel.h>
#include <vandrel/vcslider.h>

#include <values/values.h>

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QPluginLoader>
#include <QUiLoader>
#include <QXmlStreamReader>
#include <QtTest>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace {

// Every widget of the library. The scroll buttons (a helper object on another widget) and the menus
// are no widgets one places on a form.
const QStringList kControls = {
    QStringLiteral("VCButton"), QStringLiteral("VCCheckBox"), QStringLiteral("VCComboBoxClassic"),
    QStringLiteral("VCComboBoxButtonStyle"), QStringLiteral("VCCoordEdit"), QStringLiteral("VCDateTimeEdit"),
    QStringLiteral("VCLabel"), QStringLiteral("VCLED"), QStringLiteral("VCLine"), QStringLiteral("VCLineEdit"),
    QStringLiteral("VCMeasurementWidget"), QStringLiteral("VCMultipleCheck"), QStringLiteral("VCNumericFloatSpin"),
    QStringLiteral("VCScrollBar"), QStringLiteral("VCSlider"), QStringLiteral("VCSpinSelectionBox"),
    QStringLiteral("VCTextEdit"), QStringLiteral("VCUndo"), QStringLiteral("VCButtonGroup"), QStringLiteral("VCOneOfButton"),
    QStringLiteral("VCOneOfButtonCombo"), QStringLiteral("VCButtonCombo"),
};

struct DomWidget
{
    QString className;
    QMap<QString, bool> dynamicProperties; // name -> stdset="0"
};

DomWidget readDom(const QString& xml)
{
    DomWidget dom;
    QXmlStreamReader reader(xml);
    int depth = 0;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            ++depth;
            if (reader.name() == QLatin1String("widget") && dom.className.isEmpty())
                dom.className = reader.attributes().value(QLatin1String("class")).toString();
            else if (reader.name() == QLatin1String("property") && depth == 3)
                dom.dynamicProperties.insert(reader.attributes().value(QLatin1String("name")).toString(),
                                             reader.attributes().value(QLatin1String("stdset")) == QLatin1String("0"));
        } else if (reader.isEndElement()) {
            --depth;
        }
    }
    return reader.hasError() ? DomWidget() : dom;
}

} // namespace

class DesignerPluginTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { values::Tree::Instance()->Clear(); }

    // What Designer sees: the group, the names, the includes, the properties, and a widget of the class.
    void everyControlThroughThePlugin()
    {
        QPluginLoader loader(QStringLiteral(VANDREL_DESIGNER_PLUGIN));
        QVERIFY2(loader.load(), qPrintable(loader.errorString()));
        auto* collection = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(loader.instance());
        QVERIFY(collection);

        QStringList names;
        QWidget parent;
        for (QDesignerCustomWidgetInterface* w : collection->customWidgets()) {
            const QString name = w->name();
            names << name;
            QCOMPARE(w->group(), QStringLiteral("Vandrel"));
            QVERIFY2(!w->toolTip().isEmpty() && !w->whatsThis().isEmpty(), qPrintable(name));
            QVERIFY2(!w->icon().isNull(), qPrintable(name));
            QVERIFY(!w->isContainer());
            // The include is the installed header of the class.
            QVERIFY2(QFileInfo::exists(QStringLiteral(VANDREL_SOURCE_DIR "/controls/") + w->includeFile()),
                     qPrintable(w->includeFile()));

            QWidget* made = w->createWidget(&parent);
            QVERIFY(made);
            QCOMPARE(QString::fromLatin1(made->metaObject()->className()), name);
            QCOMPARE(made->parentWidget(), &parent);

            const DomWidget dom = readDom(w->domXml());
            QCOMPARE(dom.className, name);
            QVERIFY2(dom.dynamicProperties.contains(QStringLiteral("geometry")), qPrintable(name));
            QVERIFY(!dom.dynamicProperties.value(QStringLiteral("geometry")));
            // Bindings are dynamic properties only: the control keeps exactly its own properties.
            for (auto it = dom.dynamicProperties.cbegin(); it != dom.dynamicProperties.cend(); ++it) {
                if (it.key() == QLatin1String("geometry"))
                    continue;
                QVERIFY2(it.value(), qPrintable(name + QLatin1Char('.') + it.key()));
                QVERIFY2(made->metaObject()->indexOfProperty(it.key().toLatin1().constData()) < 0,
                         qPrintable(name + QLatin1Char('.') + it.key()));
            }
            const bool bindsAValue = name != QLatin1String("VCLine") && name != QLatin1String("VCUndo");
            QCOMPARE(dom.dynamicProperties.contains(QStringLiteral("valuePath")), bindsAValue);
        }
        QStringList expected = kControls;
        expected.sort();
        names.sort();
        QCOMPARE(names, expected);
    }

    // A form as Designer saves it, loaded by QUiLoader through the plugin and bound by BindForm alone.
    void formFromQUiLoader()
    {
        auto* gain = new values::DoubleNumeric(3.0, 0.0, 10.0);
        QVERIFY(values::Tree::Instance()->Add(QStringLiteral("/rx/gain"), gain));

        const QByteArray ui = R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0">
 <class>Panel</class>
 <widget class="QWidget" name="Panel">
  <layout class="QVBoxLayout" name="layout">
   <item>
    <widget class="VCSlider" name="gainSlider">
     <property name="orientation"><enum>Qt::Horizontal</enum></property>
     <property name="valuePath" stdset="0"><string>/rx/gain</string></property>
    </widget>
   </item>
   <item>
    <widget class="VCLabel" name="gainLabel">
     <property name="valuePath" stdset="0"><string>/rx/gain</string></property>
    </widget>
   </item>
   <item>
    <widget class="VCLED" name="lamp">
     <property name="valuePath" stdset="0"><string>/rx/missing</string></property>
    </widget>
   </item>
  </layout>
 </widget>
</ui>
)";
        QUiLoader loader;
        loader.addPluginPath(QFileInfo(QStringLiteral(VANDREL_DESIGNER_PLUGIN)).absolutePath());
        QVERIFY(loader.availableWidgets().contains(QStringLiteral("VCSlider")));
        QBuffer buffer;
        buffer.setData(ui);
        QScopedPointer<QWidget> form(loader.load(&buffer));
        QVERIFY2(form, qPrintable(loader.errorString()));

        auto* slider = form->findChild<VCSlider*>(QStringLiteral("gainSlider"));
        auto* label = form->findChild<VCLabel*>(QStringLiteral("gainLabel"));
        QVERIFY(slider && label);
        QVERIFY(!slider->isEnabled()); // nothing binds before BindForm

        const vandrel::BindFormResult result = vandrel::BindForm(form.data());
        QCOMPARE(result.bound, (QStringList{QStringLiteral("gainSlider.valuePath: /rx/gain"),
                                            QStringLiteral("gainLabel.valuePath: /rx/gain")}));
        QCOMPARE(result.failed, QStringList{QStringLiteral("lamp.valuePath: /rx/missing: not found")});
        QCOMPARE(slider->value(), 3);
        gain->SetValue(6.0, nullptr);
        QCOMPARE(slider->value(), 6);
        QVERIFY(label->text().startsWith(QLatin1Char('6')));
    }
};

QTEST_MAIN(DesignerPluginTest)
#include "designerplugintest.moc"
