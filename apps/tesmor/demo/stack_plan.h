// Where a demo's focus stack begins, and how many slices of which distance it has.
#pragma once

#include "microscope/virtual_microscope.h"
#include "tesmor/demo/demo_options.h"

#include <cstdint>

namespace tesmor::apps {

struct StackPlan {
    std::int64_t firstPosition; // of the first slice, motor steps
    std::uint16_t slices;
    std::int32_t spacing; // units of the objective
    std::int64_t stepsPerSlice;
};

// Motor steps between two photographs that stand in for the specimen.
std::int64_t stepsPerPlane(std::uint16_t magnification);

// What the user did not set is chosen so that the stack covers the specimen: it bends up from the middle of the field,
// where the focus was found, towards the edges. With photographs: one slice a plane, as far as 128 slices go.
StackPlan planStack(const DemoOptions& options, const microscope::VirtualMicroscope& microscope,
                    std::size_t planeCount);

} // namespace tesmor::apps
