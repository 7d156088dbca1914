#include <orvi/translationcenter.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

#include <atomic>
#include <thread>
#include <vector>

namespace {

TranslationCenter& center()
{
    return TranslationCenter::Instance();
}

// A library registers from its load-time initialisation, before main() creates the application.
const QString s_earlyTranslation = [] {
    center().Register(QStringLiteral("EarlySpace"));
    return center().translate("EarlySpace", QStringLiteral("Open"));
}();

const QString s_open = QStringLiteral("Open");
const QString s_opened = QStringLiteral("Öffnen");
const QString s_catalogDir = QStringLiteral(ORVI_TEST_CATALOG_DIR);
const QString s_newerDir = s_catalogDir + QStringLiteral("/newer");
const QString s_mainCatalog = s_catalogDir + QStringLiteral("/testspace_de.qm");

// testspace_de.qm has a context for each test namespace, so it serves as any namespace's catalog.
bool copyCatalog(const QString& directory, const QString& fileName)
{
    return QDir().mkpath(directory) && QFile::copy(s_mainCatalog, directory + QLatin1Char('/') + fileName);
}

} // namespace

class TranslationCenterTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dataHome;

private slots:
    void initTestCase()
    {
        QVERIFY(QFile::exists(s_mainCatalog));
        QVERIFY(m_dataHome.isValid());
        // Generic data locations follow XDG_DATA_HOME on Unix; builtInLocations() checks it took effect.
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_dataHome.path()));
        QVERIFY(copyCatalog(m_dataHome.path() + QStringLiteral("/dataspace/translations"), "dataspace_de.qm"));
        QVERIFY(copyCatalog(m_dataHome.path() + QStringLiteral("/besidespace/translations"), "besidespace_de.qm"));
        center().Register(QStringLiteral("TestSpace"));
        center().Register(QStringLiteral("OtherSpace"));
    }

    void init()
    {
        QLocale::setDefault(QLocale::c());
        center().AddSearchPath(s_catalogDir);
        center().SetLocale(QStringLiteral("de"));
    }

    void registration()
    {
        const QString name = QStringLiteral("CountSpace");
        center().Register(name);
        center().Register(name);
        QVERIFY(center().IsRegistered(name));
        QCOMPARE(center().RegisteredNames().count(name), 1);
        // One Unregister takes it back, however often it was registered.
        center().Unregister(name);
        QVERIFY(!center().IsRegistered(name));
        QVERIFY(!center().RegisteredNames().contains(name));
        // One Unregister too many must not leave a debt that swallows the next Register.
        center().Unregister(name);
        center().Register(name);
        QVERIFY(center().IsRegistered(name));
        center().Unregister(name);

        center().Register(QStringLiteral("zeta"));
        QStringList names = center().RegisteredNames();
        center().Unregister(QStringLiteral("zeta"));
        QStringList sorted = names;
        sorted.sort();
        QCOMPARE(names, sorted);

        // The catalog goes with the last registration and comes back with the next one.
        center().Unregister(QStringLiteral("TestSpace"));
        QCOMPARE(center().translate("TestSpace", s_open), s_open);
        QVERIFY(center().LoadedCatalog(QStringLiteral("TestSpace")).isEmpty());
        center().Register(QStringLiteral("TestSpace"));
        QCOMPARE(center().translate("TestSpace", s_open), s_opened);
    }

    void untranslated_data()
    {
        QTest::addColumn<QByteArray>("nameSpace"); // a null array stands for a null namespace
        QTest::addColumn<QString>("text");

        QTest::newRow("null namespace") << QByteArray() << s_open;
        QTest::newRow("unknown namespace") << QByteArray("NobodySpace") << s_open;
        // OtherSpace has no catalog; testspace_de.qm has an OtherSpace context that must not serve it.
        QTest::newRow("another namespace's catalog") << QByteArray("OtherSpace") << s_open;
        QTest::newRow("text not in catalog") << QByteArray("TestSpace") << QStringLiteral("Save");
        QTest::newRow("source differs in case") << QByteArray("TestSpace") << QStringLiteral("open");
        QTest::newRow("non-ASCII text") << QByteArray("TestSpace") << QStringLiteral("Größe ✓");
        QTest::newRow("empty text") << QByteArray("TestSpace") << QString();
    }

    void untranslated()
    {
        QFETCH(QByteArray, nameSpace);
        QFETCH(QString, text);
        QCOMPARE(center().translate(nameSpace.isNull() ? nullptr : nameSpace.constData(), text), text);
    }

    void catalog_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QByteArray>("comment");
        QTest::addColumn<QString>("expected");

        // init() loads "de" first, so the other locales also check that SetLocale() replaces it.
        QTest::newRow("de") << "de" << QByteArray() << s_opened;
        QTest::newRow("de, comment") << "de" << QByteArray("state") << QStringLiteral("Offen");
        QTest::newRow("de, unknown comment") << "de" << QByteArray("window") << s_opened;
        QTest::newRow("de_AT falls back to de") << "de_AT" << QByteArray() << s_opened;
        QTest::newRow("en") << "en" << QByteArray() << s_open;
        QTest::newRow("C") << "C" << QByteArray() << s_open;
    }

    void catalog()
    {
        QFETCH(QString, locale);
        QFETCH(QByteArray, comment);
        QFETCH(QString, expected);

        center().SetLocale(locale);
        QCOMPARE(center().translate("TestSpace", s_open, comment.isEmpty() ? nullptr : comment.constData()), expected);
        QCOMPARE(center().LoadedCatalog(QStringLiteral("TestSpace")), expected == s_open ? QString() : s_mainCatalog);
    }

    void lazyLoading()
    {
        // Registered before the application existed: the text came back unchanged, the catalog loads now.
        QCOMPARE(s_earlyTranslation, s_open);
        QCOMPARE(center().translate("EarlySpace", s_open), s_opened);

        // A new registration loads for QLocale() as it is at the first translation, not at Register().
        center().SetLocale(QString());
        center().Unregister(QStringLiteral("TestSpace"));
        center().Register(QStringLiteral("TestSpace"));
        QLocale::setDefault(QLocale(QLocale::German));
        QCOMPARE(center().translate("TestSpace", s_open), s_opened);
        QLocale::setDefault(QLocale::c());
        QCOMPARE(center().translate("TestSpace", s_open), s_opened);
        center().SetLocale(QString());
        QCOMPARE(center().translate("TestSpace", s_open), s_open);
    }

    void searchOrder()
    {
        center().AddSearchPath(s_newerDir);
        QCOMPARE(center().SearchPaths().mid(0, 2), QStringList({s_newerDir, s_catalogDir}));
        QCOMPARE(center().translate("TestSpace", s_open), QStringLiteral("Neu geöffnet"));
        // The first catalog found is the whole catalog: the older one is not asked for what it lacks.
        QCOMPARE(center().translate("TestSpace", QStringLiteral("Close"), "door"), QStringLiteral("Close"));

        // Adding a directory again moves it to the front instead of listing it twice.
        center().AddSearchPath(s_catalogDir);
        QCOMPARE(center().SearchPaths().mid(0, 2), QStringList({s_catalogDir, s_newerDir}));
        QCOMPARE(center().SearchPaths().count(s_catalogDir), 1);
        QCOMPARE(center().translate("TestSpace", QStringLiteral("Close"), "door"), QStringLiteral("Zu"));

        // A catalog that cannot be loaded is reported and the search goes on.
        QTemporaryDir broken;
        QFile file(broken.filePath(QStringLiteral("testspace_de.qm")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("not a catalog") > 0);
        file.close();
        center().AddSearchPath(broken.path());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("testspace_de\\.qm could not be loaded")));
        QCOMPARE(center().translate("TestSpace", s_open), s_opened);
        QCOMPARE(center().LoadedCatalog(QStringLiteral("TestSpace")), s_mainCatalog);
    }

    void builtInLocations()
    {
        const QStringList names = {QStringLiteral("BesideSpace"), QStringLiteral("DataSpace"), QStringLiteral("ResSpace")};
        for (const QString& name : names)
            center().Register(name);
        const auto cleanup = qScopeGuard([&] {
            for (const QString& name : names)
                center().Unregister(name);
        });

        // Beside the binary comes before the generic data location, which also has besidespace_de.qm.
        QCOMPARE(center().LoadedCatalog(names[0]),
                 QCoreApplication::applicationDirPath() + QStringLiteral("/translations/besidespace_de.qm"));
        QCOMPARE(center().translate("BesideSpace", s_open), s_opened);
        QCOMPARE(center().LoadedCatalog(names[2]), QStringLiteral(":/i18n/resspace_de.qm"));
        QCOMPARE(center().translate("ResSpace", s_open), s_opened);

        QTemporaryDir searchDir;
        QVERIFY(copyCatalog(searchDir.path(), QStringLiteral("besidespace_de.qm")));
        center().AddSearchPath(searchDir.path());
        QCOMPARE(center().LoadedCatalog(names[0]), searchDir.filePath(QStringLiteral("besidespace_de.qm")));

        if (!QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation).contains(m_dataHome.path()))
            QSKIP("XDG_DATA_HOME does not set a generic data location on this platform");
        // <location>/<namespace in lower case>/translations comes before :/i18n, which also has dataspace_de.qm.
        QCOMPARE(center().LoadedCatalog(names[1]),
                 m_dataHome.path() + QStringLiteral("/dataspace/translations/dataspace_de.qm"));

        // A Qt 6 build installs its catalogs beside a Qt 5 build's, under <namespace>6, and prefers those;
        // a Qt 5 build never looks there.
        const QString qt6Dir = m_dataHome.path() + QStringLiteral("/dataspace6/translations");
        const auto removeQt6Dir = qScopeGuard([&] { QDir(qt6Dir).removeRecursively(); });
        QVERIFY(copyCatalog(qt6Dir, QStringLiteral("dataspace_de.qm")));
        center().SetLocale(QStringLiteral("de"));
        const QString expectedDir = QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
            ? qt6Dir : m_dataHome.path() + QStringLiteral("/dataspace/translations");
        QCOMPARE(center().LoadedCatalog(names[1]), expectedDir + QStringLiteral("/dataspace_de.qm"));
    }

    void applicationTranslators()
    {
        QCOMPARE(center().translate("AppSpace", s_open), s_open);

        // The main catalog has AppSpace; the newer one, installed last, has other TestSpace words.
        QTranslator appCatalog;
        QTranslator newerCatalog;
        QVERIFY(appCatalog.load(s_mainCatalog) && newerCatalog.load(s_newerDir + QStringLiteral("/testspace_de.qm")));
        QVERIFY(QCoreApplication::installTranslator(&appCatalog) && QCoreApplication::installTranslator(&newerCatalog));

        QCOMPARE(center().translate("AppSpace", s_open), s_opened);
        center().Register(QStringLiteral("AppSpace"));
        QCOMPARE(center().translate("AppSpace", s_open), s_opened);
        center().Unregister(QStringLiteral("AppSpace"));

        // The centre's own catalog answers first; the application's translators fill in what it lacks.
        QCOMPARE(center().translate("TestSpace", s_open), s_opened);
        QCOMPARE(center().translate("TestSpace", QStringLiteral("Save")), QStringLiteral("Speichern"));
    }

    void libraryCatalog()
    {
        const QString translationsDir = QStringLiteral(VANDREL_TRANSLATIONS_DIR);
        center().Register(QStringLiteral("Vandrel"));
        const auto cleanup = qScopeGuard([] { center().Unregister(QStringLiteral("Vandrel")); });
        center().AddSearchPath(translationsDir);
        center().SetLocale(QStringLiteral("de_DE"));

        const QString catalog = center().LoadedCatalog(QStringLiteral("Vandrel"));
        QCOMPARE(catalog, translationsDir + QStringLiteral("/vandrel_de.qm"));
        // The controls' words live under their class names as contexts.
        QTranslator translator;
        QVERIFY(translator.load(catalog));
        QCOMPARE(translator.translate("VCUndo", "Undo"), QStringLiteral("Rückgängig"));
        QCOMPARE(translator.translate("VCLineEdit", "Range Check Error"), QStringLiteral("Bereichsfehler"));
        // Installed into the application, the catalog serves the classes' own tr() as well.
        QCOMPARE(QCoreApplication::translate("VCUndo", "Undo"), QStringLiteral("Undo"));
        center().InstallCatalog(QStringLiteral("Vandrel"));
        QCOMPARE(QCoreApplication::translate("VCUndo", "Undo"), QStringLiteral("Rückgängig"));
        center().SetLocale(QStringLiteral("en"));
        QCOMPARE(QCoreApplication::translate("VCUndo", "Undo"), QStringLiteral("Undo"));
    }

    void concurrentUse()
    {
        // Catalogs are replaced under the feet of translating threads; every answer must be one of the two.
        std::atomic<bool> stop{false};
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 2; ++i) {
            threads.emplace_back([&] {
                while (!stop) {
                    const QString text = center().translate("TestSpace", s_open);
                    if (text != s_open && text != s_opened)
                        ++wrong;
                    center().Register(QStringLiteral("ThreadSpace"));
                    center().Unregister(QStringLiteral("ThreadSpace"));
                }
            });
        }
        for (int i = 0; i < 500; ++i)
            center().SetLocale(QLatin1String(i % 2 ? "de" : "en"));
        stop = true;
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(wrong.load(), 0);
    }
};

QTEST_GUILESS_MAIN(TranslationCenterTest)

#include "translationcentertest.moc"
