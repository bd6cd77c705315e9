// What lies on the slide: a drop of pond water with stained tissue, made up from the seed.
#pragma once

#include "microscope/camera/blur.h"
#include "microscope/camera/objective.h"

#include <cstdint>
#include <vector>

namespace tesmor::microscope {

// The picture has detail at all scales, from single pixels to the whole field. The relief fits the objective: flat, but
// for some waves, in the middle, bent up towards the edges, with cells, shells and fibres lying above and below, steps
// at their outlines; some six depths of field in all.
struct Specimen {
    ColourField colour;           // brightness 0 to 255 (blue, green, red) in even light, sharp everywhere
    std::vector<float> heightMap; // for each pixel the motor position where it is in focus
    std::vector<float> light;     // for each pixel the share of the light that reaches it
};

Specimen makeSpecimen(std::uint64_t seed, const Objective& objective, std::int32_t width, std::int32_t height);

} // namespace tesmor::microscope
