#include "fusion/sharpen_engine.h"

#include "fusion/cpu_clones.h"
#include "platform/memory.h"

#include <algorithm>
#include <cmath>

namespace tesmor {

namespace {

constexpr double PI = 3.141592653589793;
constexpr double HALF_PI = 1.5707963267948966;
constexpr double LEAST_USABLE_GAIN = 0.0009765625; // 2^-10
constexpr std::size_t FFTW_OWN_BYTES = 8 << 20;
constexpr std::size_t FFTW_OWN_BYTES_PER_PIXEL = 64; // of address space, at most, while it plans odd sizes

ComplexPlane makeComplexPlane(std::size_t count) noexcept
{
    ComplexPlane plane(static_cast<fftw_complex*>(fftw_malloc(count * sizeof(fftw_complex))));
    platform::preferLargePages(plane.get(), count * sizeof(fftw_complex));
    return plane;
}

// FFTW ends the process when it cannot get memory of its own, so there must be some to spare where it may ask for it.
bool canSpare(std::size_t bytes) noexcept
{
    return ComplexPlane(static_cast<fftw_complex*>(fftw_malloc(bytes))) != nullptr;
}

FftwPlan makePlan(std::uint32_t width, std::uint32_t height, fftw_complex* from, fftw_complex* to, int sign) noexcept
{
    const int size[] = {static_cast<int>(height), static_cast<int>(width)};
    return FftwPlan(fftw_plan_many_dft(2, size, 1, from, nullptr, 1, 1, to, nullptr, 1, 1, sign, FFTW_MEASURE));
}

TESMOR_CPU_CLONES void loadBytes(const std::uint8_t* bytes, std::size_t count, fftw_complex* row) noexcept
{
    for (std::size_t x = 0; x < count; ++x) {
        row[x][0] = bytes[3 * x];
        row[x][1] = 0.0;
    }
}

TESMOR_CPU_CLONES void loadValues(const float* values, std::size_t count, fftw_complex* plane) noexcept
{
    for (std::size_t i = 0; i < count; ++i) {
        plane[i][0] = values[i];
        plane[i][1] = 0.0;
    }
}

// How far beyond the cutoff each frequency of a row lies; v and u are 1 at zero frequency and 0 at the highest.
TESMOR_CPU_CLONES void distancesBeyond(double cutoff, double v, double columnStep, std::int32_t width,
                                       double* distances) noexcept
{
    const double rootOfTwo = std::sqrt(2.0);
    for (std::int32_t x = 0; x < width; ++x) {
        const double u = 1.0 - x * columnStep;
        distances[x] = std::sqrt(v * v + u * u) / rootOfTwo - cutoff;
    }
}

TESMOR_CPU_CLONES void multiply(fftw_complex* spectrum, const double* gain, double scale, std::size_t count) noexcept
{
    for (std::size_t i = 0; i < count; ++i) {
        spectrum[i][0] = spectrum[i][0] * scale * gain[i];
        spectrum[i][1] = spectrum[i][1] * scale * gain[i];
    }
}

TESMOR_CPU_CLONES void storeMagnitudes(const fftw_complex* row, double scale, std::size_t count,
                                       std::uint8_t* bytes) noexcept
{
    for (std::size_t x = 0; x < count; ++x) {
        const double rounded = std::sqrt(row[x][0] * row[x][0] + row[x][1] * row[x][1]) * scale + 0.5;
        const double notNegative = rounded > 0.0 ? rounded : 0.0; // also where it is not a number
        bytes[x] = static_cast<std::uint8_t>(static_cast<std::int32_t>(notNegative < 255.0 ? notNegative : 255.0));
    }
}

} // namespace

void SharpenEngine::prepare(std::uint32_t width, std::uint32_t height) noexcept
{
    if (ready_ && width == width_ && height == height_)
        return;
    release();
    width_ = width;
    height_ = height;
    ready_ = obtainArrays() && makePlans() && canSpare(FFTW_OWN_BYTES);
    if (!ready_)
        release();
}

bool SharpenEngine::obtainArrays() noexcept
{
    gain_ = makeZeroedArray<double>(pixelCount());
    plane_ = makeComplexPlane(pixelCount());
    spectrum_ = makeComplexPlane(pixelCount());
    return gain_ && plane_ && spectrum_;
}

// FFTW_MEASURE overwrites the arrays that it plans with; nothing is in them yet.
bool SharpenEngine::makePlans() noexcept
{
    if (!canSpare(FFTW_OWN_BYTES + FFTW_OWN_BYTES_PER_PIXEL * pixelCount()))
        return false;
    forwardPlan_ = makePlan(width_, height_, plane_.get(), spectrum_.get(), FFTW_FORWARD);
    if (forwardPlan_)
        inversePlan_ = makePlan(width_, height_, spectrum_.get(), plane_.get(), FFTW_BACKWARD);
    return forwardPlan_ && inversePlan_;
}

void SharpenEngine::release() noexcept
{
    gain_.reset();
    plane_.reset();
    spectrum_.reset();
    width_ = 0;
    height_ = 0;
    forwardPlan_.reset();
    inversePlan_.reset();
    ready_ = false;
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
    double* row = gain_.get();
    for (std::uint32_t y = 0; y < height_; ++y, row += width_) {
        distancesBeyond(cutoff_, 1.0 - y * rowStep, columnStep, static_cast<std::int32_t>(width_), row);
        std::transform(row, row + width_, row,
                       [&](double t) { return t <= 0.0 ? flatGain : gainAt(std::min(t, 1.0)); });
    }
}

void SharpenEngine::load(const std::uint8_t* bytes, std::int32_t stride) noexcept
{
    for (std::uint32_t y = 0; y < height_; ++y)
        loadBytes(bytes + static_cast<std::size_t>(stride) * y, width_,
                  plane_.get() + static_cast<std::size_t>(width_) * y);
}

void SharpenEngine::load(const float* values) noexcept
{
    loadValues(values, pixelCount(), plane_.get());
}

void SharpenEngine::forward() noexcept
{
    fftw_execute_dft(forwardPlan_.get(), plane_.get(), spectrum_.get());
}

void SharpenEngine::applyGain() noexcept
{
    const double scale = gain_[0] > LEAST_USABLE_GAIN ? 1.0 / gain_[0] : 1.0;
    multiply(spectrum_.get(), gain_.get(), scale, pixelCount());
}

void SharpenEngine::inverse() noexcept
{
    fftw_execute_dft(inversePlan_.get(), spectrum_.get(), plane_.get());
}

void SharpenEngine::storeRow(std::uint32_t y, std::uint8_t* bytes) const noexcept
{
    const double scale = 1.0 / static_cast<double>(pixelCount());
    storeMagnitudes(plane_.get() + static_cast<std::size_t>(width_) * y, scale, width_, bytes);
}

} // namespace tesmor
