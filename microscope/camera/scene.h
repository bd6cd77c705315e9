// SPDX-License-Identifier: GPL-2.0-or-later
// What lies before the camera.
#pragma once

#include <cstdint>
#include <span>

namespace tesmor::microscope {

inline constexpr int LEVELS_PER_GREY = 256; // a scene's brightness has this many levels for each grey level of a frame

// Any thread at once.
class Scene {
public:
    virtual ~Scene() = default;

    virtual std::int32_t width() const = 0; // of a frame, pixels
    virtual std::int32_t height() const = 0;

    // The scene goes on so many pixels beyond each side of the frame.
    virtual std::int32_t margin() const
    {
        return 0;
    }

    // One row of the view at a focus position (motor steps), from -margin on, margins included: blue, green and red of
    // each of its pixels, each 0 to 255 * LEVELS_PER_GREY.
    virtual void renderRow(double position, std::int32_t row, std::span<std::uint16_t> pixels) const = 0;
};

} // namespace tesmor::microscope
