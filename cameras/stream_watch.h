// SPDX-License-Identifier: GPL-2.0-or-later
// Notices a stream that stalls, goes on, or changes its size.
#pragma once

#include "cameras/camera.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tesmor::cameras {

struct CameraNews {
    CameraEvent event;
    std::string text;
};

class StreamWatch {
public:
    explicit StreamWatch(Clock::time_point start) : lastFrame_(start) {}

    // What is to be told before this frame.
    std::optional<CameraNews> frameComes(std::int32_t width, std::int32_t height, Clock::time_point now);

    // What is to be told when there is no frame yet. `exposure` in seconds.
    std::optional<CameraNews> noFrame(double exposure, Clock::time_point now);

private:
    Clock::time_point lastFrame_;
    bool stalled_ = false;
    std::int32_t width_ = 0; // of the last frame; 0: none yet
    std::int32_t height_ = 0;
};

} // namespace tesmor::cameras
