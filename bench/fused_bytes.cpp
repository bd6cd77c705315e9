// SPDX-License-Identifier: GPL-2.0-or-later
// Fuses seeded stacks with the shared library and writes the fused bytes to a file, so that builds can be compared:
//   fused_bytes FILE
// Everything that goes in is made with integers, and so is the same everywhere. See tools/windows/compare_fusion.
#include "protocol/frame_layout.h"
#include "tesmor.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <future>
#include <vector>

namespace {

constexpr int SLICES = 8;

using Bytes = std::vector<std::uint8_t>;

Bytes noise(int width, int height)
{
    Bytes pixels(static_cast<std::size_t>(tesmor::rowBytes(width)) * height);
    std::uint32_t state = 12345;
    for (std::uint8_t& byte : pixels) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return pixels;
}

// Each slice is sharp in one upright band of the picture; along a row it is averaged the more, the further that band
// is.
Bytes slice(const Bytes& sharp, int width, int height, int number)
{
    Bytes blurred(sharp.size());
    for (int y = 0; y < height; ++y) {
        const std::size_t row = static_cast<std::size_t>(tesmor::rowBytes(width)) * y;
        for (int i = 0; i < 3 * width; ++i) {
            const int radius = std::abs(i / 3 * SLICES / width - number);
            int sum = 0;
            for (int d = -radius; d <= radius; ++d)
                sum += sharp[row + std::clamp(i + 3 * d, i % 3, 3 * (width - 1) + i % 3)];
            blurred[row + i] = static_cast<std::uint8_t>(sum / (2 * radius + 1));
        }
    }
    return blurred;
}

void onFused(const std::uint8_t* image, std::int32_t, std::int32_t, void* context, std::int32_t result)
{
    if (image)
        static_cast<std::promise<std::int32_t>*>(context)->set_value(result);
}

Bytes fusedStack(int width, int height)
{
    const Bytes sharp = noise(width, height);
    std::vector<Bytes> slices;
    std::vector<const std::uint8_t*> images;
    for (int k = 0; k < SLICES; ++k)
        slices.push_back(slice(sharp, width, height, k));
    for (const Bytes& image : slices)
        images.push_back(image.data());
    Bytes fused(sharp.size());
    std::promise<std::int32_t> result;
    tesmor_fusion(images.data(), images.size(), static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                  fused.data(), onFused, &result);
    if (result.get_future().get() != TESMOR_SUCCESS)
        std::exit(1);
    return fused;
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 2)
        return 2;
    std::ofstream file(arguments[1], std::ios::binary);
    tesmor_init();
    for (const auto& [width, height] : {std::pair{640, 480}, {1000, 750}, {321, 243}}) {
        const Bytes fused = fusedStack(width, height);
        file.write(reinterpret_cast<const char*>(fused.data()), static_cast<std::streamsize>(fused.size()));
    }
    tesmor_fini();
    return file.flush() ? 0 : 1;
}
