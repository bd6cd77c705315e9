// SPDX-License-Identifier: GPL-2.0-or-later
// The geometry that the specimen's things share. Lengths in pixels.
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tesmor::microscope {

inline constexpr double TURN = 2 * std::numbers::pi;

// 1 inside, 0 outside, with a slope one pixel wide; distance from the outline, positive inside.
inline double coverAt(double distance)
{
    return std::clamp(distance + 0.5, 0.0, 1.0);
}

// 1 on a line, falling off over `width`.
inline double lineAt(double distance, double width)
{
    return std::exp(-distance * distance / (width * width));
}

struct Axes {
    explicit Axes(double angle) : cosine(std::cos(angle)), sine(std::sin(angle)) {}

    double along(double x, double y) const
    {
        return x * cosine + y * sine;
    }

    double across(double x, double y) const
    {
        return y * cosine - x * sine;
    }

    double cosine;
    double sine;
};

} // namespace tesmor::microscope
