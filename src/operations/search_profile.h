// SPDX-License-Identifier: GPL-2.0-or-later
// Range and step size of the autofocus search, by objective magnification.
#pragma once

#include <cstdint>

namespace tesmor {

struct SearchProfile {
    std::int32_t searchRange; // motor steps: travel limit of the first sweep, ten times its step
    std::int32_t minStep;     // motor steps: at or below it the search stops refining
};

// 80 takes the default, although the focus measure counts it among the high magnifications.
constexpr SearchProfile searchProfile(std::uint16_t magnification) noexcept
{
    switch (magnification) {
    case 4:
        return {40000, 200};
    case 10:
        return {10000, 150};
    case 20:
        return {6400, 96};
    case 40:
    case 60:
    case 100:
        return {3200, 48};
    default:
        return {15000, 200};
    }
}

} // namespace tesmor
