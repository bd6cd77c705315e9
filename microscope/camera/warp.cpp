// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/camera/warp.h"

#include "microscope/camera/scene.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tesmor::microscope {

namespace {

// Of the four values around a place that lies `share` after the second of them.
std::array<float, 4> cubicWeights(float share)
{
    const float s = share;
    return {((-0.5f * s + 1) * s - 0.5f) * s, (1.5f * s - 2.5f) * s * s + 1, ((-1.5f * s + 2) * s + 0.5f) * s,
            (0.5f * s - 0.5f) * s * s};
}

} // namespace

Point Warp::shownAt(Point still) const
{
    const double cosine = scale * std::cos(angle);
    const double sine = scale * std::sin(angle);
    return {cosine * still.x - sine * still.y + right, sine * still.x + cosine * still.y + down};
}

Point Warp::stillAt(Point shown) const
{
    const double cosine = std::cos(angle) / scale;
    const double sine = std::sin(angle) / scale;
    const Point there{shown.x - right, shown.y - down};
    return {cosine * there.x + sine * there.y, cosine * there.y - sine * there.x};
}

std::span<const std::uint16_t> Picture::row(std::int32_t row) const
{
    const std::size_t size = 3 * static_cast<std::size_t>(width + 2 * margin);
    return levels.subspan(size * static_cast<std::size_t>(row + margin), size);
}

void showRow(const Picture& picture, const Warp& warp, std::int32_t row, std::span<std::uint16_t> pixels)
{
    if (warp == Warp{}) {
        std::ranges::copy(picture.row(row).subspan(3 * static_cast<std::size_t>(picture.margin), pixels.size()),
                          pixels.begin());
        return;
    }
    constexpr float highest = 255 * LEVELS_PER_GREY;
    const std::size_t stride = 3 * static_cast<std::size_t>(picture.width + 2 * picture.margin);
    const double middleX = (picture.width - 1) / 2.0;
    const double middleY = (picture.height - 1) / 2.0;
    const Point first = warp.stillAt({-middleX, row - middleY});
    const Point second = warp.stillAt({1 - middleX, row - middleY});
    for (std::int32_t column = 0; column < picture.width; ++column) {
        // From the picture's corner; never negative.
        const double x = first.x + column * (second.x - first.x) + middleX + picture.margin;
        const double y = first.y + column * (second.y - first.y) + middleY + picture.margin;
        const auto wholeX = static_cast<std::size_t>(x);
        const auto wholeY = static_cast<std::size_t>(y);
        const auto across = cubicWeights(static_cast<float>(x - static_cast<double>(wholeX)));
        const auto down = cubicWeights(static_cast<float>(y - static_cast<double>(wholeY)));
        const std::uint16_t* from = picture.levels.data() + stride * (wholeY - 1) + 3 * (wholeX - 1);
        std::array<float, 3> sums{};
        for (std::size_t i = 0; i < 4; ++i, from += stride) {
            for (std::size_t c = 0; c < 3; ++c)
                sums[c] += down[i] * (across[0] * from[c] + across[1] * from[3 + c] + across[2] * from[6 + c] +
                                      across[3] * from[9 + c]);
        }
        for (std::size_t c = 0; c < 3; ++c)
            pixels[3 * static_cast<std::size_t>(column) + c] =
                static_cast<std::uint16_t>(std::clamp(sums[c], 0.0f, highest) + 0.5f);
    }
}

} // namespace tesmor::microscope
