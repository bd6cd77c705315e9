// SPDX-License-Identifier: GPL-2.0-or-later
#include "fusion/sharpen_engine.h"

#include "fusion/cpu_clones.h"

#include <algorithm>
#include <cmath>

namespace tesmor {

namespace {

constexpr double PI = 3.141592653589793;
constexpr double HALF_PI = 1.5707963267948966;
constexpr double LEAST_USABLE_GAIN = 0.0009765625; // 2^-10

// What FFTW takes for itself while it plans and transforms, at most: tables for long sides that are prime, and buffers.
constexpr std::size_t fftwBytes(std::int32_t width, std::int32_t height) noexcept
{
    return (std::size_t{2} << 20) + 192 * (static_cast<std::size_t>(width) + static_cast<std::size_t>(height));
}

// How far beyond the cutoff the frequencies of a row lie, a group from column x on; v and u are 1 at zero frequency and
// 0 at the highest.
void distancesBeyond(double cutoff, double v, double columnStep, std::int32_t x, double* distances) noexcept
{
    const double rootOfTwo = std::sqrt(2.0);
    for (std::int32_t i = 0; i < COLUMN_GROUP; ++i) {
        const double u = 1.0 - (x + i) * columnStep;
        distances[i] = std::sqrt(v * v + u * u) / rootOfTwo - cutoff;
    }
}

TESMOR_CPU_CLONES void multiply(fftw_complex* columns, std::int32_t pitch, const double* gain, double scale,
                                std::int32_t height) noexcept
{
    for (std::int32_t y = 0; y < height; ++y, columns += pitch, gain += COLUMN_GROUP) {
        for (std::int32_t i = 0; i < COLUMN_GROUP; ++i) {
            columns[i][0] = columns[i][0] * scale * gain[i];
            columns[i][1] = columns[i][1] * scale * gain[i];
        }
    }
}

} // namespace

bool SharpenEngine::prepare(std::int32_t width, std::int32_t height) noexcept
{
    if (width == width_ && height == height_)
        return true;
    release();
    width_ = width;
    height_ = height;
    if (obtainArrays() && makePlans())
        return true;
    release();
    return false;
}

bool SharpenEngine::obtainArrays() noexcept
{
    const auto height = static_cast<std::size_t>(height_);
    row_ = makePageArray<double>(static_cast<std::size_t>(width_));
    spectrum_ = makePageArray<fftw_complex>(static_cast<std::size_t>(pitch()) * height);
    gain_ = makePageArray<double>(static_cast<std::size_t>(groupCount() * COLUMN_GROUP) * height);
    return row_ && spectrum_ && gain_;
}

// FFTW ends the process when it cannot get memory of its own, so there must be some to spare. FFTW_MEASURE overwrites
// the arrays that it plans with; nothing is in them yet.
bool SharpenEngine::makePlans() noexcept
{
    if (!makePageArray<char>(fftwBytes(width_, height_)))
        return false;
    const auto planGroup = [this](int sign) {
        return FftwPlan(fftw_plan_many_dft(1, &height_, COLUMN_GROUP, spectrum_.get(), nullptr, pitch(), 1,
                                           spectrum_.get(), nullptr, pitch(), 1, sign, FFTW_MEASURE));
    };
    forwardRow_.reset(fftw_plan_dft_r2c_1d(width_, row_.get(), spectrum_.get(), FFTW_MEASURE));
    inverseRow_.reset(fftw_plan_dft_c2r_1d(width_, spectrum_.get(), row_.get(), FFTW_MEASURE));
    forwardGroup_ = planGroup(FFTW_FORWARD);
    inverseGroup_ = planGroup(FFTW_BACKWARD);
    return forwardRow_ && inverseRow_ && forwardGroup_ && inverseGroup_;
}

void SharpenEngine::release() noexcept
{
    width_ = 0;
    height_ = 0;
    gain_.reset();
    spectrum_.reset();
    row_.reset();
    forwardRow_.reset();
    inverseRow_.reset();
    forwardGroup_.reset();
    inverseGroup_.reset();
}

// A raised sine over the distance r from the highest frequency: g = sin(t / rolloff * pi/2 - pi) + 1, t = r - cutoff
// limited to 0..1. Most frequencies lie below the cutoff and share the value at t = 0.
void SharpenEngine::buildGain() noexcept
{
    const auto gainAt = [this](double t) {
        if (t > rolloff_)
            return 0.0;
        return std::max(std::sin(t / rolloff_ * HALF_PI - PI) + 1.0, 0.0);
    };
    const double flatGain = gainAt(0.0);
    const double columnStep = 2.0 / width_;
    const double rowStep = 2.0 / height_;
    double* gains = gain_.get();
    for (std::int32_t x = 0; x < groupCount() * COLUMN_GROUP; x += COLUMN_GROUP) {
        for (std::int32_t y = 0; y < height_; ++y, gains += COLUMN_GROUP) {
            distancesBeyond(cutoff_, 1.0 - y * rowStep, columnStep, x, gains);
            std::transform(gains, gains + COLUMN_GROUP, gains,
                           [&](double t) { return t <= 0.0 ? flatGain : gainAt(std::min(t, 1.0)); });
        }
    }
}

void SharpenEngine::forwardRow(std::int32_t y) noexcept
{
    fftw_execute_dft_r2c(forwardRow_.get(), row_.get(), spectrumRow(y));
}

void SharpenEngine::boost() noexcept
{
    const double scale = gain_[0] > LEAST_USABLE_GAIN ? 1.0 / gain_[0] : 1.0;
    const double* gains = gain_.get();
    for (std::int32_t x = 0; x < groupCount() * COLUMN_GROUP;
         x += COLUMN_GROUP, gains += static_cast<std::ptrdiff_t>(height_) * COLUMN_GROUP) {
        fftw_complex* columns = spectrum_.get() + x;
        fftw_execute_dft(forwardGroup_.get(), columns, columns);
        multiply(columns, pitch(), gains, scale, height_);
        fftw_execute_dft(inverseGroup_.get(), columns, columns);
    }
}

void SharpenEngine::inverseRow(std::int32_t y) noexcept
{
    fftw_execute_dft_c2r(inverseRow_.get(), spectrumRow(y), row_.get());
}

} // namespace tesmor
