// SPDX-License-Identifier: GPL-2.0-or-later
// Prints what a camera's frames cost on their way to tesmor_video: lost frames, processor time, delay.
// ./bench/cameras runs it.
#include "cameras/camera.h"
#include "tesmor.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace tesmor::cameras;
using Milliseconds = std::chrono::duration<double, std::milli>;

// Of all threads, in the program and in the system.
double processorSeconds()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

struct Figures {
    std::mutex mutex;
    std::vector<double> delays; // milliseconds from the exposure of a frame to the call of tesmor_video
    std::uint64_t first = 0, last = 0;
    int width = 0, height = 0;

    void take(const Frame& frame)
    {
        const double delay = Milliseconds(Clock::now() - frame.time).count();
        tesmor_video(frame.pixels, frame.width, frame.height);
        const std::lock_guard lock(mutex);
        if (delays.empty())
            first = frame.number;
        last = frame.number;
        width = frame.width;
        height = frame.height;
        delays.push_back(delay);
    }
};

void measure(const std::string& name, int seconds)
{
    Figures figures;
    Camera camera(name);
    double before = 0;
    camera.start([&](const Frame& frame) { figures.take(frame); },
                 [](CameraEvent, const std::string& text) { std::printf("%s\n", text.c_str()); });
    std::this_thread::sleep_for(std::chrono::seconds(2)); // the start is not measured
    {
        const std::lock_guard lock(figures.mutex);
        figures.delays.clear();
        before = processorSeconds();
    }
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    camera.stop();
    const double processor = processorSeconds() - before;
    std::ranges::sort(figures.delays);
    const std::size_t count = figures.delays.size();
    if (count == 0)
        return static_cast<void>(std::printf("no frames\n"));
    std::printf("%d x %d: %zu frames in %d s, %llu lost; processor %.1f s, %.1f %% of a core, %.2f ms a frame; "
                "exposure to tesmor_video: median %.2f ms, 99 %% below %.2f ms, worst %.2f ms\n",
                figures.width, figures.height, count, seconds,
                static_cast<unsigned long long>(figures.last - figures.first + 1 - count), processor,
                100 * processor / seconds, 1000 * processor / static_cast<double>(count), figures.delays[count / 2],
                figures.delays[count * 99 / 100], figures.delays.back());
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "Usage: camera_figures CAMERA SECONDS\n");
        return 2;
    }
    try {
        measure(argv[1], std::atoi(argv[2]));
    } catch (const CameraError& error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
}
