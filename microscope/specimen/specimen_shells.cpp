// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/specimen/specimen_things.h"

#include "microscope/specimen/specimen_geometry.h"

namespace tesmor::microscope {

namespace {

constexpr Dye CHLOROPHYLL{1.0f, 0.45f, 0.75f};
constexpr Dye SILICA{0.9f, 0.8f, 0.7f};

} // namespace

void laySpindle(Canvas& canvas, Random& random, const Place& place, double halfLength)
{
    const Axes axes(TURN * random.uniform());
    const double halfWidth = halfLength * random.between(0.16, 0.26);
    const double ribs = random.between(3.5, 6.0);
    const double slant = random.between(-0.7, 0.7);
    const double plastid = random.between(0.3, 0.5) * halfLength;
    const auto insideAt = [=](double along, double across) {
        const double share = std::min(1.0, std::abs(along) / halfLength);
        return halfWidth * std::pow(1 - share * share, 0.75) - std::abs(across);
    };
    canvas.lay(place.x, place.y, halfLength + 1, SILICA, [&](double x, double y) {
        const double along = axes.along(x, y);
        const double across = axes.across(x, y);
        const double inside = insideAt(along, across);
        const double middle = lineAt(across, 1.3) + lineAt(std::hypot(along, across), halfWidth / 3);
        const double rib = 0.5 + 0.5 * std::sin(TURN * (along / ribs + across * across / (9 * halfWidth * ribs)));
        const double density = 0.05 + 0.17 * rib * (1 - std::min(1.0, middle)) + 0.38 * lineAt(inside - 1.5, 1.6);
        return Touch{coverAt(inside), density + 0.08 * middle, place.height + slant * along / halfLength};
    });
    for (const double end : {-0.45, 0.45}) {
        const double middle = end * halfLength;
        canvas.lay(
            place.x + middle * axes.cosine, place.y + middle * axes.sine, plastid, CHLOROPHYLL,
            [&](double x, double y) {
                const double along = axes.along(x, y);
                const double across = axes.across(x, y);
                const double inside = 1 - std::hypot(along / plastid, across / (0.7 * halfWidth));
                const double height = place.height + slant * (along + middle) / halfLength;
                return Touch{std::clamp(4 * inside, 0.0, 1.0) * coverAt(insideAt(along + middle, across)), 0.2, height};
            });
    }
}

void layWheel(Canvas& canvas, Random& random, const Place& place, double radius)
{
    const double pores = random.between(4.5, 7.0);
    const double spokes = std::floor(random.between(10, 26));
    const Axes axes(TURN * random.uniform());
    canvas.lay(place.x, place.y, radius + 1, SILICA, [&](double x, double y) {
        const double distance = std::hypot(x, y);
        const double along = axes.along(x, y);
        const double across = axes.across(x, y);
        // Three waves at 60 degrees to each other make a hexagonal grid.
        double grid = 0;
        for (const double direction : {0.0, TURN / 6, TURN / 3})
            grid += std::cos(TURN / pores * (along * std::cos(direction) + across * std::sin(direction)));
        const double pore = std::clamp(grid / 3, -0.5, 1.0);
        const double spoke = std::pow(std::abs(std::cos(spokes / 2 * std::atan2(across, along))), 24);
        const double rims = lineAt(radius - 2 - distance, 1.8) + 0.7 * lineAt(0.86 * radius - distance, 1.5);
        const double density = 0.13 + 0.13 * pore + 0.12 * spoke * distance / radius + 0.36 * rims;
        return Touch{coverAt(radius - distance), density, place.height};
    });
}

} // namespace tesmor::microscope
