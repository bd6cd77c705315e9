// SPDX-License-Identifier: GPL-2.0-or-later
// The library's units of focus: motor steps, degrees, and the spacing units of a stack.
#pragma once

#include <QString>

#include <algorithm>
#include <array>
#include <cstdint>

namespace tesmor::apps {

constexpr int STEPS_PER_TURN = 12800; // motor steps
constexpr double DEGREES_PER_STEP = 360.0 / STEPS_PER_TURN;
constexpr int LARGEST_MOVE = 65535; // motor steps; more wraps around

struct FocusObjective {
    std::uint16_t magnification;
    int stepsPerUnit; // motor steps in one spacing unit of tesmor_startif
};

// The objectives that tesmor_start and tesmor_startif know.
constexpr std::array<FocusObjective, 7> FOCUS_OBJECTIVES{
    {{4, 200}, {10, 120}, {20, 96}, {40, 48}, {60, 48}, {80, 100}, {100, 48}}};

// For a magnification of the table.
constexpr int stepsPerUnit(std::uint16_t magnification)
{
    return std::ranges::find(FOCUS_OBJECTIVES, magnification, &FocusObjective::magnification)->stepsPerUnit;
}

// The spacing that comes nearest to so many motor steps, at least 1 unit; at most LARGEST_MOVE.
std::int32_t unitsFor(double steps, std::uint16_t magnification);

// "4, 10, 20, 40, 60, 80 or 100"
QString magnificationList();

// "4x: 200 motor steps, 10x: 120, ..."
QString spacingUnitList();

// From the command line's --magnification. Throws UsageError unless it is in the table.
std::uint16_t parseMagnification(const QString& text);

} // namespace tesmor::apps
