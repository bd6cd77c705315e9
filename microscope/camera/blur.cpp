// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/camera/blur.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tesmor::microscope {

namespace {

constexpr int PASSES = 3;
constexpr std::size_t CHANNELS = 3;

struct Box {
    std::int32_t radius; // of the part of weight 1
    float end;           // weight of the two values next to it
    float norm;
};

Box boxOf(double sigma)
{
    const double variance = sigma * sigma / PASSES;
    const double radius = std::floor((std::sqrt(12 * variance + 1) - 1) / 2);
    const double end =
        (2 * radius + 1) * (radius * (radius + 1) - 3 * variance) / (6 * (variance - (radius + 1) * (radius + 1)));
    return {static_cast<std::int32_t>(radius), static_cast<float>(end),
            static_cast<float>(1 / (2 * radius + 1 + 2 * end))};
}

std::int32_t mirrored(std::int32_t index, std::int32_t count)
{
    if (index >= 0 && index < count)
        return index;
    const std::int32_t period = 2 * count;
    const std::int32_t inPeriod = (index % period + period) % period;
    return inPeriod < count ? inPeriod : period - 1 - inPeriod;
}

// Values of `count` lines; line(i) gives the i-th, which is `size` floats long. The box runs across the lines.
template <class Line, class Output>
void boxAcross(std::int32_t count, std::size_t size, const Box& box, Line line, Output output)
{
    const auto at = [&](std::int32_t i) { return line(mirrored(i, count)); };
    std::vector<float> sums(size);
    for (std::int32_t i = -box.radius; i <= box.radius; ++i) {
        const float* const added = at(i);
        for (std::size_t j = 0; j < size; ++j)
            sums[j] += added[j];
    }
    for (std::int32_t i = 0; i < count; ++i) {
        const float* const before = at(i - box.radius - 1);
        const float* const after = at(i + box.radius + 1);
        const float* const first = at(i - box.radius);
        float* const result = output(i);
        for (std::size_t j = 0; j < size; ++j) {
            result[j] = (sums[j] + box.end * (before[j] + after[j])) * box.norm;
            sums[j] += after[j] - first[j];
        }
    }
}

void boxDown(const std::vector<float>& from, std::vector<float>& to, const ColourField& image, const Box& box)
{
    const std::size_t size = CHANNELS * static_cast<std::size_t>(image.width);
    boxAcross(
        image.height, size, box, [&](std::int32_t row) { return from.data() + size * static_cast<std::size_t>(row); },
        [&](std::int32_t row) { return to.data() + size * static_cast<std::size_t>(row); });
}

void boxAlong(const std::vector<float>& from, std::vector<float>& to, const ColourField& image, const Box& box)
{
    const std::size_t size = CHANNELS * static_cast<std::size_t>(image.width);
    for (std::int32_t row = 0; row < image.height; ++row) {
        const std::size_t start = size * static_cast<std::size_t>(row);
        boxAcross(
            image.width, CHANNELS, box,
            [&](std::int32_t column) { return from.data() + start + CHANNELS * static_cast<std::size_t>(column); },
            [&](std::int32_t column) { return to.data() + start + CHANNELS * static_cast<std::size_t>(column); });
    }
}

} // namespace

ColourField blurred(const ColourField& image, double sigma)
{
    const Box box = boxOf(sigma);
    ColourField result = image;
    std::vector<float> between(image.values.size());
    for (int pass = 0; pass < PASSES; ++pass) {
        boxAlong(result.values, between, image, box);
        boxDown(between, result.values, image, box);
    }
    return result;
}

} // namespace tesmor::microscope
