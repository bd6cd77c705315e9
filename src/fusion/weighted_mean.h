// The per-pixel weighted mean colour of the images added so far.
#pragma once

#include "fusion/image_layout.h"
#include "fusion/zeroed_array.h"

#include <cstdint>

namespace tesmor {

// Highlights enter the mean compressed: values from 192 up by 1 in 8, so that 255 counts as 247. They are never expanded
// again.
constexpr std::int32_t compressHighlight(std::int32_t value) noexcept
{
    return value < 192 ? value : value - (value - 184) / 8;
}

class WeightedMean {
public:
    explicit WeightedMean(const ImageLayout& layout) noexcept;

    // Whether all buffers could be obtained.
    bool ready() const noexcept;

    // Adds row y of an image, with the weights of its pixels, 0 to 195075; 0 counts as 1.
    void addRow(std::int32_t y, const std::uint8_t* imageRow, const std::int32_t* weights) noexcept;

    // Turns the sums into means; no row can be added after it. Without any image every mean is not a number.
    void normalise() noexcept;

    // The means of one colour, width x height values; valid after normalise. 0 is blue, 1 green, 2 red.
    const float* means(std::size_t colour) const noexcept
    {
        return sums_[colour].get();
    }

private:
    ImageLayout layout_;
    ZeroedArray<std::int32_t> weightSum_;
    ZeroedArray<float> sums_[COLOURS]; // the means in the end
};

} // namespace tesmor
