// SPDX-License-Identifier: GPL-2.0-or-later
// The fusion of 8 images against the transforms that it cannot do without.
#include "bare_transforms.h"
#include "ratio.h"
#include "stack.h"

namespace tesmor::bench {

namespace {

constexpr std::uint32_t IMAGES = 8;

std::string sizeText(const benchmark::State& state)
{
    return std::to_string(state.range(0)) + " × " + std::to_string(state.range(1));
}

double aim(const benchmark::State& state)
{
    return static_cast<double>(state.range(2)) / 100.0;
}

template <class Transforms>
void compareWarm(benchmark::State& state, const char* floor)
{
    Stack stack(static_cast<std::uint32_t>(state.range(0)), static_cast<std::uint32_t>(state.range(1)), IMAGES);
    Transforms transforms(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), IMAGES);
    transforms.plan();
    stack.fuse();
    const Figure figure{"fusion of 8 images, " + sizeText(state) + ", planner warm", floor, aim(state)};
    compare<ProcessorTime>(
        state, figure, [&] { transforms.fill(); }, [&] { transforms.run(); }, [&] { stack.fuse(); });
}

void fusionWarm(benchmark::State& state)
{
    compareWarm<BareTransforms>(state, "its transforms alone");
}

void fusionWarmToWhole(benchmark::State& state)
{
    compareWarm<WholeTransforms>(state, "27 two-dimensional transforms and back");
}

void fusionFirst(benchmark::State& state)
{
    Stack stack(static_cast<std::uint32_t>(state.range(0)), static_cast<std::uint32_t>(state.range(1)), IMAGES);
    BareTransforms transforms(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), IMAGES);
    const Figure figure{"fusion of 8 images, " + sizeText(state) + ", first run", "planning, its transforms alone",
                        aim(state)};
    const auto forgetAll = [&] {
        transforms.forgetPlans();
        transforms.fill();
        fftw_forget_wisdom();
    };
    const auto planAndRun = [&] {
        transforms.plan();
        transforms.run();
    };
    compare<ProcessorTime>(state, figure, forgetAll, planAndRun, [&] { stack.fuse(); });
}

// Pixels, aim in hundredths.
void warmSizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Args({640, 480, 140})->Args({1280, 960, 125})->Args({2592, 1944, 125});
    benchmark->Iterations(9)->UseManualTime()->Unit(benchmark::kMillisecond);
}

void firstSizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Args({640, 480, 120})->Args({1280, 960, 120})->Args({2592, 1944, 120});
    benchmark->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK(fusionWarm)->Apply(warmSizes);
BENCHMARK(fusionWarmToWhole)->Apply(warmSizes);
BENCHMARK(fusionFirst)->Apply(firstSizes);

} // namespace tesmor::bench
