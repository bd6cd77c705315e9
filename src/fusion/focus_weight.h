// How much each pixel of an image differs from the image's sharpened copy.
#pragma once

#include <cstdint>

namespace tesmor {

// measure[i] = the sum over blue, green and red of d x (d - o / 64), where o is the image's byte and d = o - the sharpened
// byte; terms below 4 count as 0. A pixel brighter than its sharpened copy scores lower than one that is as much darker.
//   image, sharpened   one row of `width` pixels, 3 bytes each
//   measure            one row, from 0 to 195075
void measureRow(const std::uint8_t* image, const std::uint8_t* sharpened, std::int32_t width,
                std::int32_t* measure) noexcept;

} // namespace tesmor
