// How much each pixel of an image differs from the image's sharpened copy: its weight in the fused image.
#pragma once

#include <cstdint>

namespace tesmor {

// Adds one colour's share of the weights, d x (d - o / 64), where o is the image's byte and d = o - the sharpened byte;
// terms below 4 count as 0. A pixel brighter than its sharpened copy scores lower than one that is as much darker.
//   original    one row: every third byte, `width` of them
//   sharpened   one row of `width` bytes
//   weights     one row; blue, green and red together add from 0 to 195075
void addWeightTerms(const std::uint8_t* original, const std::uint8_t* sharpened, std::int32_t width,
                    std::int32_t* weights) noexcept;

} // namespace tesmor
