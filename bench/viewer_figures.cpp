// SPDX-License-Identifier: GPL-2.0-or-later
// Prints what the viewer costs while somebody looks (processor time, frames that were not shown), and how long its
// window's thread was held up during an autofocus, a stack and a fusion. Or what memory it holds in use. ./bench/viewer
// runs it.
#include "viewer/window/main_window.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <functional>
#include <string_view>
#include <thread>
#include <vector>

using namespace tesmor::apps;
namespace cameras = tesmor::cameras;

namespace {

constexpr QSize SIZE(1360, 900);
constexpr int START_SECONDS = 3; // not measured
constexpr qint64 LIMIT_MS = 120'000;
constexpr int SLICES = 12;
constexpr int SPACING = 4;

// Of all threads, in the program and in the system.
double processorSeconds()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// How long a message to the window's thread waits: another thread sends one every few milliseconds.
class HoldUps : public QObject {
public:
    HoldUps() : thread_([this] { send(); }) {}

    ~HoldUps() override
    {
        ending_ = true;
        thread_.join();
    }

    void clear()
    {
        times_.clear();
    }

    void print(const char* what)
    {
        std::ranges::sort(times_);
        const auto place = static_cast<std::size_t>(static_cast<double>(times_.size() - 1) * 0.999);
        std::printf("%-10s %6zu messages; median %.1f ms, 99.9th percentile %.1f ms, longest %.1f ms\n", what,
                    times_.size(), times_[times_.size() / 2], times_[place], times_.back());
    }

private:
    void send()
    {
        while (!ending_) {
            QElapsedTimer time;
            time.start();
            QMetaObject::invokeMethod(
                this, [this, time] { times_.push_back(static_cast<double>(time.nsecsElapsed()) * 1e-6); },
                Qt::QueuedConnection);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

    std::vector<double> times_; // milliseconds; of the window's thread
    std::atomic<bool> ending_ = false;
    std::thread thread_; // the last to be made
};

void spinFor(int seconds)
{
    QEventLoop loop;
    QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
    loop.exec();
}

void await(const char* what, const std::function<bool()>& condition)
{
    QElapsedTimer time;
    time.start();
    while (!condition()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (time.elapsed() > LIMIT_MS) {
            std::fprintf(stderr, "viewer_figures: %s did not come\n", what);
            std::exit(1);
        }
    }
}

// A window on one source for as long as the object lives.
class Viewer {
public:
    explicit Viewer(const Source& source)
        : settings_(folder_.filePath("settings.ini"), QSettings::IniFormat),
          window_([source] { return std::vector{source}; }, {}, settings_)
    {
        window_.resize(SIZE);
        window_.show();
        await("the first frame", [this] { return tap().frameCount() > 0; });
        spinFor(START_SECONDS);
    }

    ~Viewer()
    {
        bool hasClosed = false;
        QObject::connect(&window_, &MainWindow::hasClosed, [&] { hasClosed = true; });
        window_.session().shutDown();
        await("the end", [&] { return hasClosed; });
    }

    Viewer(const Viewer&) = delete;
    Viewer& operator=(const Viewer&) = delete;

    FrameTap& tap()
    {
        return window_.session().source().tap();
    }

    // Through the session, which does not ask what to do with an unsaved result.
    template <class Command>
    void run(Command command)
    {
        command(window_.session());
        await("the end of a command", [this] { return !window_.session().isBusy(); });
    }

private:
    QTemporaryDir folder_;
    QSettings settings_;
    MainWindow window_;
};

// The camera alone, its frames thrown away: percent of a processor.
double shareOfCamera(const std::string& pipeline, int seconds)
{
    cameras::Camera camera(pipeline);
    camera.start([](const cameras::Frame&) {}, {});
    std::this_thread::sleep_for(std::chrono::seconds(START_SECONDS));
    const double before = processorSeconds();
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    return (processorSeconds() - before) / seconds * 100;
}

void measureView(const char* size, int framesPerSecond, int seconds)
{
    const QString pipeline =
        QString("videotestsrc is-live=true pattern=blue ! video/x-raw,format=BGR,%1,framerate=%2/1")
            .arg(size)
            .arg(framesPerSecond);
    const double camera = shareOfCamera(pipeline.toStdString(), seconds);
    Viewer viewer(cameraSource(pipeline, "test picture"));
    const double before = processorSeconds();
    const std::uint64_t frames = viewer.tap().frameCount();
    const std::uint64_t dropped = viewer.tap().droppedCount();
    spinFor(seconds);
    std::printf("%s at %d: %.0f %% of a processor, %.0f %% of it the camera's; %llu frames, %llu of them not shown\n",
                size, framesPerSecond, (processorSeconds() - before) / seconds * 100, camera,
                static_cast<unsigned long long>(viewer.tap().frameCount() - frames),
                static_cast<unsigned long long>(viewer.tap().droppedCount() - dropped));
}

void measureHoldUps(int times)
{
    Viewer viewer(virtualSource());
    HoldUps holdUps;
    const auto measure = [&](const char* name, const std::function<void(Session&)>& command) {
        holdUps.clear();
        for (int i = 0; i < times; ++i)
            viewer.run(command);
        holdUps.print(name);
    };
    measure("autofocus", [](Session& session) { session.focus(); });
    measure("stack", [](Session& session) { session.capture(planAround(SLICES, SPACING, session.magnification())); });
    measure("fusion", [](Session& session) { session.fuse(); });
}

double residentMegabytes()
{
    std::ifstream statistics("/proc/self/statm");
    long long pages = 0;
    statistics >> pages >> pages;
    return static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE)) * 1e-6;
}

// Focus, stack and fusion over and over; a line every minute.
void watchMemory(int minutes)
{
    Viewer viewer(virtualSource());
    QElapsedTimer time;
    time.start();
    int rounds = 0;
    for (int minute = 1; minute <= minutes; ++minute) {
        while (time.elapsed() < minute * 60'000LL) {
            viewer.run([](Session& session) { session.focus(); });
            viewer.run([](Session& session) { session.capture(planAround(SLICES, SPACING, session.magnification())); });
            viewer.run([](Session& session) { session.fuse(); });
            ++rounds;
        }
        std::printf("%3d minutes, %4d rounds: %.0f MB\n", minute, rounds, residentMegabytes());
        std::fflush(stdout);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    if (argc > 2 && std::string_view(argv[1]) == "--memory") {
        watchMemory(std::atoi(argv[2]));
        return 0;
    }
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 60;
    measureView("width=1280,height=960", 30, seconds);
    measureView("width=2592,height=1944", 15, seconds);
    measureHoldUps(std::max(1, seconds / 6));
    return 0;
}
