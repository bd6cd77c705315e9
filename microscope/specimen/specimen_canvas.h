// SPDX-License-Identifier: GPL-2.0-or-later
// The slide on which the specimen's things are laid, one over the other.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tesmor::microscope {

// How much of each colour something takes out of the light: optical density, blue, green, red.
struct Dye {
    float blue;
    float green;
    float red;
};

// One pixel of a thing.
struct Touch {
    double cover;   // 0: outside, 1: inside, between at the outline
    double density; // of its dye
    double height;  // depths of field
};

// Coordinates are those of the slide; see FIELD_WIDTH.
struct Canvas {
    std::int32_t width; // of the picture, pixels
    std::int32_t height;
    std::int32_t margin; // of the picture, around the frame that the coordinates belong to, pixels
    double scale;        // picture pixels for each of a coordinate
    std::vector<std::array<float, 3>> density;
    std::vector<float> relief; // depths of field

    Canvas(std::int32_t frameWidth, std::int32_t frameHeight, std::int32_t pictureMargin);

    // Calls touch(x, y) for each pixel within `reach` of (x, y) and lays what it returns on the slide. What covers more
    // than half of a pixel hides what was below in height, never in colour: everything is translucent.
    template <class TouchAt>
    void lay(double x, double y, double reach, const Dye& dye, TouchAt touchAt)
    {
        const auto inside = [this](double value, std::int32_t end) {
            return static_cast<std::int32_t>(std::fmin(std::fmax(value + margin, 0), end));
        };
        const std::int32_t left = inside((x - reach) * scale, width);
        const std::int32_t right = inside((x + reach) * scale + 1, width);
        const std::int32_t top = inside((y - reach) * scale, height);
        const std::int32_t bottom = inside((y + reach) * scale + 1, height);
        for (std::int32_t row = top; row < bottom; ++row) {
            for (std::int32_t column = left; column < right; ++column) {
                const Touch touch = touchAt((column - margin + 0.5) / scale - x, (row - margin + 0.5) / scale - y);
                if (touch.cover > 0)
                    put(static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                            static_cast<std::size_t>(column),
                        dye, touch);
            }
        }
    }

private:
    void put(std::size_t pixel, const Dye& dye, const Touch& touch);
};

} // namespace tesmor::microscope
