// SPDX-License-Identifier: GPL-2.0-or-later
// A focus stack to fuse, and its fusion as the worker runs it.
#pragma once

#include <cstdint>
#include <vector>

namespace tesmor::bench {

class Stack {
public:
    // Noise over a slope, each image with its noise in another place. Pixels, images.
    Stack(std::uint32_t width, std::uint32_t height, std::uint32_t count);

    // On the calling thread, with no host to report to. Aborts the program when it fails.
    void fuse();

private:
    std::uint32_t width_;
    std::uint32_t height_;
    std::vector<std::vector<std::uint8_t>> images_;
    std::vector<std::uint8_t> output_;
};

} // namespace tesmor::bench
