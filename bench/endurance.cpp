// SPDX-License-Identifier: GPL-2.0-or-later
// Autofocus runs and stacks by the thousand, on the virtual microscope with a motor that takes no time: what the
// process holds stays flat. endurance [RUNS], 10000 by default; see tools/endurance.
#include "microscope/virtual_microscope.h"
#include "support/process_figures.h"
#include "tesmor.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <thread>

using namespace tesmor;
using test::ProcessFigures;

namespace {

constexpr std::uint16_t SLICES = 5;
constexpr long MOST_GROWTH_KILOBYTES = 1024; // after the first tenth, which warms the process up

class Outcome {
public:
    static void onDone(void* context, std::int32_t result)
    {
        static_cast<Outcome*>(context)->promise_.set_value(result);
    }

    static void onFrame(const std::uint8_t* image, std::int32_t, std::int32_t, void* context, std::int32_t result)
    {
        if (!image)
            onDone(context, result);
    }

    std::int32_t wait()
    {
        return promise_.get_future().get();
    }

private:
    std::promise<std::int32_t> promise_;
};

bool autofocusAndStack()
{
    Outcome focused;
    tesmor_start(40, Outcome::onDone, &focused);
    if (focused.wait() != TESMOR_SUCCESS)
        return false;
    Outcome captured;
    tesmor_startif(40, SLICES, 1, Outcome::onFrame, &captured, 0);
    return captured.wait() == TESMOR_STACK_DONE;
}

// Once the drive's link has gone from both ends, which takes a moment after the last report.
ProcessFigures figuresAtRest(long descriptors)
{
    tesmor_reset();
    for (int i = 0; i < 10'000 && ProcessFigures::now().descriptors != descriptors; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return ProcessFigures::now();
}

} // namespace

int main(int argc, char** argv)
{
    const long runs = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 10'000;
    if (runs < 10) {
        std::fprintf(stderr, "usage: %s [RUNS], at least 10\n", argv[0]);
        return 2;
    }
    microscope::Settings settings;
    settings.width = settings.height = 64;
    settings.magnification = 40;
    settings.framesPerSecond = 5000;
    settings.motor.stepsPerSecond = 0;
    microscope::VirtualMicroscope microscope(settings);
    microscope.start([](const microscope::Frame& frame) { tesmor_video(frame.pixels, frame.width, frame.height); });
    tesmor_init();

    std::printf("%10s %10s %12s %10s\n", "runs", "threads", "descriptors", "memory kB");
    ProcessFigures warm = ProcessFigures::now();
    for (long run = 1; run <= runs; ++run) {
        microscope.setPosition(std::llround(microscope.bestFocus()) + run % 2000 - 1000);
        if (!autofocusAndStack()) {
            std::fprintf(stderr, "run %ld failed\n", run);
            return 1;
        }
        if (run % (runs / 10) != 0)
            continue;
        const auto now = figuresAtRest(warm.descriptors);
        std::printf("%10ld %10ld %12ld %10ld\n", run, now.threads, now.descriptors, now.residentKilobytes);
        std::fflush(stdout);
        if (run == runs / 10)
            warm.residentKilobytes = now.residentKilobytes;
        if (now.threads != warm.threads || now.descriptors != warm.descriptors ||
            now.residentKilobytes > warm.residentKilobytes + MOST_GROWTH_KILOBYTES) {
            std::fprintf(stderr, "not flat\n");
            return 1;
        }
    }
    tesmor_fini();
    return 0;
}
