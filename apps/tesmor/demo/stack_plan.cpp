// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/stack_plan.h"

#include "host/focus_units.h"
#include "host/fusion_job.h"
#include "microscope/camera/objective.h"

#include <algorithm>
#include <cmath>

namespace tesmor::apps {

namespace {

// In depths of field.
constexpr double BELOW_FOCUS = 1;
constexpr double ABOVE_FOCUS = 4.5;
constexpr double SLICE_DISTANCE = 0.5;
constexpr double PLANE_DISTANCE =
    0.5; // with less, the search cannot tell neighbours apart; with more, it misses the rise from one to the next

} // namespace

std::int64_t stepsPerPlane(std::uint16_t magnification)
{
    const double depthOfField = microscope::findObjective(magnification)->depthOfFieldSteps();
    return static_cast<std::int64_t>(unitsFor(PLANE_DISTANCE * depthOfField, magnification)) *
           stepsPerUnit(magnification);
}

StackPlan planStack(const DemoOptions& options, const microscope::VirtualMicroscope& microscope, std::size_t planeCount)
{
    const double depthOfField = microscope.depthOfField();
    double distance = SLICE_DISTANCE * depthOfField;
    double height = (BELOW_FOCUS + ABOVE_FOCUS) * depthOfField;
    double first = static_cast<double>(microscope.position()) - BELOW_FOCUS * depthOfField;
    if (planeCount > 0) {
        const auto planeDistance = static_cast<double>(stepsPerPlane(options.magnification));
        distance = std::ceil(static_cast<double>(planeCount) / MOST_FUSED_IMAGES) * planeDistance;
        height = static_cast<double>(planeCount - 1) * planeDistance;
        first = 0;
    }
    const std::int32_t spacing = options.spacing.value_or(unitsFor(distance, options.magnification));
    const std::int64_t stepsPerSlice = static_cast<std::int64_t>(spacing) * stepsPerUnit(options.magnification);
    const double slices = std::round(height / static_cast<double>(stepsPerSlice)) + 1;
    const auto defaultSlices = static_cast<int>(std::min(slices, static_cast<double>(MOST_FUSED_IMAGES)));
    return {std::llround(first), static_cast<std::uint16_t>(options.slices.value_or(defaultSlices)), spacing,
            stepsPerSlice};
}

} // namespace tesmor::apps
