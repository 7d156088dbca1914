#include <vandrel/vclabel.h>
#include <vandrel/vcmeasurementwidget.h>

#include <orvi/translationcenter.h>

#include <QtTest>

namespace {

values::Tree& tree() { return *values::Tree::Instance(); }

struct Result
{
    values::StringValue* name;
    values::DoubleNumeric* value;
    values::BoolValue* invalid;
    values::StringValue* unit;
};

// A result branch at \a path; without \a unit when it is null.
Result addResult(const QString& path, const char* name, double value, const char* unit)
{
    Result r{new values::StringValue(QString::fromUtf8(name)), new values::DoubleNumeric(value, -1000, 1000),
             new values::BoolValue(false), unit ? new values::StringValue(QString::fromUtf8(unit)) : nullptr};
    tree().Add(path + QStringLiteral("/NAME"), r.name);
    tree().Add(path + QStringLiteral("/VALUE"), r.value);
    tree().Add(path + QStringLiteral("/INVALID"), r.invalid);
    if (r.unit)
        tree().Add(path + QStringLiteral("/UNIT"), r.unit);
    return r;
}

} // namespace

class VCMeasurementWidgetTest : public QObject
{
    Q_OBJECT

    VCLabel* label(const VCMeasurementWidget& w, int i) { return w.findChildren<VCLabel*>().value(i); }
    QStringList texts(const VCMeasurementWidget& w)
    {
        QStringList out;
        for (VCLabel* l : w.findChildren<VCLabel*>())
            out << l->text();
        return out;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TranslationCenter::Instance().AddSearchPath(QStringLiteral(VANDREL_TRANSLATIONS_DIR));
        TranslationCenter::Instance().SetLocale(QStringLiteral("de_DE"));
    }
    void cleanupTestCase() { TranslationCenter::Instance().SetLocale(QStringLiteral("en")); }
    void cleanup() { tree().Clear(); }

    void titles_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("title");
        QTest::newRow("from the tree") << 0 << QString();
        QTest::newRow("level") << 1 << QStringLiteral("Pegel");
        QTest::newRow("quality") << 2 << QStringLiteral("Qualität");
        QTest::newRow("azimuth") << 3 << QStringLiteral("Azimut");
        QTest::newRow("elevation") << 4 << QStringLiteral("Elevation");
        QTest::newRow("unknown number") << 9 << QString();
    }

    void titles()
    {
        QFETCH(int, type);
        QFETCH(QString, title);
        VCMeasurementWidget w(nullptr, VCMeasurementWidget::MeasurementWidgetType(type));
        w.show();
        QCOMPARE(w.width(), 70);
        QCOMPARE(texts(w), (QStringList{title, QString(), QString()})); // name, value, unit
        QCOMPARE(w.objectName(), title.isEmpty() ? QString() : QStringLiteral("RESULT_WIDGET_") + title);
        QCOMPARE(label(w, 1)->objectName(), title.isEmpty() ? QString() : QStringLiteral("RESULT_MEAS_") + title);
        for (VCLabel* l : w.findChildren<VCLabel*>())
            QCOMPARE(l->height(), 20);
        // Name above, value left of the unit.
        QVERIFY(label(w, 0)->geometry().bottom() < label(w, 1)->geometry().top());
        QVERIFY(label(w, 1)->geometry().right() < label(w, 2)->geometry().left());
    }

    void branch()
    {
        Result r = addResult(QStringLiteral("/r"), "Field Strength", 12.34, "dBuV/m");
        VCMeasurementWidget w(nullptr, VCMeasurementWidget::ResultName);
        w.show();
        QVERIFY(w.SetValueTreePath(QStringLiteral("/r")));
        // Named before the translation; the translation once, at binding.
        QCOMPARE(w.objectName(), QStringLiteral("RESULT_WIDGET_Field Strength"));
        QCOMPARE(label(w, 1)->objectName(), QStringLiteral("RESULT_MEAS_Field Strength"));
        QCOMPARE(texts(w), (QStringList{"Feldstärke", "12.3", "dBuV/m"}));
        QCOMPARE(w.width(), 70);

        const Qt::Alignment numberAlignment = label(w, 1)->alignment();
        r.invalid->SetValue(true, nullptr);
        QCOMPARE(label(w, 1)->text(), QStringLiteral("- - -"));
        QCOMPARE(label(w, 1)->alignment(), Qt::AlignCenter);
        w.SetZarnResults(QStringLiteral("busy"));
        QCOMPARE(label(w, 1)->text(), QStringLiteral("busy"));
        r.value->SetValue(5, nullptr);
        QCOMPARE(label(w, 1)->text(), QStringLiteral("- - -"));
        r.invalid->SetValue(false, nullptr);
        QCOMPARE(label(w, 1)->text(), QStringLiteral("5.0"));
        QCOMPARE(label(w, 1)->alignment(), numberAlignment);
        r.name->SetValue(QStringLiteral("Offset"), nullptr);
        QCOMPARE(label(w, 0)->text(), QStringLiteral("Offset")); // later names untranslated

        // Another branch, without a unit: the rest is bound, nothing translated; the old branch is let go.
        Result s = addResult(QStringLiteral("/s"), "Bandwidth", 7, nullptr);
        QVERIFY(!w.SetValueTreePath(QStringLiteral("/s")));
        QCOMPARE(w.objectName(), QStringLiteral("RESULT_WIDGET_Bandwidth"));
        QCOMPARE(texts(w).mid(0, 2), (QStringList{"Bandwidth", "7.0"}));
        r.name->SetValue(QStringLiteral("old"), nullptr);
        r.value->SetValue(1, nullptr);
        r.invalid->SetValue(true, nullptr);
        r.unit->SetValue(QStringLiteral("V"), nullptr);
        QCOMPARE(texts(w), (QStringList{"Bandwidth", "7.0", "dBuV/m"}));
        s.invalid->SetValue(true, nullptr);
        QCOMPARE(label(w, 1)->text(), QStringLiteral("- - -"));

        // An untranslated text stays as it is.
        addResult(QStringLiteral("/t"), "Doppler", 1, "Hz");
        QVERIFY(w.SetValueTreePath(QStringLiteral("/t")));
        QCOMPARE(texts(w), (QStringList{"Doppler", "1.0", "Hz"}));
    }
};

QTEST_MAIN(VCMeasurementWidgetTest)
#include "vcmeasurementwidgettest.moc"
