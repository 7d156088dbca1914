#include <vandrel/bindform.h>
#include <vandrel/vccheckbox.h>
#include <vandrel/vccombobox.h>
#include <vandrel/vclabel.h>
#include <vandrel/vcbuttongroup.h>
#include <vandrel/vconeofbutton.h>
#include <vandrel/vcslider.h>

#include <values/values.h>

#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>
#include <QtTest>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

template <class W>
W* named(QWidget* parent, const char* name)
{
    auto* w = new W(parent, name);
    parent->layout()->addWidget(w);
    return w;
}

} // namespace

class BindFormTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { tree().Clear(); }

    // One form with every kind of outcome; the lists say exactly what bound and why the rest did not.
    void bindsAndReports()
    {
        auto* gain = new values::DoubleNumeric(4.0, 0.0, 10.0);
        QVERIFY(tree().Add(QStringLiteral("/rx/gain"), gain));
        QVERIFY(tree().Add(QStringLiteral("/rx/name"), new values::StringValue(QStringLiteral("north"))));
        QVERIFY(tree().Add(QStringLiteral("/rx/valid"), new values::BoolValue(true)));
        auto* mode = new values::ValueSelection;
        mode->AddItem(QStringLiteral("AM"), 0, 0, nullptr);
        mode->AddItem(QStringLiteral("FM"), 1, 1, nullptr);
        mode->SelectKey(1, nullptr);
        QVERIFY(tree().Add(QStringLiteral("/rx/mode"), mode));

        QWidget root;
        root.setObjectName(QStringLiteral("form"));
        new QVBoxLayout(&root);
        auto* slider = named<VCSlider>(&root, "gainSlider");
        slider->setProperty("valuePath", QStringLiteral("/rx/gain"));
        auto* label = new VCLabel(&root, "gainLabel", 0);
        label->setProperty("valuePath", QStringLiteral("/rx/gain"));
        label->setProperty("noValuePath", QStringLiteral("/rx/valid"));
        auto* combo = new VCComboBoxButtonStyle(&root, "modeCombo", false, false);
        combo->setProperty("valuePath", QStringLiteral("/rx/mode"));
        combo->setProperty("secondSelectionPath", QStringLiteral("/rx/nowhere"));
        auto* wrongKind = named<VCSlider>(&root, "nameSlider");
        wrongKind->setProperty("valuePath", QStringLiteral("/rx/name"));
        wrongKind->setProperty("noValuePath", QStringLiteral("/rx/valid"));
        auto* box = named<VCCheckBox>(&root, "markBox");
        box->setProperty("multiSelectionPath", QStringLiteral("/rx/marks"));
        auto* plain = new QLabel(&root);
        plain->setObjectName(QStringLiteral("plainLabel"));
        plain->setProperty("valuePath", QStringLiteral("/rx/gain"));
        auto* untouched = named<VCSlider>(&root, "spare");
        untouched->setProperty("valuePath", QString()); // an empty property counts as not set

        const vandrel::BindFormResult result = vandrel::BindForm(&root);

        QCOMPARE(result.bound, (QStringList{QStringLiteral("gainSlider.valuePath: /rx/gain"),
                                            QStringLiteral("gainLabel.valuePath: /rx/gain"),
                                            QStringLiteral("gainLabel.noValuePath: /rx/valid"),
                                            QStringLiteral("modeCombo.valuePath: /rx/mode")}));
        QStringList failed = result.failed;
        failed.sort();
        QCOMPARE(failed, (QStringList{QStringLiteral("markBox.multiSelectionPath: /rx/marks: multiSelectionKey missing"),
                                      QStringLiteral("modeCombo.secondSelectionPath: /rx/nowhere: not found"),
                                      QStringLiteral("nameSlider.noValuePath: /rx/valid: no such binding on VCSlider"),
                                      QStringLiteral("nameSlider.valuePath: /rx/name: wrong kind of value"),
                                      QStringLiteral("plainLabel.valuePath: /rx/gain: not a Vandrel control")}));

        // What bound is live both ways.
        QVERIFY(slider->isEnabled());
        QCOMPARE(slider->value(), 4);
        gain->SetValue(7.0, nullptr);
        QCOMPARE(slider->value(), 7);
        QCOMPARE(combo->text(), QStringLiteral("FM"));
        QVERIFY(!untouched->isEnabled());
        slider->setFocus();
        QTest::keyClick(slider, Qt::Key_Right);
        QCOMPARE(gain->GetValue(), 8.0);
    }

    // A one-of button takes its strings from properties of its own; a radio group its check box's boolean.
    void argumentsFromProperties()
    {
        auto* band = new values::ValueSelection;
        band->AddItem(QStringLiteral("LW"), 0, 0, nullptr);
        band->AddItem(QStringLiteral("MW"), 1, 1, nullptr);
        QVERIFY(tree().Add(QStringLiteral("/rx/band"), band));
        QVERIFY(tree().Add(QStringLiteral("/rx/pre"), new values::BoolValue(false)));

        QWidget root;
        new QVBoxLayout(&root);
        auto* mw = new VCOneOfButton(QString(), &root, static_cast<const char* const*>(nullptr), nullptr, QStringLiteral("mw"));
        mw->setObjectName(QStringLiteral("mw"));
        mw->setProperty("valuePath", QStringLiteral("/rx/band"));
        mw->setProperty("oneOfValue", QStringLiteral("MW"));
        auto* lonely = new VCOneOfButton(QString(), &root, static_cast<const char* const*>(nullptr), nullptr, QStringLiteral("lonely"));
        lonely->setObjectName(QStringLiteral("lonely"));
        lonely->setProperty("valuePath", QStringLiteral("/rx/band"));
        auto* group = new VCButtonGroup(&root, "bands", Qt::Vertical);
        group->setProperty("valuePath", QStringLiteral("/rx/band"));
        group->setProperty("checkablePath", QStringLiteral("/rx/pre"));

        const vandrel::BindFormResult result = vandrel::BindForm(&root);
        QCOMPARE(result.bound, (QStringList{QStringLiteral("mw.valuePath: /rx/band"), QStringLiteral("bands.valuePath: /rx/band"),
                                            QStringLiteral("bands.checkablePath: /rx/pre")}));
        QCOMPARE(result.failed, QStringList{QStringLiteral("lonely.valuePath: /rx/band: oneOfValue missing")});
        // The radio buttons made while binding carry no properties and are left alone.
        QCOMPARE(group->findChildren<QRadioButton*>().size(), 2);
        QVERIFY(group->isCheckable() && !group->isChecked());
        QTest::mouseClick(mw, Qt::LeftButton);
        QCOMPARE(band->GetValueString(), QStringLiteral("MW"));
    }

    // A null root, a form without properties, and a name that only another control has.
    void nullAndEmptyForms()
    {
        QCOMPARE(vandrel::BindForm(nullptr).bound, QStringList());
        QWidget empty;
        const vandrel::BindFormResult result = vandrel::BindForm(&empty);
        QVERIFY(result.bound.isEmpty());
        QVERIFY(result.failed.isEmpty());

        QWidget root;
        new QVBoxLayout(&root);
        auto* classic = named<VCComboBoxClassic>(&root, "classic");
        classic->setProperty("secondSelectionPath", QStringLiteral("/x"));
        QCOMPARE(vandrel::BindForm(&root).failed,
                 QStringList{QStringLiteral("classic.secondSelectionPath: /x: no such binding on VCComboBoxClassic")});
    }
};

QTEST_MAIN(BindFormTest)
#include "bindformtest.moc"
