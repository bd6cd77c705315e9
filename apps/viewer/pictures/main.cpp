// SPDX-License-Identifier: GPL-2.0-or-later
// Writes pictures of the viewer's main states for the documents: its real window, on the virtual microscope.
#include "viewer/widgets/style.h"
#include "viewer/window/main_window.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <functional>

using namespace tesmor::apps;

namespace {

constexpr QSize USUAL_SIZE(1360, 900);
constexpr int QUALITY = 92;
constexpr qint64 LIMIT_MS = 120'000;

void await(const char* what, const std::function<bool()>& condition)
{
    QElapsedTimer time;
    time.start();
    while (!condition()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        if (time.elapsed() > LIMIT_MS) {
            std::fprintf(stderr, "viewer_pictures: %s did not come\n", what);
            std::exit(1);
        }
    }
}

class Photographer {
public:
    Photographer(MainWindow& window, const QString& folder, const QString& format)
        : window_(window), folder_(folder), format_(format)
    {
    }

    void click(const char* button)
    {
        window_.findChild<QPushButton*>(button)->click();
    }

    // The window as it is once so many more frames have come.
    void take(const char* name, std::uint64_t frames)
    {
        awaitFrames(frames);
        const QString file = folder_.filePath(QString("viewer-%1.%2").arg(name, format_));
        if (!window_.grab().toImage().save(file, nullptr, QUALITY)) {
            std::fprintf(stderr, "viewer_pictures: %s cannot be written\n", qPrintable(file));
            std::exit(1);
        }
    }

    void awaitFrames(std::uint64_t frames)
    {
        const std::uint64_t last = tap().frameCount() + frames;
        await("the live image", [&] { return tap().frameCount() >= last; });
    }

    void awaitIdle()
    {
        await("the end of a command", [&] { return !window_.session().isBusy(); });
    }

private:
    FrameTap& tap()
    {
        return window_.session().source().tap();
    }

    MainWindow& window_;
    const QDir folder_;
    const QString format_;
};

void takeAll(MainWindow& window, Photographer photographer)
{
    Session& session = window.session();
    await("the microscope", [&] { return session.source().microscope() != nullptr; });
    photographer.take("idle", 60);

    photographer.click("autofocus");
    await("half a search", [&] { return session.curve().points().size() > 12 || !session.isBusy(); });
    photographer.take("focusing", 0);
    photographer.awaitIdle();

    photographer.click("capture");
    await("half a stack", [&] { return session.slices().size() == session.plan().slices / 2; });
    photographer.take("stack", 1);
    photographer.awaitIdle();
    photographer.click("fuse");
    photographer.awaitIdle();
    photographer.take("result", 10);

    setAppearance(Appearance::DARK);
    photographer.take("dark", 10);
    setAppearance(Appearance::LIGHT);

    tesmor::microscope::Faults faults;
    faults.vanishInMove = true;
    session.source().microscope()->setFaults(faults);
    photographer.click("closeResult");
    photographer.click("autofocus");
    photographer.awaitIdle();
    photographer.take("error", 30);
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: viewer_pictures FOLDER [FORMAT [WIDTH HEIGHT]]\n");
        return 2;
    }
    const QTemporaryDir folder;
    QSettings settings(folder.filePath("settings.ini"), QSettings::IniFormat);
    setAppearance(Appearance::LIGHT);
    MainWindow window([] { return std::vector{virtualSource()}; }, {}, settings);
    window.resize(argc > 4 ? QSize(std::atoi(argv[3]), std::atoi(argv[4])) : USUAL_SIZE);
    window.show();
    takeAll(window, Photographer(window, argv[1], argc > 2 ? argv[2] : "jpg"));
    window.session().shutDown();
    bool isShutDown = false;
    QObject::connect(&window, &MainWindow::hasClosed, [&] { isShutDown = true; });
    await("the end", [&] { return isShutDown; });
    return 0;
}
