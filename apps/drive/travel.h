// SPDX-License-Identifier: GPL-2.0-or-later
// From the steps of the drive link to the motor's own: gear, direction, backlash, soft ends.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace tesmor::drive {

// All steps but the motor's own are steps of the drive link, 12800 a turn of a camera's own motor.
struct TravelSettings {
    std::int64_t gearMotor = 1; // so many steps of the motor
    std::int64_t gearLink = 1;  // are so many of the link; both 1 to 1,000,000
    bool reversed = false;      // a positive move turns the motor in the negative direction
    std::int64_t backlash = 0;  // a move in reverse goes this much too far and comes back
    std::int64_t low =
        std::numeric_limits<std::int64_t>::min(); // soft ends: no move goes beyond, nor its detour for the
    std::int64_t high = std::numeric_limits<std::int64_t>::max(); // backlash
};

class Travel {
public:
    // Positions stay within it, so that no product overflows.
    static constexpr std::int64_t FARTHEST = 1'000'000'000'000;

    explicit Travel(const TravelSettings& settings) : settings_(settings) {}

    // The moves of the motor that make a move of the link from `position`, at most `largest` each and at least one;
    // none when it would go beyond a soft end. What the gear leaves over is carried: the motor's position is a function
    // of the link's alone.
    std::optional<std::vector<std::int64_t>> plan(std::int64_t position, std::int32_t displacement,
                                                  std::int64_t largest) const;

private:
    std::int64_t motorPosition(std::int64_t position) const;

    TravelSettings settings_;
};

} // namespace tesmor::drive
