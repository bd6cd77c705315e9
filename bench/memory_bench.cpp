// SPDX-License-Identifier: GPL-2.0-or-later
// The peak memory of a fusion against the arrays that must be there at the same time. Linux: reads the kernel's
// account.
#include "figures.h"
#include "stack.h"

#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <fstream>
#include <malloc.h>
#include <stdexcept>

namespace tesmor::bench {

namespace {

// A line of the process's own status, in bytes.
double statusBytes(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        double kilobytes = 0;
        if (word == name + ":" && status >> kilobytes)
            return kilobytes * 1024.0;
    }
    throw std::runtime_error("no " + name + " in /proc/self/status");
}

double bytesInUseAfterReset()
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5"; // the peak starts anew from what is in use
    return statusBytes("VmRSS");
}

// For every pixel: half a spectrum of complex numbers and its gain, one weight, the sums of weights and of three
// colours.
double leastBytes(double pixels)
{
    return pixels * (16 / 2 + 8 / 2 + 4 + 4 + 3 * 4);
}

std::string megabytes(double bytes)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f MB", bytes / 1e6);
    return text;
}

void fusionMemory(benchmark::State& state)
{
    const auto width = static_cast<double>(state.range(0));
    const auto height = static_cast<double>(state.range(1));
    Stack stack(static_cast<std::uint32_t>(state.range(0)), static_cast<std::uint32_t>(state.range(1)), 2);
    double peak = 0.0;
    for (auto iteration : state) {
        (void)iteration;
        fftw_forget_wisdom();
        const double before = bytesInUseAfterReset();
        stack.fuse();
        peak = statusBytes("VmHWM") - before;
    }
    const double floor = leastBytes(width * height);
    state.counters["ratio"] = peak / floor;
    addFigure({"peak memory of a fusion, " + std::to_string(state.range(0)) + " × " + std::to_string(state.range(1)),
               "the arrays at their least", 1.15},
              megabytes(peak), megabytes(floor), peak / floor);
}

} // namespace

BENCHMARK(fusionMemory)->Args({640, 480})->Args({2592, 1944})->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace tesmor::bench
