// SPDX-License-Identifier: GPL-2.0-or-later
#include "stack.h"

#include "fusion/fuse_images.h"
#include "fusion/image_layout.h"
#include "tesmor.h"

#include <cstdlib>
#include <random>

namespace tesmor::bench {

Stack::Stack(std::uint32_t width, std::uint32_t height, std::uint32_t count)
    : width_(width), height_(height), output_(ImageLayout::of(width, height)->byteCount())
{
    std::minstd_rand random;
    const std::size_t size = output_.size();
    for (std::uint32_t k = 0; k < count; ++k) {
        std::vector<std::uint8_t> image(size);
        for (std::size_t i = 0; i < size; ++i) {
            const bool sharp = i * count / size == k;
            image[i] = static_cast<std::uint8_t>(i * 150 / size + random() % (sharp ? 100 : 10));
        }
        images_.push_back(std::move(image));
    }
}

void Stack::fuse()
{
    std::vector<const std::uint8_t*> pointers;
    for (const auto& image : images_)
        pointers.push_back(image.data());
    const std::atomic<std::int32_t> runFlag{1};
    const auto noProgress = [](std::int32_t) {};
    if (fuseImages(pointers.data(), pointers.size(), width_, height_, output_.data(), runFlag, noProgress) !=
        TESMOR_SUCCESS)
        std::abort();
}

} // namespace tesmor::bench
