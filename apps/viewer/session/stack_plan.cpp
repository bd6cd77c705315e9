// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/stack_plan.h"

#include "host/focus_units.h"
#include "host/fusion_job.h"
#include "host/fusion_memory.h"

#include <cstdlib>

namespace tesmor::apps {

std::int64_t StackPlan::stepsPerSlice() const
{
    return static_cast<std::int64_t>(spacing) * stepsPerUnit(magnification);
}

std::int64_t StackPlan::depth() const
{
    return std::abs(stepsPerSlice()) * (slices - 1);
}

StackPlan planAround(int slices, int spacing, std::uint16_t magnification)
{
    StackPlan plan{0, static_cast<std::uint16_t>(slices), spacing, magnification};
    plan.wayToFirst = -plan.depth() / 2;
    return plan;
}

std::optional<StackPlan> planBetween(std::int64_t wayToFirst, std::int64_t wayToLast, int spacing,
                                     std::uint16_t magnification)
{
    const std::int64_t way = wayToLast - wayToFirst;
    const std::int64_t step = static_cast<std::int64_t>(spacing) * stepsPerUnit(magnification);
    const std::int64_t moves = (std::abs(way) + step - 1) / step;
    if (moves >= MOST_FUSED_IMAGES)
        return std::nullopt;
    return StackPlan{wayToFirst, static_cast<std::uint16_t>(moves + 1), way < 0 ? -spacing : spacing, magnification};
}

std::uint64_t memoryOf(const StackPlan& plan, QSize frameSize)
{
    return fusionMemory(frameSize, plan.slices);
}

double StackPace::secondsFor(const StackPlan& plan) const
{
    return secondsPerSlice_ * plan.slices;
}

void StackPace::learn(const StackPlan& plan, double seconds)
{
    secondsPerSlice_ = seconds / plan.slices;
}

} // namespace tesmor::apps
