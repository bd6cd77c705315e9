// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/specimen/specimen_canvas.h"

#include "microscope/specimen/specimen.h"

namespace tesmor::microscope {

Canvas::Canvas(std::int32_t frameWidth, std::int32_t frameHeight, std::int32_t pictureMargin)
    : width(frameWidth + 2 * pictureMargin), height(frameHeight + 2 * pictureMargin), margin(pictureMargin),
      scale(frameWidth / FIELD_WIDTH), density(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
      relief(density.size())
{
}

void Canvas::put(std::size_t pixel, const Dye& dye, const Touch& touch)
{
    const auto amount = static_cast<float>(touch.cover * touch.density);
    density[pixel][0] += amount * dye.blue;
    density[pixel][1] += amount * dye.green;
    density[pixel][2] += amount * dye.red;
    if (touch.cover > 0.5)
        relief[pixel] = static_cast<float>(touch.height);
}

} // namespace tesmor::microscope
