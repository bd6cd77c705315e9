// SPDX-License-Identifier: GPL-2.0-or-later
// Lays the frames of a stack over one another.
#pragma once

#include "registration/stack_placement.h"

namespace tesmor::apps {

// Makes each frame lie over the reference, interpolated where it lies otherwise, and removes those without a place.
// What a frame does not show is taken from its neighbour on the reference's side.
//   frames   as given to placeFrames
void layOver(std::vector<QImage>& frames, const StackPlacement& placement);

} // namespace tesmor::apps
