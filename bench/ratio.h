// SPDX-License-Identifier: GPL-2.0-or-later
// Times a work against its floor: floor and work alternate, and the figure is the median of the ratios of neighbours,
// so that other programs on the machine, whose load comes and goes, hit both alike.
#pragma once

#include "figures.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>
#include <string>
#include <vector>

namespace tesmor::bench {

// For work of one thread that never waits: what other programs take is not counted.
struct ProcessorTime {
    static double seconds()
    {
        return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
    }
};

// For work that waits.
struct ElapsedTime {
    static double seconds()
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    }
};

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

inline std::string timeText(double seconds)
{
    char text[32];
    const char* const units[] = {"s", "ms", "µs", "ns"};
    int unit = 0;
    for (; unit < 3 && seconds < 1.0; ++unit)
        seconds *= 1000.0;
    std::snprintf(text, sizeof text, "%.3g %s", seconds, units[unit]);
    return text;
}

template <class Clock, class Action>
double timed(Action action)
{
    const double start = Clock::seconds();
    action();
    return Clock::seconds() - start;
}

// Runs floor and work once an iteration of `state`, which must use manual time, and adds the figure.
//   prepare   comes before each of both, untimed
//   repeats   what one call of floor or work does so many times; the table shows the time of one
template <class Clock, class Prepare, class Floor, class Work>
void compare(benchmark::State& state, const Figure& figure, Prepare prepare, Floor floor, Work work,
             double repeats = 1.0)
{
    std::vector<double> floors, works, ratios;
    for (auto iteration : state) {
        (void)iteration;
        prepare();
        floors.push_back(timed<Clock>(floor));
        prepare();
        works.push_back(timed<Clock>(work));
        ratios.push_back(works.back() / floors.back());
        state.SetIterationTime(works.back());
    }
    const double ratio = median(ratios);
    state.counters["ratio"] = ratio;
    addFigure(figure, timeText(median(works) / repeats), timeText(median(floors) / repeats), ratio);
}

} // namespace tesmor::bench
