// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/travel.h"

#include <algorithm>

namespace tesmor::drive {

namespace {

// value * numerator / denominator, rounded to the nearest, halves upwards on both sides of 0.
std::int64_t scaled(std::int64_t value, std::int64_t numerator, std::int64_t denominator)
{
    std::int64_t whole = value / denominator;
    std::int64_t rest = value % denominator;
    if (rest < 0) {
        --whole;
        rest += denominator;
    }
    return whole * numerator + (2 * rest * numerator + denominator) / (2 * denominator);
}

void appendMove(std::vector<std::int64_t>& moves, std::int64_t steps, std::int64_t largest)
{
    do {
        const std::int64_t part = std::clamp(steps, -largest, largest);
        moves.push_back(part);
        steps -= part;
    } while (steps != 0);
}

} // namespace

std::int64_t Travel::motorPosition(std::int64_t position) const
{
    const std::int64_t steps = scaled(position, settings_.gearMotor, settings_.gearLink);
    return settings_.reversed ? -steps : steps;
}

std::optional<std::vector<std::int64_t>> Travel::plan(std::int64_t position, std::int32_t displacement,
                                                      std::int64_t largest) const
{
    const std::int64_t target = position + displacement;
    const std::int64_t turn = displacement < 0 ? target - settings_.backlash : target;
    if (std::min(turn, target) < std::max(settings_.low, -FARTHEST) || target > std::min(settings_.high, FARTHEST))
        return std::nullopt;
    std::vector<std::int64_t> moves;
    appendMove(moves, motorPosition(turn) - motorPosition(position), largest);
    if (turn != target)
        appendMove(moves, motorPosition(target) - motorPosition(turn), largest);
    return moves;
}

} // namespace tesmor::drive
