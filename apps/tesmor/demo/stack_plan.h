// SPDX-License-Identifier: GPL-2.0-or-later
// Where a demo's focus stack begins, its number of slices and their spacing.
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

// Motor steps between two photographs that replace the specimen.
std::int64_t stepsPerPlane(std::uint16_t magnification);

// Chooses what the user did not set so that the stack covers the specimen, which bends up from the middle of the field,
// where the focus was found, towards the edges. With photographs: one slice per plane, within the maximum of 128.
StackPlan planStack(const DemoOptions& options, const microscope::VirtualMicroscope& microscope,
                    std::size_t planeCount);

} // namespace tesmor::apps
