// SPDX-License-Identifier: GPL-2.0-or-later
// A series of photographs that stands in for the specimen: what the camera sees at each focus position.
#pragma once

#include "microscope/camera/image.h"
#include "microscope/camera/scene.h"

#include <vector>

namespace tesmor::microscope {

struct PhotoPlanes {
    std::vector<Image> images;  // one or more, all of one size; in the order of rising focus position
    double stepsPerPlane = 500; // motor steps between two neighbours, more than 0
};

// The first plane is at position 0. Between two planes the view is mixed of both; before the first and after the last
// it does not change any more.
class PhotoScene : public Scene {
public:
    // Throws std::invalid_argument when there are no planes, their sizes differ or stepsPerPlane is not above 0.
    explicit PhotoScene(PhotoPlanes planes);

    std::int32_t width() const override
    {
        return planes_.images.front().width;
    }

    std::int32_t height() const override
    {
        return planes_.images.front().height;
    }

    void renderRow(double position, std::int32_t row, std::span<std::uint16_t> pixels) const override;

    double planePosition(std::size_t plane) const
    {
        return planes_.stepsPerPlane * static_cast<double>(plane);
    }

    std::size_t planeCount() const
    {
        return planes_.images.size();
    }

private:
    const PhotoPlanes planes_;
};

} // namespace tesmor::microscope
