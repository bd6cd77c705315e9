#include "microscope/camera/view.h"

#include "microscope/camera/sensor.h"

namespace tesmor::microscope {

namespace {

template <class RowAt>
Image exposed(const Scene& scene, RowAt rowAt)
{
    const Sensor ideal(0, 0);
    Image image(scene.width(), scene.height());
    for (std::int32_t row = 0; row < image.height; ++row)
        ideal.expose(rowAt(row), 0, row, image.pixels.data() + rowBytes(image.width) * static_cast<std::size_t>(row));
    return image;
}

} // namespace

Image noiselessView(const Scene& scene, double position)
{
    std::vector<std::uint16_t> pixels(3 * static_cast<std::size_t>(scene.width()));
    return exposed(scene, [&](std::int32_t row) {
        scene.renderRow(position, row, pixels);
        return std::span<const std::uint16_t>(pixels);
    });
}

Image sharpView(const Optics& optics)
{
    return exposed(optics, [&](std::int32_t row) { return optics.sharpRow(row); });
}

} // namespace tesmor::microscope
