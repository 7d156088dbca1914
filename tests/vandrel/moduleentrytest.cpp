#include <vandrel/binding/moduleentry.h>

#include <orvi/translationcenter.h>

#include <QtTest>

class ModuleEntryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void registeredOnLoad()
    {
        // Linking the library is enough: it registered its namespace when it was loaded.
        QVERIFY(TranslationCenter::Instance().IsRegistered(QStringLiteral("Vandrel")));
    }

    void reasons_data()
    {
        QTest::addColumn<unsigned long>("reason");
        QTest::addColumn<bool>("registeredAfter");
        QTest::newRow("detach") << 0ul << false;
        QTest::newRow("attach") << 1ul << true;
        QTest::newRow("thread attach") << 2ul << true;
        QTest::newRow("thread detach") << 3ul << true;
        QTest::newRow("attach again") << 1ul << true;
        QTest::newRow("detach after two attaches") << 0ul << false;
    }
    void reasons()
    {
        QFETCH(unsigned long, reason);
        QFETCH(bool, registeredAfter);
        TranslationCenter& centre = TranslationCenter::Instance();
        // The rows run one after another on the same centre, as calls of a loader would.
        QVERIFY(VandrelModuleEntry(nullptr, reason, nullptr));
        QCOMPARE(centre.IsRegistered(QStringLiteral("Vandrel")), registeredAfter);
    }
};

QTEST_GUILESS_MAIN(ModuleEntryTest)
#include "moduleentrytest.moc"
