// SPDX-License-Identifier: GPL-2.0-or-later
// The fusion written down once more, as plainly and slowly as can be: naive transforms, no rotated buffers, one pixel
// at a time. For small images.
#pragma once

#include <complex>
#include <cstdint>
#include <vector>

namespace tesmor::test {

struct PlainImage {
    PlainImage(int w, int h);

    int width, height, stride;
    std::vector<std::uint8_t> bytes;

    std::uint8_t& at(int x, int y, int channel);
};

PlainImage plainFusion(std::vector<PlainImage> images);

} // namespace tesmor::test
