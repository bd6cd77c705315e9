// What the drive was asked for, and what it answered.
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

namespace tesmor::microscope {

enum class Answer {
    refused,
    accepted,
    none,   // no reply is sent
    vanish, // no reply is sent and the link is cut for good
};

struct LoggedRequest {
    std::chrono::steady_clock::time_point time; // real time of its arrival
    std::uint32_t code;                         // control code
    std::vector<std::uint8_t> input;            // its input bytes as they came, well-formed or not
    Answer answer;
};

} // namespace tesmor::microscope
