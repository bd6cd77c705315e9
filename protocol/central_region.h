// SPDX-License-Identifier: GPL-2.0-or-later
// The part of a frame that an autofocus looks at.
#pragma once

#include <cstdint>

namespace tesmor {

struct Region {
    std::int32_t left; // pixels, all of them
    std::int32_t top;
    std::int32_t width;
    std::int32_t height;
};

// Half of each side for the magnifications 40, 60, 80 and 100, a quarter for every other; empty in a frame too small.
constexpr Region centralRegion(std::int32_t width, std::int32_t height, std::uint16_t magnification) noexcept
{
    const bool isHigh = magnification == 40 || magnification == 60 || magnification == 80 || magnification == 100;
    const std::int32_t divisor = isHigh ? 2 : 4;
    const std::int32_t regionWidth = width / divisor;
    const std::int32_t regionHeight = height / divisor;
    return {(width - regionWidth) / 2, (height - regionHeight) / 2, regionWidth, regionHeight};
}

} // namespace tesmor
