#pragma once

#include <cstdint>

namespace tesmor::microscope {

struct MotorSettings {
    double stepsPerSecond = 51200;  // 0: moves take no time
    std::int64_t backlash = 0;      // steps that turn nothing after each change of direction
    std::int64_t lowEnd = -2000000; // end stops, motor steps; a move ends there and its other steps are lost
    std::int64_t highEnd = 2000000;
};

} // namespace tesmor::microscope
