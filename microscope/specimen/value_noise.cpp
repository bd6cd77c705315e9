// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/specimen/value_noise.h"

#include "microscope/specimen/random.h"

#include <cmath>

namespace tesmor::microscope {

namespace {

double corner(std::uint64_t seed, std::int64_t x, std::int64_t y) noexcept
{
    const std::uint64_t place =
        static_cast<std::uint64_t>(x) * 0x8DA6B343u + static_cast<std::uint64_t>(y) * 0xD8163841u;
    return static_cast<double>(scramble(seed ^ place) >> 11) * 0x1p-52 - 1;
}

double smooth(double t) noexcept
{
    return t * t * (3 - 2 * t);
}

} // namespace

double ValueNoise::at(double x, double y) const noexcept
{
    const double left = std::floor(x);
    const double top = std::floor(y);
    const auto column = static_cast<std::int64_t>(left);
    const auto row = static_cast<std::int64_t>(top);
    const double across = smooth(x - left);
    const double down = smooth(y - top);
    const double above = std::lerp(corner(seed_, column, row), corner(seed_, column + 1, row), across);
    const double below = std::lerp(corner(seed_, column, row + 1), corner(seed_, column + 1, row + 1), across);
    return std::lerp(above, below, down);
}

double ValueNoise::octaves(double x, double y, double coarsest, double finest, double fading) const noexcept
{
    double sum = 0;
    double strength = 1;
    double whole = 0;
    double shift = 0; // so that the lattices of the octaves do not meet
    for (double size = coarsest; size >= finest; size /= 2) {
        sum += strength * at(x / size + shift, y / size - shift);
        whole += strength;
        strength *= fading;
        shift += 17.31;
    }
    return whole > 0 ? sum / whole : 0;
}

} // namespace tesmor::microscope
