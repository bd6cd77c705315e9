// SPDX-License-Identifier: GPL-2.0-or-later
// The focus measure against the additions whose order it must keep.
#include "measure/focus_measure.h"
#include "ratio.h"

#include <random>

namespace tesmor::bench {

namespace {

// Two sums, one after the other, each addition waiting for the one before it.
void dependentAdditions(std::int64_t count, double value)
{
    for (int pass = 0; pass < 2; ++pass) {
        double sum = 0.0;
        for (std::int64_t i = 0; i < count; ++i)
            sum += value;
        benchmark::DoNotOptimize(sum);
    }
}

void focusMeasure(benchmark::State& state)
{
    const auto width = static_cast<std::int32_t>(state.range(0));
    const auto height = static_cast<std::int32_t>(state.range(1));
    const bool high = state.range(2) == 40;
    const LumaTables tables;
    std::minstd_rand random;
    std::vector<std::uint8_t> frame(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    for (auto& byte : frame)
        byte = static_cast<std::uint8_t>(random() % 200);

    const std::int64_t region = std::int64_t{width / (high ? 2 : 4)} * (height / (high ? 2 : 4));
    const int repeats = static_cast<int>(2'000'000 / region) + 1;
    const Figure figure{"focus measure, " + std::to_string(width) + " × " + std::to_string(height) +
                            (high ? ", half" : ", quarter") + " of each side",
                        "two chains of additions", 1.10};
    compare<ProcessorTime>(
        state, figure, [] {},
        [&] {
            double value = 100.0;
            benchmark::DoNotOptimize(value);
            for (int i = 0; i < repeats; ++i)
                dependentAdditions(region, value);
        },
        [&] {
            for (int i = 0; i < repeats; ++i)
                benchmark::DoNotOptimize(
                    measureFocus(frame.data(), width, height, static_cast<std::uint16_t>(state.range(2)), tables));
        },
        repeats);
}

} // namespace

BENCHMARK(focusMeasure)
    ->ArgsProduct({{640}, {480}, {10, 40}})
    ->ArgsProduct({{1280}, {960}, {10, 40}})
    ->ArgsProduct({{2592}, {1944}, {10, 40}})
    ->Iterations(51)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace tesmor::bench
