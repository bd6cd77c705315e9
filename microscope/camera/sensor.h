// SPDX-License-Identifier: GPL-2.0-or-later
// The camera's sensor: turns brightness into bytes and adds the noise of the exposure.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace tesmor::microscope {

// Any thread at once.
class Sensor {
public:
    // noise: grey levels, standard deviation at full brightness; it falls with the root of the brightness, as that of
    // counted light does. At most 20.
    Sensor(std::uint64_t seed, double noise);

    // The bytes of one row of a frame from the levels of a scene (see scene.h). The noise depends on the seed, the
    // frame's number and the row. A row has at most 16384 pixels.
    void expose(std::span<const std::uint16_t> levels, std::uint64_t frame, std::int32_t row,
                std::uint8_t* bytes) const;

private:
    static constexpr std::size_t TABLE_SIZE = 1 << 16;
    static constexpr std::size_t LONGEST_ROW = 3 * 16384;

    const std::uint64_t seed_;
    std::vector<std::int16_t> table_; // noise at full brightness, in levels; read from a random place for each row
    std::array<std::int32_t, 256> strength_; // by grey level, of 256
};

} // namespace tesmor::microscope
