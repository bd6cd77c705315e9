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

constexpr std::int32_t COLUMNS_IN_HAND = 8;

// How far beyond the cutoff each frequency of a column lies; u and v are 1 at zero frequency and 0 at the highest.
TESMOR_CPU_CLONES void distancesBeyond(double cutoff, double u, double rowStep, std::int32_t height,
                                       double* distances) noexcept
{
    const double rootOfTwo = std::sqrt(2.0);
    for (std::int32_t y = 0; y < height; ++y) {
        const double v = 1.0 - y * rowStep;
        distances[y] = std::sqrt(v * v + u * u) / rootOfTwo - cutoff;
    }
}

TESMOR_CPU_CLONES void multiply(fftw_complex* column, const double* gain, double scale, std::int32_t height) noexcept
{
    for (std::int32_t y = 0; y < height; ++y) {
        column[y][0] = column[y][0] * scale * gain[y];
        column[y][1] = column[y][1] * scale * gain[y];
    }
}

void copy(const fftw_complex& from, fftw_complex& to) noexcept
{
    to[0] = from[0];
    to[1] = from[1];
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
    const auto frequencies = static_cast<std::size_t>(spectrumWidth()) * static_cast<std::size_t>(height_);
    row_ = makePageArray<double>(static_cast<std::size_t>(width_));
    columns_ = makePageArray<fftw_complex>(static_cast<std::size_t>(columnPitch()) * COLUMNS_IN_HAND);
    columnSpectrum_ = makePageArray<fftw_complex>(static_cast<std::size_t>(height_));
    spectrum_ = makePageArray<fftw_complex>(frequencies);
    gain_ = makePageArray<double>(frequencies);
    return row_ && columns_ && columnSpectrum_ && spectrum_ && gain_;
}

// FFTW ends the process when it cannot get memory of its own, so there must be some to spare. FFTW_MEASURE overwrites
// the arrays that it plans with; nothing is in them yet.
bool SharpenEngine::makePlans() noexcept
{
    if (!makePageArray<char>(fftwBytes(width_, height_)))
        return false;
    fftw_complex* column = columns_.get();
    forwardRow_.reset(fftw_plan_dft_r2c_1d(width_, row_.get(), spectrum_.get(), FFTW_MEASURE));
    inverseRow_.reset(fftw_plan_dft_c2r_1d(width_, spectrum_.get(), row_.get(), FFTW_MEASURE));
    fftw_complex* transformed = columnSpectrum_.get();
    forwardColumn_.reset(fftw_plan_dft_1d(height_, column, transformed, FFTW_FORWARD, FFTW_MEASURE));
    inverseColumn_.reset(fftw_plan_dft_1d(height_, transformed, column, FFTW_BACKWARD, FFTW_MEASURE));
    return forwardRow_ && inverseRow_ && forwardColumn_ && inverseColumn_;
}

void SharpenEngine::release() noexcept
{
    width_ = 0;
    height_ = 0;
    gain_.reset();
    spectrum_.reset();
    columnSpectrum_.reset();
    columns_.reset();
    row_.reset();
    forwardRow_.reset();
    inverseRow_.reset();
    forwardColumn_.reset();
    inverseColumn_.reset();
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
    double* column = gain_.get();
    for (std::int32_t x = 0; x < spectrumWidth(); ++x, column += height_) {
        distancesBeyond(cutoff_, 1.0 - x * columnStep, rowStep, height_, column);
        std::transform(column, column + height_, column,
                       [&](double t) { return t <= 0.0 ? flatGain : gainAt(std::min(t, 1.0)); });
    }
}

void SharpenEngine::forwardRow(std::int32_t y) noexcept
{
    fftw_execute_dft_r2c(forwardRow_.get(), row_.get(), spectrumRow(y));
}

void SharpenEngine::boost() noexcept
{
    const double scale = gain_[0] > LEAST_USABLE_GAIN ? 1.0 / gain_[0] : 1.0;
    const double* gain = gain_.get();
    for (std::int32_t x = 0; x < spectrumWidth(); x += COLUMNS_IN_HAND) {
        const std::int32_t count = std::min(COLUMNS_IN_HAND, spectrumWidth() - x);
        takeColumns(x, count);
        fftw_complex* column = columns_.get();
        for (std::int32_t i = 0; i < count; ++i, column += columnPitch(), gain += height_) {
            fftw_execute_dft(forwardColumn_.get(), column, columnSpectrum_.get());
            multiply(columnSpectrum_.get(), gain, scale, height_);
            fftw_execute_dft(inverseColumn_.get(), columnSpectrum_.get(), column);
        }
        putColumns(x, count);
    }
}

void SharpenEngine::takeColumns(std::int32_t x, std::int32_t count) noexcept
{
    for (std::int32_t y = 0; y < height_; ++y) {
        const fftw_complex* from = spectrumRow(y) + x;
        fftw_complex* to = columns_.get() + y;
        for (std::int32_t i = 0; i < count; ++i, to += columnPitch())
            copy(from[i], *to);
    }
}

void SharpenEngine::putColumns(std::int32_t x, std::int32_t count) noexcept
{
    for (std::int32_t y = 0; y < height_; ++y) {
        const fftw_complex* from = columns_.get() + y;
        fftw_complex* to = spectrumRow(y) + x;
        for (std::int32_t i = 0; i < count; ++i, from += columnPitch())
            copy(*from, to[i]);
    }
}

void SharpenEngine::inverseRow(std::int32_t y) noexcept
{
    fftw_execute_dft_c2r(inverseRow_.get(), spectrumRow(y), row_.get());
}

} // namespace tesmor
