#include "fusion/focus_weight.h"

#include "fusion/cpu_clones.h"

namespace tesmor {

namespace {

std::int32_t channelTerm(std::uint8_t original, std::uint8_t sharpened) noexcept
{
    constexpr std::int32_t noiseFloor = 4;
    const std::int32_t difference = original - sharpened;
    const std::int32_t term = difference * (difference - original / 64);
    return term < noiseFloor ? 0 : term;
}

} // namespace

TESMOR_CPU_CLONES void measureRow(const std::uint8_t* image, const std::uint8_t* sharpened, std::int32_t width,
                                  std::int32_t* measure) noexcept
{
    for (std::int32_t x = 0; x < width; ++x, image += 3, sharpened += 3) {
        measure[x] = channelTerm(image[0], sharpened[0]) + channelTerm(image[1], sharpened[1]) +
                     channelTerm(image[2], sharpened[2]);
    }
}

} // namespace tesmor
