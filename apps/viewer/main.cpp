// SPDX-License-Identifier: GPL-2.0-or-later
// The viewer: live image, one click to focus, stack and fuse.
#include "terminal/errors.h"
#include "tesmor.h"
#include "viewer/widgets/style.h"
#include "viewer/window/main_window.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QLibraryInfo>
#include <QTranslator>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

using namespace tesmor::apps;

QtMessageHandler tellAsUsual = nullptr;

// While the application is made: without a display Qt says so at length, and aborts.
void tellOfDisplay(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    static QString reasons;
    if (type == QtFatalMsg) {
        if (!reasons.contains("could not connect to display"))
            std::fputs(qPrintable(reasons + text + '\n'), stderr);
        std::fputs("tesmor-viewer: no display can be opened; start it from a desktop, or check DISPLAY and "
                   "WAYLAND_DISPLAY\n",
                   stderr);
        std::_Exit(STATUS_FAILED);
    }
    if (QLatin1String(context.category).startsWith(QLatin1String("qt.qpa")))
        reasons += text + '\n';
    else
        tellAsUsual(type, context, text);
}

std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv, bool hasWindows)
{
    if (!hasWindows)
        return std::make_unique<QCoreApplication>(argc, argv);
    tellAsUsual = qInstallMessageHandler(tellOfDisplay);
    auto application = std::make_unique<QApplication>(argc, argv);
    qInstallMessageHandler(tellAsUsual);
    return application;
}

// Help and version need no display.
bool asksForText(const QCommandLineParser& parser)
{
    return parser.isSet("help") || parser.isSet("help-all") || parser.isSet("version");
}

QCommandLineParser& addOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        QCoreApplication::translate("main", "Shows the live image of a microscope's camera, focuses with one click, "
                                            "captures focus stacks and merges them."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({"camera",
                      QCoreApplication::translate("main", "Begin with this camera: a name that tesmor cameras lists, "
                                                          "or virtual, a simulated microscope with a drive."),
                      "NAME"});
    return parser;
}

} // namespace

int main(int argc, char** argv)
{
    QCommandLineParser forText;
    const bool isKnown = addOptions(forText).parse(QStringList(argv, argv + argc)); // Qt's own options are not
    const auto application = makeApplication(argc, argv, !isKnown || !asksForText(forText));
    QCoreApplication::setOrganizationName("tesmor");
    QCoreApplication::setApplicationName("tesmor-viewer");
    QCoreApplication::setApplicationVersion(TESMOR_VERSION);

    // The texts of Qt's own dialogues, and ours.
    QTranslator dialogues;
    if (dialogues.load(QLocale(), "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&dialogues);
    QTranslator texts;
    if (texts.load(QLocale(), "tesmor-viewer", "_", ":/translations"))
        QCoreApplication::installTranslator(&texts);

    QCommandLineParser parser;
    addOptions(parser).process(*application);

    QGuiApplication::setApplicationDisplayName("tesmor");
    QGuiApplication::setDesktopFileName("tesmor-viewer");
    QGuiApplication::setQuitOnLastWindowClosed(false);

    try {
        QSettings settings;
        setAppearance(static_cast<Appearance>(settings.value("view/appearance").toInt()));
        MainWindow window(findSources, parser.value("camera"), settings);
        QObject::connect(&window, &MainWindow::hasClosed, application.get(), &QCoreApplication::quit);
        window.show();
        return QApplication::exec();
    } catch (const UserError& error) {
        std::fprintf(stderr, "tesmor-viewer: %s\n", error.what());
        return STATUS_FAILED;
    }
}
