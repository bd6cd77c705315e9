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

void fusionWarm(benchmark::State& state)
{
    Stack stack(static_cast<std::uint32_t>(state.range(0)), static_cast<std::uint32_t>(state.range(1)), IMAGES);
    BareTransforms transforms(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), IMAGES);
    transforms.plan();
    stack.fuse();
    const Figure figure{"fusion of 8 images, " + sizeText(state) + ", planner warm", "54 transforms", aim(state)};
    compare<ProcessorTime>(
        state, figure, [&] { transforms.fill(); }, [&] { transforms.run(); }, [&] { stack.fuse(); });
}

void fusionFirst(benchmark::State& state)
{
    Stack stack(static_cast<std::uint32_t>(state.range(0)), static_cast<std::uint32_t>(state.range(1)), IMAGES);
    BareTransforms transforms(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), IMAGES);
    const Figure figure{"fusion of 8 images, " + sizeText(state) + ", first run", "two plannings, 54 transforms",
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

} // namespace

BENCHMARK(fusionWarm)->Args({640, 480, 180})->Iterations(15)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(fusionWarm)->Args({1280, 960, 140})->Iterations(9)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(fusionWarm)->Args({2592, 1944, 130})->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(fusionFirst)->Args({640, 480, 120})->Iterations(7)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(fusionFirst)->Args({1280, 960, 120})->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(fusionFirst)->Args({2592, 1944, 120})->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace tesmor::bench
