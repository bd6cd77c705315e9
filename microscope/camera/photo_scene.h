// Photographs replayed as the planes of the specimen.
#pragma once

#include "microscope/camera/photo_planes.h"
#include "microscope/camera/scene.h"

namespace tesmor::microscope {

// The first plane is at position 0. Before the first and after the last the view does not change any more.
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
