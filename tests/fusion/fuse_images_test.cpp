// SPDX-License-Identifier: GPL-2.0-or-later
#include "fusion/fuse_images.h"

#include "fusion/plain_fusion.h"
#include "tesmor.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace tesmor::test {

namespace {

constexpr std::uint8_t UNTOUCHED = 0xA5;

using Percents = std::vector<std::int32_t>;

class Fusion : public ::testing::Test {
protected:
    std::int32_t fuse(const std::vector<PlainImage>& images, int width, int height)
    {
        std::vector<const std::uint8_t*> pointers;
        for (const PlainImage& image : images)
            pointers.push_back(image.bytes.data());
        output.assign(PlainImage(width, height).bytes.size(), UNTOUCHED);
        percents.clear();
        return fuseImages(pointers.data(), pointers.size(), static_cast<std::uint32_t>(width),
                          static_cast<std::uint32_t>(height), output.data(), runFlag, [this](std::int32_t percent) {
                              percents.push_back(percent);
                              runFlag = percents.size() != abortAt;
                          });
    }

    // The output as an image, after a look at its padding.
    PlainImage fused(const std::vector<PlainImage>& images)
    {
        PlainImage image(images.front().width, images.front().height);
        EXPECT_EQ(fuse(images, image.width, image.height), TESMOR_SUCCESS);
        for (int y = 0; y < image.height; ++y) {
            const auto* row = &output[static_cast<std::size_t>(y * image.stride)];
            std::memcpy(&image.bytes[static_cast<std::size_t>(y * image.stride)], row,
                        static_cast<std::size_t>(image.width * 3));
            for (int i = image.width * 3; i < image.stride; ++i)
                EXPECT_EQ(row[i], UNTOUCHED) << "padding of row " << y;
        }
        return image;
    }

    std::atomic<std::int32_t> runFlag{1};
    std::size_t abortAt = 0; // that many progress calls
    Percents percents;
    std::vector<std::uint8_t> output;
};

// Smooth shades with noise in one part, another part in each image: weights differ, and highlights are there.
std::vector<PlainImage> seededStack(int width, int height, int count)
{
    std::mt19937 random(static_cast<unsigned>(width * 100 + height));
    std::vector<PlainImage> images;
    for (int k = 0; k < count; ++k) {
        PlainImage image(width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width * 3; ++x) {
                const int detail = (x / 3 * count / width) == k ? static_cast<int>(random() % 120) : 0;
                image.bytes[static_cast<std::size_t>(y * image.stride + x)] =
                    static_cast<std::uint8_t>(std::min(255, 90 + 2 * y + x / 3 + detail));
            }
        }
        images.push_back(image);
    }
    return images;
}

TEST_F(Fusion, EqualsThePlainOneAtAnySize)
{
    for (const auto& [width, height, count] :
         {std::tuple{2, 2, 1}, {2, 9, 2}, {11, 2, 3}, {3, 3, 2}, {13, 7, 2}, {16, 12, 3}, {25, 31, 4}}) {
        const auto stack = seededStack(width, height, count);
        EXPECT_EQ(fused(stack).bytes, plainFusion(stack).bytes) << width << " x " << height << " x " << count;
    }
}

TEST_F(Fusion, ReportsItsProgress)
{
    const PlainImage image = seededStack(8, 8, 1).front();
    fused({image});
    EXPECT_EQ(percents, (Percents{14, 28, 42, 57, 100}));
    fused({image, image});
    EXPECT_EQ(percents, (Percents{10, 20, 30, 40, 50, 60, 70, 100}));
}

TEST_F(Fusion, OfNoImagesIsBlack)
{
    EXPECT_EQ(fuse({}, 3, 4), TESMOR_SUCCESS);
    EXPECT_EQ(percents, (Percents{25, 100}));
    for (int y = 0; y < 4; ++y) {
        const std::vector<std::uint8_t> row(output.begin() + y * 12, output.begin() + (y + 1) * 12);
        EXPECT_EQ(row, (std::vector<std::uint8_t>{0, 0, 0, 0, 0, 0, 0, 0, 0, UNTOUCHED, UNTOUCHED, UNTOUCHED}));
    }
}

TEST_F(Fusion, OfOneImageTwiceIsThatOfOne)
{
    const PlainImage image = seededStack(20, 15, 1).front();
    EXPECT_EQ(fused({image, image}).bytes, fused({image}).bytes);
}

TEST_F(Fusion, LeavesTheOutputAloneWhenItIsAborted)
{
    abortAt = 6;
    EXPECT_EQ(fuse(seededStack(16, 16, 2), 16, 16), TESMOR_ABORTED);
    EXPECT_EQ(percents.size(), 6u);
    EXPECT_EQ(output, std::vector<std::uint8_t>(output.size(), UNTOUCHED));
}

TEST_F(Fusion, TakesAsManyImagesAsTheBlockHolds)
{
    std::vector<PlainImage> images;
    for (int k = 0; k < 128; ++k)
        images.push_back(seededStack(6, 5, 128)[static_cast<std::size_t>(k)]);
    EXPECT_EQ(fused(images).bytes, plainFusion(images).bytes);
}

TEST_F(Fusion, RefusesSizesThatItCannotIndex)
{
    const std::pair<std::uint32_t, std::uint32_t> sizes[] = {
        {1, 5}, {5, 1}, {0, 0}, {100'000, 100'000}, {0x80000000, 2}, {2, 0xFFFFFFFF}};
    for (const auto& [width, height] : sizes)
        EXPECT_EQ(fuseImages(nullptr, 0, width, height, nullptr, runFlag, [](std::int32_t) { FAIL(); }),
                  TESMOR_NO_MEMORY);
}

} // namespace

} // namespace tesmor::test
