// SPDX-License-Identifier: GPL-2.0-or-later
// What lies on the slide: a drop of pond water with stained tissue, made up from the seed.
#pragma once

#include <cstdint>
#include <vector>

namespace tesmor::microscope {

// Places on the slide are told in pixels of a field this wide, whatever the picture's size.
inline constexpr double FIELD_WIDTH = 1280;

// An image of three interleaved channels.
struct ColourField {
    std::int32_t width = 0;    // pixels
    std::int32_t height = 0;   // pixels
    std::vector<float> values; // three a pixel, row by row
};

// The picture has detail at all scales, from single pixels to the whole field. The relief fits the depth of field:
// flat, but for some waves, in the middle, bent up towards the edges, with cells, shells and fibres lying above and
// below, steps at their outlines; some six depths of field in all. A wider margin changes nothing in the frame.
struct Specimen {
    std::int32_t margin;          // of what follows, around the frame, pixels
    ColourField colour;           // brightness 0 to 255 (blue, green, red) in even light, sharp everywhere
    std::vector<float> heightMap; // for each pixel the motor position where it is in focus
    std::vector<float> light;     // for each pixel the share of the light that reaches it
};

struct SpecimenSettings {
    std::uint64_t seed;
    std::uint16_t magnification; // that it is looked at with
    double depthOfField;         // then; motor steps
    std::int32_t width;          // of a frame, pixels
    std::int32_t height;
    std::int32_t margin; // of the picture around the frame, pixels
};

Specimen makeSpecimen(const SpecimenSettings& settings);

} // namespace tesmor::microscope
