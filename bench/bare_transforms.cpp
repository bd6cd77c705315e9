// SPDX-License-Identifier: GPL-2.0-or-later
#include "bare_transforms.h"

#include <algorithm>
#include <random>

namespace tesmor::bench {

namespace {

constexpr int GROUP = 8; // columns that FFTW transforms with one call

std::size_t product(int width, int height)
{
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

void fillWithNoise(double* values, std::size_t count)
{
    std::minstd_rand random;
    std::generate_n(values, count, [&] { return static_cast<double>(random() % 256); });
}

int transformCount(int images)
{
    return 3 * (images + 1);
}

} // namespace

BareTransforms::BareTransforms(int width, int height, int images)
    : width_(width), height_(height), images_(images), frequencies_(width / 2 + 1),
      row_(makePageArray<double>(product(width, 1))), column_(makePageArray<fftw_complex>(product(height, 1))),
      columnSpectrum_(makePageArray<fftw_complex>(product(height, 1))),
      columnBack_(makePageArray<fftw_complex>(product(height, 1))),
      spectrum_(makePageArray<fftw_complex>(product(frequencies_, height)))
{
}

BareTransforms::~BareTransforms()
{
    forgetPlans();
}

void BareTransforms::plan()
{
    fftw_complex* transformed = columnSpectrum_.get();
    forwardRow_ = fftw_plan_dft_r2c_1d(width_, row_.get(), spectrum_.get(), FFTW_MEASURE);
    inverseRow_ = fftw_plan_dft_c2r_1d(width_, spectrum_.get(), row_.get(), FFTW_MEASURE);
    forwardColumn_ = fftw_plan_dft_1d(height_, column_.get(), transformed, FFTW_FORWARD, FFTW_MEASURE);
    inverseColumn_ = fftw_plan_dft_1d(height_, transformed, columnBack_.get(), FFTW_BACKWARD, FFTW_MEASURE);
}

void BareTransforms::forgetPlans()
{
    for (fftw_plan* plan : {&forwardRow_, &inverseRow_, &forwardColumn_, &inverseColumn_}) {
        fftw_destroy_plan(*plan);
        *plan = nullptr;
    }
}

void BareTransforms::fill()
{
    fillWithNoise(row_.get(), product(width_, 1));
    fillWithNoise(column_.get()[0], 2 * product(height_, 1));
}

void BareTransforms::run() const
{
    for (int i = 0; i < transformCount(images_); ++i) {
        for (int y = 0; y < height_; ++y)
            fftw_execute_dft_r2c(forwardRow_, row_.get(), spectrum_.get() + product(frequencies_, y));
        for (int x = 0; x < frequencies_; ++x) {
            fftw_execute(forwardColumn_);
            fftw_execute(inverseColumn_);
        }
        for (int y = 0; y < height_; ++y)
            fftw_execute_dft_c2r(inverseRow_, spectrum_.get() + product(frequencies_, y), row_.get());
    }
}

WholeTransforms::WholeTransforms(int width, int height, int images)
    : width_(width), height_(height), images_(images), plane_(makePageArray<double>(product(width, height))),
      spectrum_(makePageArray<fftw_complex>(product(width / 2 + 1, height)))
{
}

WholeTransforms::~WholeTransforms()
{
    forgetPlans();
}

void WholeTransforms::plan()
{
    forward_ = fftw_plan_dft_r2c_2d(height_, width_, plane_.get(), spectrum_.get(), FFTW_MEASURE);
    inverse_ = fftw_plan_dft_c2r_2d(height_, width_, spectrum_.get(), plane_.get(), FFTW_MEASURE);
}

void WholeTransforms::forgetPlans()
{
    fftw_destroy_plan(forward_);
    fftw_destroy_plan(inverse_);
    forward_ = inverse_ = nullptr;
}

void WholeTransforms::fill()
{
    fillWithNoise(plane_.get(), product(width_, height_));
}

void WholeTransforms::run() const
{
    for (int i = 0; i < transformCount(images_); ++i) {
        fftw_execute(forward_);
        fftw_execute(inverse_);
    }
}

} // namespace tesmor::bench
