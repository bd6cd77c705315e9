// The fusion written down once more, as plainly and slowly as can be: naive transforms, no rotated buffers, one pixel at
// a time. For small images.
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

// Padding bytes stay 0.
PlainImage plainSharpen(PlainImage image);
PlainImage plainFusion(std::vector<PlainImage> images);

// One pass; below the last row everything is 0.
std::vector<std::int32_t> plainSmoothing(const std::vector<std::int32_t>& measure, int width, int height);

} // namespace tesmor::test
