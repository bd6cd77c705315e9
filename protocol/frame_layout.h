// SPDX-License-Identifier: GPL-2.0-or-later
// Where the pixels of a frame are: blue, green and red bytes, rows padded to a multiple of 4 bytes.
#pragma once

#include <cstdint>

namespace tesmor {

// The bytes that so many pixels in a row take, with their padding.
constexpr std::int64_t rowBytes(std::int64_t pixels) noexcept
{
    return (pixels * 24 + 31) / 32 * 4;
}

} // namespace tesmor
