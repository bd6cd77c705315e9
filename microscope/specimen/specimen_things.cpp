// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/specimen/specimen_things.h"

#include "microscope/specimen/specimen_geometry.h"
#include "microscope/specimen/value_noise.h"

#include <algorithm>

namespace tesmor::microscope {

namespace {

constexpr Dye EOSIN{0.35f, 0.9f, 0.12f};
constexpr Dye HAEMATOXYLIN{0.55f, 1.0f, 1.0f};
constexpr Dye COTTON{0.5f, 0.75f, 1.0f};

} // namespace

void layCell(Canvas& canvas, Random& random, const Place& place, double radius)
{
    const ValueNoise grain(random.bits());
    const double phase2 = TURN * random.uniform();
    const double phase3 = TURN * random.uniform();
    const double bend2 = random.between(0.05, 0.2);
    const double bend3 = random.between(0.03, 0.1);
    const double dome = random.between(0.3, 0.8);
    const auto outline = [=](double x, double y) {
        const double angle = std::atan2(y, x);
        return radius * (1 + bend2 * std::sin(2 * angle + phase2) + bend3 * std::sin(3 * angle + phase3));
    };
    canvas.lay(place.x, place.y, 1.35 * radius, EOSIN, [&](double x, double y) {
        const double edge = outline(x, y);
        const double distance = std::hypot(x, y);
        const double inside = edge - distance;
        const double body = 0.10 + 0.12 * grain.octaves(x, y, radius / 3, 1.5, 0.8);
        const double membrane = 0.30 * lineAt(inside - 2, 1.8);
        const double share = distance / edge;
        return Touch{coverAt(inside), std::max(0.0, body + membrane), place.height + dome * (0.5 - share * share)};
    });
    const double nucleus = radius * random.between(0.22, 0.34);
    const double nucleusX = place.x + radius * random.between(-0.25, 0.25);
    const double nucleusY = place.y + radius * random.between(-0.25, 0.25);
    canvas.lay(nucleusX, nucleusY, nucleus + 1, HAEMATOXYLIN, [&](double x, double y) {
        const double inside = nucleus - std::hypot(x, 1.15 * y);
        const double chromatin = 0.34 + 0.25 * grain.octaves(x, y, nucleus / 2, 1.5, 0.85);
        const double nucleolus = 0.3 * lineAt(std::hypot(x - nucleus / 4, y), nucleus / 5);
        return Touch{coverAt(inside), std::max(0.0, chromatin + nucleolus), place.height + dome / 2};
    });
}

void layFibre(Canvas& canvas, Random& random, const Place& place, double halfWidth)
{
    const Axes axes(TURN * random.uniform());
    const double wave = random.between(250, 500);
    const double swing = random.between(30, 110);
    const double phase = TURN * random.uniform();
    const double sag = random.between(-0.5, 0.5);
    canvas.lay(place.x, place.y, 1600, COTTON, [&](double x, double y) {
        const double along = axes.along(x, y);
        const double angle = along / wave + phase;
        const double slope = swing / wave * std::cos(angle);
        const double offset = (axes.across(x, y) - swing * std::sin(angle)) / std::sqrt(1 + slope * slope);
        const double inside = halfWidth - std::abs(offset);
        if (inside < -1)
            return Touch{0, 0, 0};
        const double twist = 0.5 + 0.5 * std::sin(along / 3 + 2.5 * offset / halfWidth);
        const double density = 0.05 + 0.05 * twist + 0.3 * lineAt(inside - 1.5, 1.7);
        return Touch{coverAt(inside), density, place.height + sag * std::sin(along / 300)};
    });
}

void laySpeck(Canvas& canvas, Random& random, const Place& place, double radius)
{
    const Axes axes(TURN * random.uniform());
    const double stretch = random.between(1, 2.5);
    canvas.lay(place.x, place.y, radius * stretch + 1, HAEMATOXYLIN, [&](double x, double y) {
        const double distance = std::hypot(axes.along(x, y) / stretch, axes.across(x, y));
        return Touch{coverAt(radius - distance), 0.3, place.height};
    });
}

} // namespace tesmor::microscope
