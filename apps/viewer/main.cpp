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

int main(int argc, char** argv)
{
    using namespace tesmor::apps;
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName("tesmor");
    QCoreApplication::setApplicationName("tesmor-viewer");
    QCoreApplication::setApplicationVersion(TESMOR_VERSION);
    QGuiApplication::setApplicationDisplayName("tesmor");
    QGuiApplication::setDesktopFileName("tesmor-viewer");
    QGuiApplication::setQuitOnLastWindowClosed(false);

    // The texts of Qt's own dialogues, and ours.
    QTranslator dialogues;
    if (dialogues.load(QLocale(), "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&dialogues);
    QTranslator texts;
    if (texts.load(QLocale(), "tesmor-viewer", "_", ":/translations"))
        QCoreApplication::installTranslator(&texts);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("main", "Shows the live image of a microscope's camera, focuses with one click, "
                                            "captures focus stacks and merges them."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({"camera",
                      QCoreApplication::translate("main", "Begin with this camera: a name that tesmor cameras lists, "
                                                          "or virtual, a simulated microscope with a drive."),
                      "NAME"});
    parser.process(application);

    try {
        QSettings settings;
        setAppearance(static_cast<Appearance>(settings.value("view/appearance").toInt()));
        MainWindow window(findSources, parser.value("camera"), settings);
        QObject::connect(&window, &MainWindow::hasClosed, &application, &QCoreApplication::quit);
        window.show();
        return QApplication::exec();
    } catch (const UserError& error) {
        std::fprintf(stderr, "tesmor-viewer: %s\n", error.what());
        return STATUS_FAILED;
    }
}
