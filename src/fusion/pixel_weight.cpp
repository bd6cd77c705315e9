#include "fusion/pixel_weight.h"

#include "fusion/cpu_clones.h"

#include <cstddef>

namespace tesmor {

TESMOR_CPU_CLONES void addWeightTerms(const std::uint8_t* original, const std::uint8_t* sharpened, std::int32_t width,
                                      std::int32_t* weights) noexcept
{
    constexpr std::int32_t noiseFloor = 4;
    for (std::int32_t x = 0; x < width; ++x) {
        const std::int32_t value = original[3 * std::ptrdiff_t{x}];
        const std::int32_t difference = value - sharpened[x];
        const std::int32_t term = difference * (difference - value / 64);
        weights[x] += term < noiseFloor ? 0 : term;
    }
}

} // namespace tesmor
