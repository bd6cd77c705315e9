// SPDX-License-Identifier: GPL-2.0-or-later
// Images and frames as the camera delivers them: 3 bytes a pixel in the order blue, green, red; rows padded to a
// multiple of 4 bytes.
#pragma once

#include "microscope/camera/warp.h"
#include "protocol/frame_layout.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace tesmor::microscope {

constexpr std::size_t rowBytes(std::int32_t width) noexcept
{
    return static_cast<std::size_t>(tesmor::rowBytes(width));
}

struct Image {
    std::int32_t width = 0;  // pixels
    std::int32_t height = 0; // pixels
    std::vector<std::uint8_t> pixels;

    Image() = default;
    Image(std::int32_t imageWidth, std::int32_t imageHeight)
        : width(imageWidth), height(imageHeight), pixels(rowBytes(imageWidth) * static_cast<std::size_t>(imageHeight))
    {
    }
};

struct Frame {
    const std::uint8_t* pixels; // valid during the sink's call only
    std::int32_t width;
    std::int32_t height;
    std::uint64_t number;  // 0, 1, ...
    std::int64_t position; // motor steps: the focus position that the frame shows
    Warp warp;             // how it lies over the still picture
};

// Takes each frame, one at a time. It must not call start, stop or deliverFrame.
using FrameSink = std::function<void(const Frame&)>;

} // namespace tesmor::microscope
