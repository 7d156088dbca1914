#include <plinthor/coordedit.h>
#include <plinthor/plinthorapp.h>

#include <orvi/translationcenter.h>
#include <plinthor/coordinates.h>
#include <values/values.h>

#include <QtTest>

namespace {

values::Tree& tree()
{
    return *values::Tree::Instance();
}

// The seven formats, keyed and numbered 0 to 6, decimal degrees first and current.
void verifyFormatSelection(values::ValueSelection* selection)
{
    QVERIFY(selection);
    QCOMPARE(selection->GetItemCount(), 7);
    for (int i = 0; i < 7; ++i) {
        const values::SelectionItem* item = selection->GetItemAt(i);
        QCOMPARE(item->GetKey(), long(i));
        QCOMPARE(item->GetValue(), double(i));
        QCOMPARE(item->GetName(), QString::fromUtf8(basecontrols::CoordText::FormatName(CoordFormat(i))));
    }
    QCOMPARE(selection->GetCurrentKey(), long(GeoDecimal));
    QCOMPARE(QByteArray(selection->GetTranslationNamespace()), QByteArray("Plinthor"));
}

} // namespace

class PlinthorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { tree().Clear(); }

    void positionFormat_data()
    {
        QTest::addColumn<QString>("before"); // what became of the path before the call
        QTest::newRow("first call") << QString();
        QTest::newRow("Clear") << "Clear";
        QTest::newRow("Remove") << "Remove";
        QTest::newRow("path taken by the application") << "taken";
    }
    void positionFormat()
    {
        QFETCH(QString, before);
        const QString path = Plinthor::PositionFormatPath();
        values::ValueBase* text = nullptr;
        if (!before.isEmpty()) {
            Plinthor::Instance().GetPositionFormat()->SelectKey(Utm, nullptr); // not kept by the next one
            if (before == QLatin1String("Remove"))
                QVERIFY(tree().Remove(path));
            else
                tree().Clear();
            QVERIFY(!tree().Find(path));
            if (before == QLatin1String("taken"))
                QVERIFY(tree().Add(path, text = new values::StringValue(QStringLiteral("mine"))));
        }
        values::ValueSelection* selection = Plinthor::Instance().GetPositionFormat();
        verifyFormatSelection(selection);
        QCOMPARE(Plinthor::Instance().GetPositionFormat(), selection);
        QCOMPARE(tree().Find(path), text ? text : static_cast<values::ValueBase*>(selection));
        if (text) {
            QCOMPARE(text->GetValueString(), QStringLiteral("mine"));
            QVERIFY(!selection->GetPathName().isEmpty());
        }
        // The names are distinct, so that a write by name picks one format.
        QSet<QString> names;
        for (int i = 0; i < 7; ++i)
            names << selection->GetItemAt(i)->GetName();
        QCOMPARE(names.size(), 7);
        QVERIFY(selection->SetValueString(QStringLiteral("SWEREF 99 TM"), nullptr));
        QCOMPARE(Plinthor::Instance().GetPositionFormat()->GetCurrentKey(), long(SweRef99));
    }

    void paletteChangeIsAnnouncedOnce()
    {
        // Every widget hears of an application palette change; the signal comes once all the same,
        // after the widgets have taken up the new palette.
        QWidget window;
        basecontrols::CoordEdit edit(&window);
        window.show();
        QSignalSpy colors(&Plinthor::Instance(), &Plinthor::signalColorsChanged);
        QColor windowColourSeen;
        connect(&Plinthor::Instance(), &Plinthor::signalColorsChanged, &window,
                [&] { windowColourSeen = window.palette().color(QPalette::Window); });
        const QPalette original = QApplication::palette();
        QPalette changed = original;
        changed.setColor(QPalette::Window, QColor(12, 34, 56));
        QApplication::setPalette(changed);
        QTRY_COMPARE(colors.count(), 1);
        QCOMPARE(windowColourSeen, QColor(12, 34, 56));
        // A widget's palette of its own is not the application's.
        QPalette local = window.palette();
        local.setColor(QPalette::Window, Qt::yellow);
        window.setPalette(local);
        QCoreApplication::processEvents();
        QCOMPARE(colors.count(), 1);
        // Two changes in one go are announced once.
        changed.setColor(QPalette::Window, QColor(1, 1, 1));
        QApplication::setPalette(changed);
        QApplication::setPalette(original);
        QTRY_COMPARE(colors.count(), 2);
        QCoreApplication::processEvents();
        QCOMPARE(colors.count(), 2);
    }

    void endEdit()
    {
        QWidget window;
        auto* box = new QWidget(&window);
        auto* edit = new basecontrols::CoordEdit(box);
        auto* elsewhere = new QWidget(&window);
        QSignalSpy edited(edit, &basecontrols::CoordEdit::positionEdited);
        auto typeSomething = [edit](const QString& text) {
            edit->selectAll();
            QTest::keyClicks(edit, text);
        };

        typeSomething(QStringLiteral("10 20"));
        Plinthor::Instance().EndEdit(elsewhere);
        QCOMPARE(edited.count(), 0);
        QCOMPARE(edit->text(), QStringLiteral("10 20"));
        Plinthor::Instance().EndEdit(edit);
        QCOMPARE(edited.count(), 1);
        QCOMPARE(edit->text(), QStringLiteral("10.000000° N, 20.000000° E"));

        typeSomething(QStringLiteral("11 21"));
        Plinthor::Instance().EndEdit(&window); // a widget that holds the field
        QCOMPARE(edited.count(), 2);
        QCOMPARE(edit->getLatitude(), 11.0);

        typeSomething(QStringLiteral("12 22"));
        Q_EMIT Plinthor::Instance().endEdit(nullptr); // every editor
        QCOMPARE(edited.count(), 3);
        QCOMPARE(edit->getLongitude(), 22.0);

        // Nothing typed: nothing to finish.
        Plinthor::Instance().EndEdit(nullptr);
        QCOMPARE(edited.count(), 3);
    }

    void germanCatalog()
    {
        TranslationCenter& centre = TranslationCenter::Instance();
        QVERIFY(centre.IsRegistered(QStringLiteral("Plinthor")));
        centre.AddSearchPath(QStringLiteral(VANDREL_TRANSLATIONS_DIR));
        centre.SetLocale(QStringLiteral("de_DE"));
        QVERIFY(centre.LoadedCatalog(QStringLiteral("Plinthor")).endsWith(QLatin1String("plinthor_de.qm")));
        QCOMPARE(basecontrols::CoordText::TranslatedFormatName(GeoDecimal), QStringLiteral("Dezimalgrad"));
        QCOMPARE(basecontrols::CoordText::TranslatedFormatName(SweRef99), QStringLiteral("SWEREF 99 TM"));
        // The editor's menu words come through tr(), from the catalog installed into the application.
        QTRY_COMPARE(QCoreApplication::translate("basecontrols::CoordEdit", "&Copy"), QStringLiteral("&Kopieren"));

        centre.SetLocale(QStringLiteral("en_US"));
        QCOMPARE(basecontrols::CoordText::TranslatedFormatName(GeoDecimal), QStringLiteral("Decimal degrees"));
    }
};

QTEST_MAIN(PlinthorTest)
#include "plinthortest.moc"
