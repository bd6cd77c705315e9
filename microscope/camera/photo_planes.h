// A series of photographs that stands in for the specimen: what the camera sees at each focus position.
#pragma once

#include "microscope/camera/image.h"

#include <vector>

namespace tesmor::microscope {

struct PhotoPlanes {
    std::vector<Image> images;  // one or more, all of one size; in the order of rising focus position
    double stepsPerPlane = 500; // motor steps between two neighbours, more than 0
    bool blend = true;          // mix the two planes around a position; false: show the nearest
};

} // namespace tesmor::microscope
