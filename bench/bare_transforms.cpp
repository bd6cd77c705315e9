#include "bare_transforms.h"

#include "platform/memory.h"

#include <random>

namespace tesmor::bench {

BareTransforms::BareTransforms(int width, int height, int images) : width_(width), height_(height), images_(images)
{
    for (fftw_complex** array : {&plane_, &spectrum_}) {
        *array = fftw_alloc_complex(pixelCount());
        platform::preferLargePages(*array, pixelCount() * sizeof(fftw_complex));
    }
}

BareTransforms::~BareTransforms()
{
    forgetPlans();
    fftw_free(plane_);
    fftw_free(spectrum_);
}

void BareTransforms::plan()
{
    forward_ = fftw_plan_dft_2d(height_, width_, plane_, spectrum_, FFTW_FORWARD, FFTW_MEASURE);
    backward_ = fftw_plan_dft_2d(height_, width_, spectrum_, plane_, FFTW_BACKWARD, FFTW_MEASURE);
}

void BareTransforms::forgetPlans()
{
    fftw_destroy_plan(forward_);
    fftw_destroy_plan(backward_);
    forward_ = backward_ = nullptr;
}

void BareTransforms::fill()
{
    std::minstd_rand random;
    for (std::size_t i = 0; i < pixelCount(); ++i) {
        plane_[i][0] = static_cast<double>(random() % 256);
        plane_[i][1] = 0.0;
    }
}

void BareTransforms::run() const
{
    for (int i = 0; i < 3 * (images_ + 1); ++i) {
        fftw_execute_dft(forward_, plane_, spectrum_);
        fftw_execute_dft(backward_, spectrum_, plane_);
    }
}

std::size_t BareTransforms::pixelCount() const
{
    return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
}

} // namespace tesmor::bench
