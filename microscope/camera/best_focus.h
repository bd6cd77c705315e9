// SPDX-License-Identifier: GPL-2.0-or-later
// Where the middle of the field is in focus.
#pragma once

#include "microscope/camera/optics.h"
#include "microscope/camera/photo_scene.h"

namespace tesmor::microscope {

// The position, to a 32nd of the depth of field, whose view has the least mean square distance from the sharp picture.
// Looks at the part of the field that an autofocus with this magnification looks at.
double findBestFocus(const Optics& optics, const Objective& objective);

// The position of the plane with the greatest contrast in that part; an estimate.
double findBestPlane(const PhotoScene& scene, std::uint16_t magnification);

} // namespace tesmor::microscope
