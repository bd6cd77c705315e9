// SPDX-License-Identifier: GPL-2.0-or-later
// The per-pixel weighted mean colour of the images added so far.
#pragma once

#include "fusion/image_layout.h"
#include "fusion/page_array.h"

#include <cstdint>

namespace tesmor {

// Highlights enter the mean compressed: values from 192 up by 1 in 8, so that 255 counts as 247. They are never
// expanded again.
constexpr std::int32_t compressHighlight(std::int32_t value) noexcept
{
    return value < 192 ? value : value - (value - 184) / 8;
}

class WeightedMean {
public:
    explicit WeightedMean(const ImageLayout& layout) noexcept;

    // Whether all buffers could be obtained.
    bool ready() const noexcept;

    // Adds row y of an image, weighted with the weights of its pixels, 0 to 195075; 0 counts as 1.
    void addRow(std::int32_t y, const std::uint8_t* imageRow, const std::int32_t* weights) noexcept;

    // Writes row y of one colour's means to `width` values; 0 is blue, 1 green, 2 red. Without any image no mean is a
    // number.
    void loadRow(std::int32_t y, std::size_t colour, double* row) const noexcept;

private:
    std::size_t firstOfRow(std::int32_t y) const noexcept
    {
        return static_cast<std::size_t>(layout_.width) * static_cast<std::size_t>(y);
    }

    ImageLayout layout_;
    PageArray<std::int32_t> weightSum_;
    PageArray<float> sums_[COLOURS];
};

} // namespace tesmor
