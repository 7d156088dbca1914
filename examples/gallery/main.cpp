#include "gallerywindow.h"
#include "instrument.h"
#include "valuetreeview.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QPixmap>
#include <QTabWidget>
#include <QTimer>

#include <cstdio>
#include <cstring>

namespace {

// Steps the simulation runs before a screenshot: enough for the scan to reach its first station.
constexpr quint64 kScreenshotSteps = 16;
// A screenshot without --seed uses this one, so that two screenshots of one build are alike.
constexpr quint32 kScreenshotSeed = 1;

bool hasArgument(int argc, char** argv, const char* name)
{
    const size_t length = std::strlen(name);
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], name, length) == 0 && (argv[i][length] == '\0' || argv[i][length] == '='))
            return true;
    }
    return false;
}

/// The tab that \a key names, by its number from 1 or by the beginning of its title; -1 for none.
int pageIndex(const QTabWidget* pages, const QString& key)
{
    bool isNumber = false;
    const int number = key.toInt(&isNumber);
    if (isNumber)
        return number >= 1 && number <= pages->count() ? number - 1 : -1;
    for (int i = 0; i < pages->count(); ++i) {
        if (!key.isEmpty() && pages->tabText(i).remove(QLatin1Char('&')).startsWith(key, Qt::CaseInsensitive))
            return i;
    }
    return -1;
}

/// The options, on whichever application object there is: the parser is made before the window
/// system is reached, so that --help and --version work without a display.
struct Options
{
    QCommandLineParser parser;
    QCommandLineOption screenshot{QStringLiteral("screenshot"),
                                  QStringLiteral("Render the window offscreen into the PNG <file> and exit."),
                                  QStringLiteral("file")};
    QCommandLineOption seed{QStringLiteral("seed"), QStringLiteral("Seed the simulation with <n> for a reproducible run."),
                            QStringLiteral("n")};
    QCommandLineOption page{QStringLiteral("page"),
                            QStringLiteral("Open on page <page>: its number (1 is the first tab) or the beginning of "
                                           "its title, such as \"Buttons\"."),
                            QStringLiteral("page")};
    QCommandLineOption language{QStringLiteral("language"),
                                QStringLiteral("Show the gallery in <language>: en (the default) or de."),
                                QStringLiteral("language")};
    QCommandLineOption size{QStringLiteral("size"),
                            QStringLiteral("Open the window <width>x<height> pixels large, such as 1024x640 (the "
                                           "smallest); the default is 1480x800."),
                            QStringLiteral("size")};

    Options()
    {
        parser.setApplicationDescription(QStringLiteral("The Vandrel controls on a simulated receiver."));
        parser.addHelpOption();
        parser.addVersionOption();
        parser.addOptions({screenshot, seed, page, language, size});
    }
};

void describeApplication()
{
    QCoreApplication::setApplicationName(QStringLiteral("vandrel-gallery"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VANDREL_GALLERY_VERSION));
}

} // namespace

int main(int argc, char** argv)
{
    // --help and --version are answered before any window system is opened.
    if (hasArgument(argc, argv, "--help") || hasArgument(argc, argv, "-h") || hasArgument(argc, argv, "-?")
        || hasArgument(argc, argv, "--help-all") || hasArgument(argc, argv, "--version")
        || hasArgument(argc, argv, "-v")) {
        QCoreApplication plain(argc, argv);
        describeApplication();
        Options options;
        options.parser.process(plain);
    }

    // A screenshot needs no display: render offscreen unless a platform was chosen.
    if (hasArgument(argc, argv, "--screenshot") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")
        && !hasArgument(argc, argv, "-platform"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    QApplication app(argc, argv);
    describeApplication();
    QApplication::setApplicationDisplayName(QStringLiteral("Vandrel gallery"));
    Options options;
    QCommandLineParser& parser = options.parser;
    parser.process(app);
    const QCommandLineOption& screenshotOption = options.screenshot;
    const QCommandLineOption& seedOption = options.seed;
    const QCommandLineOption& pageOption = options.page;
    const QCommandLineOption& languageOption = options.language;

    const QString screenshot = parser.value(screenshotOption);
    const bool takeScreenshot = parser.isSet(screenshotOption);
    if (takeScreenshot && screenshot.isEmpty()) {
        std::fprintf(stderr, "vandrel-gallery: --screenshot needs a file name\n");
        return 2;
    }

    Instrument instrument;
    if (parser.isSet(seedOption)) {
        bool ok = false;
        const quint32 seed = parser.value(seedOption).toUInt(&ok);
        if (!ok) {
            std::fprintf(stderr, "vandrel-gallery: --seed needs a number from 0 to 4294967295, not '%s'\n",
                         qPrintable(parser.value(seedOption)));
            return 2;
        }
        instrument.setSeed(seed);
    } else if (takeScreenshot) {
        instrument.setSeed(kScreenshotSeed);
    }

    const QString language = parser.value(languageOption);
    if (parser.isSet(languageOption) && language != QLatin1String("en") && language != QLatin1String("de")) {
        std::fprintf(stderr, "vandrel-gallery: --language takes en or de, not '%s'\n", qPrintable(language));
        return 2;
    }

    QSize size(1480, 800);
    if (parser.isSet(options.size)) {
        const QStringList parts = parser.value(options.size).split(QLatin1Char('x'));
        bool wide = false;
        bool high = false;
        if (parts.size() == 2)
            size = QSize(parts.at(0).toInt(&wide), parts.at(1).toInt(&high));
        const QSize least = GalleryWindow::minimumWindowSize();
        if (!wide || !high || size.width() < least.width() || size.height() < least.height()) {
            std::fprintf(stderr, "vandrel-gallery: --size takes WIDTHxHEIGHT of at least %dx%d, not '%s'\n", least.width(),
                         least.height(), qPrintable(parser.value(options.size)));
            return 2;
        }
    }

    GalleryWindow window(&instrument);
    window.resize(size);
    if (!language.isEmpty())
        window.setLanguage(language);
    if (parser.isSet(pageOption)) {
        const int page = pageIndex(window.pages(), parser.value(pageOption));
        if (page < 0) {
            std::fprintf(stderr, "vandrel-gallery: no page '%s'; the pages are:\n", qPrintable(parser.value(pageOption)));
            for (int i = 0; i < window.pages()->count(); ++i)
                std::fprintf(stderr, "  %d  %s\n", i + 1, qPrintable(window.pages()->tabText(i)));
            return 2;
        }
        window.pages()->setCurrentIndex(page);
    }

    if (!takeScreenshot) {
        instrument.start();
        window.show();
        return app.exec();
    }

    // Everything on the picture follows the count of steps, not the wall clock: the glow of the value
    // tree runs on simulated time too, so a seed gives the same picture every time.
    window.valueTreeModel()->setClock([&instrument] { return instrument.simulatedMs(); });
    window.setFixedSize(size);
    window.show();

    int result = 0;
    QObject::connect(&instrument, &Instrument::stepped, &app, [&](quint64 count) {
        if (count < kScreenshotSteps)
            return;
        instrument.stop();
        // Let the last step's repaints and layout settle before grabbing.
        QTimer::singleShot(0, &app, [&] {
            const QPixmap picture = window.grab();
            if (picture.isNull() || !picture.save(screenshot, "PNG")) {
                std::fprintf(stderr, "vandrel-gallery: could not write the screenshot to '%s'\n", qPrintable(screenshot));
                result = 1;
            } else {
                std::printf("%s\n", qPrintable(screenshot));
            }
            app.quit();
        });
    });
    instrument.start();
    app.exec();
    return result;
}
