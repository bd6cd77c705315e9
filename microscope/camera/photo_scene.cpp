// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/camera/photo_scene.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace tesmor::microscope {

PhotoScene::PhotoScene(PhotoPlanes planes) : planes_(std::move(planes))
{
    if (planes_.images.empty())
        throw std::invalid_argument("photo planes: there are none");
    if (!(planes_.stepsPerPlane > 0))
        throw std::invalid_argument("photo planes: steps per plane must be above 0");
    const Image& first = planes_.images.front();
    for (const Image& image : planes_.images) {
        if (image.width != first.width || image.height != first.height)
            throw std::invalid_argument("photo planes: their sizes differ");
        if (image.pixels.size() != rowBytes(image.width) * static_cast<std::size_t>(image.height))
            throw std::invalid_argument("photo planes: the bytes of an image do not fit its size");
    }
}

void PhotoScene::renderRow(double position, std::int32_t row, std::span<std::uint16_t> pixels) const
{
    const auto last = static_cast<double>(planes_.images.size() - 1);
    const double plane = std::clamp(position / planes_.stepsPerPlane, 0.0, last);
    const double lower = std::floor(plane);
    const double upper = std::min(lower + 1, last);
    const std::size_t start = rowBytes(width()) * static_cast<std::size_t>(row);
    const std::uint8_t* const a = planes_.images[static_cast<std::size_t>(lower)].pixels.data() + start;
    const std::uint8_t* const b = planes_.images[static_cast<std::size_t>(upper)].pixels.data() + start;
    const auto share = static_cast<std::int32_t>(std::lround((plane - lower) * LEVELS_PER_GREY));
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<std::uint16_t>(a[i] * LEVELS_PER_GREY + (b[i] - a[i]) * share);
}

} // namespace tesmor::microscope
