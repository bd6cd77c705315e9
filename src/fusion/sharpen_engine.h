// Sharpens an image of a fixed size by a radial boost of its high frequencies, in the two-dimensional discrete Fourier
// domain. Colours are transformed one after the other, each by itself, as complex numbers without an imaginary part: so
// one plane and one spectrum are all the memory that is needed, and the planner uses them before the first image.
//
// One sharpening of a colour: load, forward, applyGain, inverse, storeRow for each row. prepare and buildGain come once
// before. All but release need a ready engine.
// One thread at a time; FFTW's planner is not thread-safe, so no two engines may be prepared or released at once.
#pragma once

#include "fusion/zeroed_array.h"

#include <cstddef>
#include <cstdint>
#include <fftw3.h>
#include <memory>
#include <type_traits>

namespace tesmor {

struct FreeFftwMemory {
    void operator()(void* memory) const noexcept
    {
        fftw_free(memory);
    }
};

struct DestroyPlan {
    void operator()(fftw_plan plan) const noexcept
    {
        fftw_destroy_plan(plan);
    }
};

using ComplexPlane = std::unique_ptr<fftw_complex[], FreeFftwMemory>;
using FftwPlan = std::unique_ptr<std::remove_pointer_t<fftw_plan>, DestroyPlan>;

class SharpenEngine {
public:
    // cutoff: radius (1 at zero frequency, 0 at the highest) below which the gain is flat.
    // rolloff: width of the raised-sine transition above it.
    SharpenEngine(double cutoff, double rolloff) noexcept : cutoff_(cutoff), rolloff_(rolloff) {}

    // Obtains arrays and plans for images of width x height pixels, both at least 1; does nothing when it has them
    // already. When something cannot be had the engine is left released; see ready. Takes seconds for large images.
    void prepare(std::uint32_t width, std::uint32_t height) noexcept;

    // Gives everything back.
    void release() noexcept;

    bool ready() const noexcept
    {
        return ready_;
    }

    void buildGain() noexcept;

    // One colour of an image: every third byte from `bytes` on, in rows of `stride` bytes.
    void load(const std::uint8_t* bytes, std::int32_t stride) noexcept;

    // width x height values from 0 to 255.
    void load(const float* values) noexcept;

    void forward() noexcept;

    // Boosts the spectrum so that zero frequency, the mean brightness, stays as it is.
    void applyGain() noexcept;

    // Without the factor 1 / (width x height), which storeRow applies.
    void inverse() noexcept;

    // Writes the magnitude of each pixel of row y, rounded and limited to 0..255, to `width` bytes: what overshoots
    // below 0 beside a dark edge shows its size instead. What is not a number becomes 0.
    void storeRow(std::uint32_t y, std::uint8_t* bytes) const noexcept;

private:
    std::size_t pixelCount() const noexcept
    {
        return static_cast<std::size_t>(width_) * height_;
    }

    bool obtainArrays() noexcept;
    bool makePlans() noexcept;

    std::uint32_t width_ = 0;  // pixels; 0 when released
    std::uint32_t height_ = 0; // pixels; 0 when released
    double cutoff_;
    double rolloff_;
    bool ready_ = false;
    ZeroedArray<double> gain_;
    FftwPlan forwardPlan_;
    FftwPlan inversePlan_;
    ComplexPlane plane_;
    ComplexPlane spectrum_;
};

} // namespace tesmor
