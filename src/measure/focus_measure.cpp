// SPDX-License-Identifier: GPL-2.0-or-later
#include "measure/focus_measure.h"

#include "protocol/central_region.h"
#include "protocol/frame_layout.h"

#include <cstddef>

namespace tesmor {

namespace {

// By the running bit count of the rows above: where the width is no multiple of 4, rows drift against their padding,
// but never past it.
const std::uint8_t* rowStart(const std::uint8_t* image, std::int32_t width, std::int32_t row) noexcept
{
    return image + rowBytes(std::int64_t{row} * width);
}

// Prefetches bytes into the cache, where the compiler has a way to. The processor does so itself within a row, but not
// across rows.
void fetchAhead(const std::uint8_t* bytes, std::int32_t count) noexcept
{
    constexpr std::int32_t cacheLine = 64;
    for (std::int32_t i = 0; i < count; i += cacheLine) {
#ifdef __GNUC__
        __builtin_prefetch(bytes + i);
#endif
    }
}

// One loop per pass: luminance is computed while the previous addition is still in progress, so that a pass costs no
// more than its chain of additions, and nothing is stored.
template <class Accumulate>
void forEachLuminance(const std::uint8_t* image, std::int32_t width, const Region& region, const LumaTables& tables,
                      Accumulate accumulate) noexcept
{
    const auto start = [&](std::int32_t k) {
        return rowStart(image, width, region.top + k) + std::ptrdiff_t{3} * region.left;
    };
    for (std::int32_t row = 0; row < region.height; ++row) {
        if (row + 1 < region.height)
            fetchAhead(start(row + 1), region.width * 3);
        const std::uint8_t* pixel = start(row);
        for (std::int32_t column = 0; column < region.width; ++column, pixel += 3)
            accumulate(tables.lumaR[pixel[2]] + tables.lumaG[pixel[1]] + tables.lumaB[pixel[0]]);
    }
}

} // namespace

double measureFocus(const std::uint8_t* image, std::int32_t width, std::int32_t height, std::uint16_t magnification,
                    const LumaTables& tables) noexcept
{
    const Region region = centralRegion(width, height, magnification);
    if (region.width <= 0 || region.height <= 0)
        return 0.0;

    double sum = 0.0;
    forEachLuminance(image, width, region, tables, [&](double luminance) { sum += luminance; });
    const double mean = sum / region.width / region.height;

    double squaredDeviations = 0.0;
    forEachLuminance(image, width, region, tables, [&](double luminance) {
        const double deviation = luminance - mean;
        squaredDeviations += deviation * deviation;
    });
    return squaredDeviations;
}

} // namespace tesmor
