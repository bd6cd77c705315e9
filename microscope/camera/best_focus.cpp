// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/camera/best_focus.h"

#include "protocol/central_region.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tesmor::microscope {

namespace {

// The region's part of a row of the scene.
template <class Levels>
auto partOf(std::span<Levels> row, const Scene& scene, const Region& region)
{
    return row.subspan(3 * static_cast<std::size_t>(scene.margin() + region.left),
                       3 * static_cast<std::size_t>(region.width));
}

// Calls use(row, brightness of that row's part in the region).
template <class Use>
void forEachRow(const Scene& scene, const Region& region, double position, Use use)
{
    std::vector<std::uint16_t> pixels(3 * static_cast<std::size_t>(scene.width() + 2 * scene.margin()));
    const auto part = partOf(std::span(pixels), scene, region);
    for (std::int32_t row = region.top; row < region.top + region.height; ++row) {
        scene.renderRow(position, row, pixels);
        use(row, part);
    }
}

double distanceFromSharp(const Optics& optics, const Region& region, double position)
{
    double sum = 0;
    forEachRow(optics, region, position, [&](std::int32_t row, std::span<const std::uint16_t> seen) {
        const auto sharp = partOf(optics.sharp().row(row), optics, region);
        for (std::size_t i = 0; i < seen.size(); ++i) {
            const double difference = seen[i] - sharp[i];
            sum += difference * difference;
        }
    });
    return sum;
}

double varianceOf(const Scene& scene, const Region& region, double position)
{
    double sum = 0;
    double squares = 0;
    double count = 0;
    forEachRow(scene, region, position, [&](std::int32_t, std::span<const std::uint16_t> seen) {
        for (const double value : seen) {
            sum += value;
            squares += value * value;
            ++count;
        }
    });
    return squares - sum * sum / count;
}

// Of the positions from `low` to `high`, `step` apart, the one with the least cost.
template <class Cost>
double cheapest(double low, double high, double step, Cost cost)
{
    double best = low;
    double bestCost = cost(low);
    for (double position = low + step; position <= high; position += step) {
        const double here = cost(position);
        if (here < bestCost) {
            best = position;
            bestCost = here;
        }
    }
    return best;
}

} // namespace

double findBestFocus(const Optics& optics, const Objective& objective)
{
    const Region region = centralRegion(optics.width(), optics.height(), objective.magnification);
    const auto cost = [&](double position) { return distanceFromSharp(optics, region, position); };
    const auto [lowest, highest] = std::ranges::minmax(optics.heightMap());
    const double coarse = objective.depthOfFieldSteps() / 4;
    const double near = cheapest(lowest, highest, coarse, cost);
    return cheapest(near - coarse, near + coarse, coarse / 8, cost);
}

double findBestPlane(const PhotoScene& scene, std::uint16_t magnification)
{
    const Region region = centralRegion(scene.width(), scene.height(), magnification);
    const auto plane = cheapest(0, static_cast<double>(scene.planeCount() - 1), 1, [&](double candidate) {
        return -varianceOf(scene, region, scene.planePosition(static_cast<std::size_t>(candidate)));
    });
    return scene.planePosition(static_cast<std::size_t>(plane));
}

} // namespace tesmor::microscope
