// SPDX-License-Identifier: GPL-2.0-or-later
#include "fusion/plane_rows.h"

#include "fusion/cpu_clones.h"

#include <cmath>
#include <cstddef>

namespace tesmor {

namespace {

// The magnitude: what overshoots below 0 beside a dark edge shows its size instead. What is not a number becomes 0.
inline std::int32_t byteOf(double sharpened, double scale) noexcept
{
    const double rounded = std::fabs(sharpened) * scale + 0.5;
    const double number = rounded > 0.0 ? rounded : 0.0;
    return static_cast<std::int32_t>(number < 255.0 ? number : 255.0);
}

} // namespace

TESMOR_CPU_CLONES void loadBytes(const std::uint8_t* bytes, std::int32_t width, double* row) noexcept
{
    for (std::int32_t x = 0; x < width; ++x)
        row[x] = bytes[3 * std::ptrdiff_t{x}];
}

TESMOR_CPU_CLONES void loadMeans(const float* sums, const std::int32_t* weightSums, std::int32_t width,
                                 double* row) noexcept
{
    for (std::int32_t x = 0; x < width; ++x)
        row[x] = sums[x] / static_cast<float>(weightSums[x]);
}

TESMOR_CPU_CLONES void addWeights(const double* sharpened, double scale, const std::uint8_t* original,
                                  std::int32_t width, bool firstColour, std::int32_t* weights) noexcept
{
    constexpr std::int32_t noiseFloor = 4;
    for (std::int32_t x = 0; x < width; ++x) {
        const std::int32_t value = original[3 * std::ptrdiff_t{x}];
        const std::int32_t difference = value - byteOf(sharpened[x], scale);
        const std::int32_t term = difference * (difference - value / 64);
        weights[x] = (firstColour ? 0 : weights[x]) + (term < noiseFloor ? 0 : term);
    }
}

TESMOR_CPU_CLONES void storeBytes(const double* sharpened, double scale, std::int32_t width,
                                  std::uint8_t* bytes) noexcept
{
    for (std::int32_t x = 0; x < width; ++x)
        bytes[3 * std::ptrdiff_t{x}] = static_cast<std::uint8_t>(byteOf(sharpened[x], scale));
}

} // namespace tesmor
