// SPDX-License-Identifier: GPL-2.0-or-later
// How a frame lies over the still picture, that is, over the frame that a microscope without any motion would give.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tesmor::microscope {

// Pixels right of and below the middle of the frame.
struct Point {
    double x;
    double y;
};

// The still picture is turned and scaled about its middle, then shifted.
struct Warp {
    double scale = 1;
    double angle = 0; // radians; positive turns what is on the right downwards
    double right = 0; // pixels
    double down = 0;

    bool operator==(const Warp&) const = default;

    Point shownAt(Point still) const; // where the frame shows this point of the still picture
    Point stillAt(Point shown) const; // the other way round
};

// A scene's whole picture at one focus position, in the levels of a scene (see scene.h): a frame and what lies around
// it.
struct Picture {
    std::int32_t width;  // of the frame, pixels
    std::int32_t height; // likewise
    std::int32_t margin; // pixels on each side of it
    std::span<const std::uint16_t> levels;

    std::span<const std::uint16_t> row(std::int32_t row) const; // from -margin on, margins included
};

// A row of the frame that shows the picture in that warp, interpolated with cubics where it is warped. Then whatever
// the frame shows must lie in the picture, two pixels from its edge.
// R. Keys: Cubic convolution interpolation for digital image processing (1981).
void showRow(const Picture& picture, const Warp& warp, std::int32_t row, std::span<std::uint16_t> pixels);

} // namespace tesmor::microscope
