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
    }
    void reasons()
    {
        QFETCH(unsigned long, reason);
        QFETCH(bool, registeredAfter);
        TranslationCenter& centre = TranslationCenter::Instance();
        // Start from one registration (the library's own) whatever earlier rows did.
        while (centre.IsRegistered(QStringLiteral("Vandrel")))
            centre.Unregister(QStringLiteral("Vandrel"));
        centre.Register(QStringLiteral("Vandrel"));
        QVERIFY(VandrelModuleEntry(nullptr, reason, nullptr));
        QCOMPARE(centre.IsRegistered(QStringLiteral("Vandrel")), registeredAfter);
    }
};

QTEST_GUILESS_MAIN(ModuleEntryTest)
#include "moduleentrytest.moc"
