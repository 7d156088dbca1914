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

} // namespace

int main(int argc, char** argv)
{
    // A screenshot needs no display: render offscreen unless a platform was chosen.
    if (hasArgument(argc, argv, "--screenshot") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")
        && !hasArgument(argc, argv, "-platform"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vandrel-gallery"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vandrel gallery"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("The Vandrel controls on a simulated receiver."));
    parser.addHelpOption();
    const QCommandLineOption screenshotOption(QStringLiteral("screenshot"),
                                              QStringLiteral("Render the window offscreen into the PNG <file> and exit."),
                                              QStringLiteral("file"));
    const QCommandLineOption seedOption(QStringLiteral("seed"),
                                        QStringLiteral("Seed the simulation with <n> for a reproducible run."),
                                        QStringLiteral("n"));
    const QCommandLineOption pageOption(QStringLiteral("page"),
                                        QStringLiteral("Open on page <page>: its number (1 is the first tab) or the "
                                                       "beginning of its title, such as \"Buttons\"."),
                                        QStringLiteral("page"));
    const QCommandLineOption languageOption(QStringLiteral("language"),
                                            QStringLiteral("Show the gallery in <language>: en (the default) or de."),
                                            QStringLiteral("language"));
    parser.addOption(screenshotOption);
    parser.addOption(seedOption);
    parser.addOption(pageOption);
    parser.addOption(languageOption);
    parser.process(app);

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

    GalleryWindow window(&instrument);
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
    window.setFixedSize(1480, 800);
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
