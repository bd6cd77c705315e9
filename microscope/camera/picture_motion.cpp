// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/camera/picture_motion.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tesmor::microscope {

namespace {

constexpr double MOST_DEPTHS = 10; // that the picture breathes with
constexpr double DRIFT_SECONDS = 5;
constexpr double RADIANS_PER_DEGREE = std::numbers::pi / 180;
constexpr std::int32_t BORDER = 3; // of showRow, and a pixel for rounding

} // namespace

std::int32_t marginFor(const MotionSettings& settings, std::int32_t width, std::int32_t height)
{
    const double growth = std::abs(settings.breathing) * MOST_DEPTHS;
    const double turn = settings.turn * RADIANS_PER_DEGREE;
    if (growth == 0 && turn == 0 && settings.drift == 0)
        return 0;
    // A corner moves furthest; where the picture has shrunk, a frame shows as much more of the scene.
    const double corner = std::hypot(width, height) / 2;
    const double reach = (corner * (growth + turn) + std::numbers::sqrt2 * settings.drift) / (1 - growth);
    return static_cast<std::int32_t>(std::ceil(reach)) + BORDER;
}

Warp PictureMotion::at(std::int64_t position, double seconds) const
{
    const double depths = (static_cast<double>(position) - bestFocus_) / depthOfField_;
    const auto wander = [&](int which) { return noise_.at(seconds / DRIFT_SECONDS, which); };
    return {1 + settings_.breathing * std::clamp(depths, -MOST_DEPTHS, MOST_DEPTHS),
            settings_.turn * RADIANS_PER_DEGREE * wander(0), settings_.drift * wander(1), settings_.drift * wander(2)};
}

} // namespace tesmor::microscope
