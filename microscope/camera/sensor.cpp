// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/camera/sensor.h"

#include "microscope/camera/scene.h"
#include "microscope/specimen/random.h"

#include <algorithm>
#include <cmath>

namespace tesmor::microscope {

Sensor::Sensor(std::uint64_t seed, double noise) : seed_(seed), table_(TABLE_SIZE + LONGEST_ROW)
{
    Random random(seed);
    for (std::size_t i = 0; i < TABLE_SIZE; ++i)
        table_[i] = static_cast<std::int16_t>(std::lround(noise * LEVELS_PER_GREY * random.normal()));
    std::copy_n(table_.begin(), LONGEST_ROW, table_.begin() + TABLE_SIZE);
    for (std::size_t grey = 0; grey < strength_.size(); ++grey)
        strength_[grey] = static_cast<std::int32_t>(std::lround(256 * std::sqrt(static_cast<double>(grey) / 255)));
}

void Sensor::expose(std::span<const std::uint16_t> levels, std::uint64_t frame, std::int32_t row,
                    std::uint8_t* bytes) const
{
    constexpr std::int32_t half = LEVELS_PER_GREY / 2;
    constexpr std::int32_t highest = 255 * LEVELS_PER_GREY;
    const std::uint64_t place = scramble(scramble(seed_ + frame) + static_cast<std::uint64_t>(row));
    const std::int16_t* const noise = table_.data() + place % TABLE_SIZE;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const std::int32_t strength = strength_[levels[i] / LEVELS_PER_GREY];
        const std::int32_t noisy = levels[i] + (noise[i] * strength >> 8);
        bytes[i] = static_cast<std::uint8_t>((std::clamp(noisy, 0, highest) + half) / LEVELS_PER_GREY);
    }
}

} // namespace tesmor::microscope
