// SPDX-License-Identifier: GPL-2.0-or-later
// The size of an image that can be fused.
#pragma once

#include "protocol/frame_layout.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace tesmor {

inline constexpr std::size_t COLOURS = 3; // blue, green, red, one byte each

struct ImageLayout {
    std::int32_t width;  // pixels, at least 2
    std::int32_t height; // pixels, at least 2
    std::int32_t stride; // bytes a row

    // None for sizes that cannot be fused: below 2 x 2 pixels, or with more bytes than 32-bit arithmetic can index.
    static constexpr std::optional<ImageLayout> of(std::uint32_t width, std::uint32_t height) noexcept
    {
        const std::int64_t stride = rowBytes(width);
        if (width < 2 || height < 2 || stride > INT32_MAX / height)
            return std::nullopt;
        return ImageLayout{static_cast<std::int32_t>(width), static_cast<std::int32_t>(height),
                           static_cast<std::int32_t>(stride)};
    }

    constexpr std::size_t pixelCount() const noexcept
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }

    constexpr std::size_t byteCount() const noexcept
    {
        return rowOffset(height);
    }

    constexpr std::size_t rowOffset(std::int32_t row) const noexcept
    {
        return static_cast<std::size_t>(stride) * static_cast<std::size_t>(row);
    }
};

} // namespace tesmor
