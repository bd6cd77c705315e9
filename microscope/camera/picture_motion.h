// SPDX-License-Identifier: GPL-2.0-or-later
// What moves the picture while a stack is taken: the focus itself, and a stand that does not keep still.
#pragma once

#include "microscope/camera/warp.h"
#include "microscope/specimen/value_noise.h"

#include <cstdint>

namespace tesmor::microscope {

// All 0: the picture stays where it is.
struct MotionSettings {
    // Share by which the picture grows for each depth of field that the focus moves forward; up to ten of them on
    // either side of the best focus. -0.01 to 0.01.
    double breathing = 0;

    // The picture drifts about: smoothly, another way every five seconds, at most so many pixels to each side and so
    // many degrees. The time is that of the camera's clock: a frame's number by the frames per second, or the number
    // itself where frames only come when they are asked for.
    double drift = 0; // pixels, 0 to 64
    double turn = 0;  // degrees, 0 to 5
};

// How far frames of that size may show what lies outside the still picture, with the border that showRow wants; pixels.
std::int32_t marginFor(const MotionSettings& settings, std::int32_t width, std::int32_t height);

// Any thread at once.
class PictureMotion {
public:
    // bestFocus and depthOfField: motor steps.
    PictureMotion(const MotionSettings& settings, std::uint64_t seed, double bestFocus, double depthOfField) noexcept
        : settings_(settings), noise_(seed), bestFocus_(bestFocus), depthOfField_(depthOfField)
    {
    }

    // With the focus at that position, motor steps.
    Warp at(std::int64_t position, double seconds) const;

private:
    const MotionSettings settings_;
    const ValueNoise noise_;
    const double bestFocus_;
    const double depthOfField_;
};

} // namespace tesmor::microscope
