// SPDX-License-Identifier: GPL-2.0-or-later
// Sharpens values of a fixed width and height by a radial boost of their high frequencies, in the two-dimensional
// discrete Fourier domain. The values are real, so half of each spectrum says everything: see docs/architecture.md.
//
// One sharpening of a colour: fill row and forwardRow for each row, boost, inverseRow and read row for each row.
// prepare and buildGain come once before. Only the spectrum is ever whole: rows pass through one buffer, on their way
// into it and out of it, and a few columns at a time are taken out, transformed, boosted, transformed back and put in
// again while the cache holds them. A row can be filled again as soon as it is read. One thread at a time; FFTW's
// planner is not thread-safe, so no two engines may be prepared or released at once.
#pragma once

#include "fusion/page_array.h"

#include <cstddef>
#include <cstdint>
#include <fftw3.h>
#include <memory>
#include <type_traits>

namespace tesmor {

struct DestroyPlan {
    void operator()(fftw_plan plan) const noexcept
    {
        fftw_destroy_plan(plan);
    }
};

using FftwPlan = std::unique_ptr<std::remove_pointer_t<fftw_plan>, DestroyPlan>;

class SharpenEngine {
public:
    // cutoff: radius (1 at zero frequency, 0 at the highest) below which the gain is flat.
    // rolloff: width of the raised-sine transition above it.
    SharpenEngine(double cutoff, double rolloff) noexcept : cutoff_(cutoff), rolloff_(rolloff) {}

    // Obtains arrays and plans for images of width x height pixels, both at least 1; does nothing when it has them
    // already. False when something cannot be had; the engine is released then. Takes seconds for large images.
    bool prepare(std::int32_t width, std::int32_t height) noexcept;

    // Gives everything back. Nothing but prepare and release may follow.
    void release() noexcept;

    void buildGain() noexcept;

    // The row in hand: `width` values.
    double* row() noexcept
    {
        return row_.get();
    }

    // Transforms the row in hand into row y of the spectrum.
    void forwardRow(std::int32_t y) noexcept;

    // Boosts the spectrum so that zero frequency, the mean brightness, stays as it is. All rows must be in it.
    void boost() noexcept;

    // Transforms row y of the spectrum back, once, into the row in hand, without the factor `scale`.
    void inverseRow(std::int32_t y) noexcept;

    // What the values of a row must be multiplied with after inverseRow.
    double scale() const noexcept
    {
        return 1.0 / static_cast<double>(width_ * height_);
    }

private:
    // Columns beyond the middle would mirror those before it; they are not there.
    std::int32_t spectrumWidth() const noexcept
    {
        return width_ / 2 + 1;
    }

    // From one column in hand to the next. A line of the cache more than it must be: at a power of two the columns
    // would share a few places of the cache.
    std::int32_t columnPitch() const noexcept
    {
        return height_ + 4;
    }

    fftw_complex* spectrumRow(std::int32_t y) noexcept
    {
        return spectrum_.get() + static_cast<std::ptrdiff_t>(spectrumWidth()) * y;
    }

    void takeColumns(std::int32_t x, std::int32_t count) noexcept;
    void putColumns(std::int32_t x, std::int32_t count) noexcept;

    bool obtainArrays() noexcept;
    bool makePlans() noexcept;

    std::int32_t width_ = 0;  // pixels; 0 when released
    std::int32_t height_ = 0; // pixels; 0 when released
    double cutoff_;
    double rolloff_;
    PageArray<double> row_;                  // in hand
    PageArray<fftw_complex> columns_;        // in hand
    PageArray<fftw_complex> columnSpectrum_; // of one of them
    PageArray<fftw_complex> spectrum_;       // by rows, zero frequency first
    PageArray<double> gain_;                 // of each frequency, by columns
    FftwPlan forwardRow_;
    FftwPlan inverseRow_;
    FftwPlan forwardColumn_;
    FftwPlan inverseColumn_;
};

} // namespace tesmor
