// SPDX-License-Identifier: GPL-2.0-or-later
// From a camera's pixels to the library's.
#pragma once

#include <arv.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tesmor::cameras {

// Those that can be converted, the best first: colour, mosaic, grey, all of 8 bits.
std::span<const ArvPixelFormat> convertibleFormats();

bool isConvertible(ArvPixelFormat format);

class FrameConverter {
public:
    // Rows without padding become blue, green and red in padded rows. The result is valid until the next call, at most
    // as long as the pixels are.
    const std::uint8_t* convert(ArvPixelFormat format, const std::uint8_t* pixels, std::int32_t width,
                                std::int32_t height);

private:
    std::vector<std::uint8_t> frame_;
};

} // namespace tesmor::cameras
