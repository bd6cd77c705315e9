// SPDX-License-Identifier: GPL-2.0-or-later
#include "cameras/stream_watch.h"

#include <utility>

namespace tesmor::cameras {

namespace {

constexpr std::chrono::duration<double> STALL_LIMIT(3);

} // namespace

std::optional<CameraNews> StreamWatch::frameComes(std::int32_t width, std::int32_t height, Clock::time_point now)
{
    const bool resized = width_ != 0 && (width != width_ || height != height_);
    const bool resumed = std::exchange(stalled_, false);
    lastFrame_ = now;
    width_ = width;
    height_ = height;
    if (resized)
        return CameraNews{CameraEvent::RESIZED, "the camera's frames are now " + std::to_string(width) + " x " +
                                                    std::to_string(height) + " pixels"};
    if (resumed)
        return CameraNews{CameraEvent::RESUMED, "the camera sends frames again"};
    return std::nullopt;
}

std::optional<CameraNews> StreamWatch::noFrame(double exposure, Clock::time_point now)
{
    if (stalled_ || now - lastFrame_ < STALL_LIMIT + std::chrono::duration<double>(exposure))
        return std::nullopt;
    stalled_ = true;
    return CameraNews{CameraEvent::STALLED,
                      "the camera is not sending frames; check its cable, and its trigger if it has one"};
}

} // namespace tesmor::cameras
