// SPDX-License-Identifier: GPL-2.0-or-later
// What happens between the bytes of an image and a row of the sharpening engine's plane, one colour at a time.
#pragma once

#include <cstdint>

namespace tesmor {

// From every third byte of an image's row.
void loadBytes(const std::uint8_t* bytes, std::int32_t width, double* row) noexcept;

// From weighted sums and the sums of their weights. Where the weights are 0 too, the values are not numbers.
void loadMeans(const float* sums, const std::int32_t* weightSums, std::int32_t width, double* row) noexcept;

// Adds one colour's share of each pixel's weight: how much the image differs from its sharpened copy, d x (d - o / 64),
// where o is the image's byte and d = o - the sharpened byte. Terms below 4 count as 0. A pixel brighter than its
// sharpened copy scores lower than one that is as much darker.
//   sharpened   as the engine left it; `scale` is the engine's
//   original    the image's row: every third byte
//   weights     one row; the first colour overwrites it. Blue, green and red together make 0 to 195075
void addWeights(const double* sharpened, double scale, const std::uint8_t* original, std::int32_t width,
                bool firstColour, std::int32_t* weights) noexcept;

// Into every third byte of an image's row.
void storeBytes(const double* sharpened, double scale, std::int32_t width, std::uint8_t* bytes) noexcept;

} // namespace tesmor
