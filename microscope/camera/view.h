// Pictures of a scene as an ideal sensor would take them, without noise.
#pragma once

#include "microscope/camera/image.h"
#include "microscope/camera/optics.h"

namespace tesmor::microscope {

Image noiselessView(const Scene& scene, double position);
Image sharpView(const Optics& optics); // sharp everywhere

} // namespace tesmor::microscope
