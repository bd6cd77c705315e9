// SPDX-License-Identifier: GPL-2.0-or-later
// A frame as a camera hands it over: 3 bytes a pixel in the order blue, green, red; rows padded to a multiple of 4
// bytes.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace tesmor::cameras {

using Clock = std::chrono::steady_clock;

struct Frame {
    const std::uint8_t* pixels; // valid during the sink's call only
    std::int32_t width;         // pixels
    std::int32_t height;        // pixels
    std::uint64_t number;       // rising; a gap means that frames got lost, where the camera counts them
    Clock::time_point time;     // when it was exposed, as nearly as the camera tells; else when it arrived
};

// Takes each frame, one at a time. It may take as long as it likes (frames that come meanwhile are lost, but for the
// newest), and must not throw.
using FrameSink = std::function<void(const Frame&)>;

} // namespace tesmor::cameras
