// SPDX-License-Identifier: GPL-2.0-or-later
// What the drive was asked for, and what it answered.
#pragma once

#include "drive_service/motor_controller.h"

#include <chrono>
#include <cstdint>
#include <vector>

namespace tesmor::microscope {

using service::Answer;

struct LoggedRequest {
    std::chrono::steady_clock::time_point time; // real time of its arrival
    std::uint32_t code;                         // control code
    std::vector<std::uint8_t> input;            // its input bytes as they came, well-formed or not
    Answer answer;
};

} // namespace tesmor::microscope
