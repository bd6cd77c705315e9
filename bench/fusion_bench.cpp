// The fusion of 8 images against the transforms that it cannot do without.
#include "fusion/sharpen_engine.h"
#include "platform/memory.h"
#include "ratio.h"
#include "stack.h"

#include <random>

namespace tesmor::bench {

namespace {

constexpr std::uint32_t IMAGES = 8;

// The transforms alone: three colours, forward and back, for every image and for the mean.
class BareTransforms {
public:
    BareTransforms(int width, int height) : width_(width), height_(height)
    {
        for (fftw_complex** array : {&plane_, &spectrum_}) {
            *array = fftw_alloc_complex(count());
            platform::preferLargePages(*array, count() * sizeof(fftw_complex));
        }
    }
    ~BareTransforms()
    {
        forget();
        fftw_free(plane_);
        fftw_free(spectrum_);
    }
    BareTransforms(const BareTransforms&) = delete;
    BareTransforms& operator=(const BareTransforms&) = delete;

    void plan()
    {
        forward_ = fftw_plan_dft_2d(height_, width_, plane_, spectrum_, FFTW_FORWARD, FFTW_MEASURE);
        backward_ = fftw_plan_dft_2d(height_, width_, spectrum_, plane_, FFTW_BACKWARD, FFTW_MEASURE);
    }

    void forget()
    {
        fftw_destroy_plan(forward_);
        fftw_destroy_plan(backward_);
        forward_ = backward_ = nullptr;
    }

    // With noise, as an image has. Unnormalised transforms let the values grow; from these they stay finite for a run.
    void fill()
    {
        std::minstd_rand random;
        for (std::size_t i = 0; i < count(); ++i) {
            plane_[i][0] = static_cast<double>(random() % 256);
            plane_[i][1] = 0.0;
        }
    }

    void run() const
    {
        for (std::uint32_t i = 0; i < 3 * (IMAGES + 1); ++i) {
            fftw_execute_dft(forward_, plane_, spectrum_);
            fftw_execute_dft(backward_, spectrum_, plane_);
        }
    }

private:
    std::size_t count() const
    {
        return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    }

    int width_;
    int height_;
    fftw_complex* plane_;
    fftw_complex* spectrum_;
    fftw_plan forward_ = nullptr;
    fftw_plan backward_ = nullptr;
};

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
    BareTransforms transforms(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    transforms.plan();
    stack.fuse();
    const Figure figure{"fusion of 8 images, " + sizeText(state) + ", planner warm", "54 transforms", aim(state)};
    compare<ProcessorTime>(
        state, figure, [&] { transforms.fill(); }, [&] { transforms.run(); }, [&] { stack.fuse(); });
}

void fusionFirst(benchmark::State& state)
{
    Stack stack(static_cast<std::uint32_t>(state.range(0)), static_cast<std::uint32_t>(state.range(1)), IMAGES);
    BareTransforms transforms(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    const Figure figure{"fusion of 8 images, " + sizeText(state) + ", first run", "two plannings, 54 transforms",
                        aim(state)};
    const auto forgetAll = [&] {
        transforms.forget();
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
