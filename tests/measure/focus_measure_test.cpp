// SPDX-License-Identifier: GPL-2.0-or-later
#include "measure/focus_measure.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>

namespace tesmor::test {

namespace {

const LumaTables tables;

std::vector<std::uint8_t> randomFrame(std::int32_t width, std::int32_t height)
{
    std::mt19937 random(static_cast<unsigned>(width * 1000 + height));
    std::vector<std::uint8_t> frame(static_cast<std::size_t>((width * 24 + 31) / 32 * 4 * height));
    for (auto& byte : frame)
        byte = static_cast<std::uint8_t>(random());
    return frame;
}

// The measure of the region as it is written down: rows at the running bit count, sums in order, no piecing.
double plainMeasure(const std::vector<std::uint8_t>& frame, int width, int left, int top, int regionWidth,
                    int regionHeight)
{
    std::vector<double> luminance;
    for (int y = top; y < top + regionHeight; ++y) {
        for (int x = left; x < left + regionWidth; ++x) {
            const std::uint8_t* pixel = &frame[static_cast<std::size_t>((y * width * 24 + 31) / 32 * 4 + x * 3)];
            luminance.push_back(pixel[2] * 0.299 + pixel[1] * 0.578 + pixel[0] * 0.114);
        }
    }
    double mean = 0.0;
    for (const double value : luminance)
        mean += value;
    mean = mean / regionWidth / regionHeight;
    double measure = 0.0;
    for (const double value : luminance)
        measure += (value - mean) * (value - mean);
    return measure;
}

TEST(FocusMeasure, ReadsTheCentralRegionOfTheMagnification)
{
    struct Case {
        std::int32_t width, height;
        std::uint16_t magnification;
        int left, top, regionWidth, regionHeight;
    };
    const Case cases[] = {
        {640, 480, 40, 160, 120, 320, 240},  {640, 480, 60, 160, 120, 320, 240}, {640, 480, 80, 160, 120, 320, 240},
        {640, 480, 100, 160, 120, 320, 240}, {640, 480, 10, 240, 180, 160, 120}, {640, 480, 20, 240, 180, 160, 120},
        {640, 480, 4, 240, 180, 160, 120},   {640, 480, 0, 240, 180, 160, 120},  {1001, 37, 40, 250, 9, 500, 18},
        {1001, 37, 4, 375, 14, 250, 9},      {3, 2000, 100, 1, 500, 1, 1000},    {2401, 9, 40, 600, 2, 1200, 4},
    };
    for (const Case& c : cases) {
        const auto frame = randomFrame(c.width, c.height);
        EXPECT_EQ(measureFocus(frame.data(), c.width, c.height, c.magnification, tables),
                  plainMeasure(frame, c.width, c.left, c.top, c.regionWidth, c.regionHeight))
            << c.width << " x " << c.height << " at " << c.magnification;
    }
}

TEST(FocusMeasure, StaysInsideAFrameOfMoreThanTwoBillionBits)
{
    constexpr std::int32_t side = 12000;
    constexpr std::size_t lastPixel = (std::size_t{7499} * side + 7499) * 3; // of the region
    const std::unique_ptr<std::uint8_t, decltype(&std::free)> frame(
        static_cast<std::uint8_t*>(std::calloc(side, std::size_t{side} * 3)), std::free);
    ASSERT_TRUE(frame);
    frame.get()[lastPixel] = 200;
    EXPECT_GT(measureFocus(frame.get(), side, side, 10, tables), 0.0);
}

TEST(FocusMeasure, IsNothingForAnEmptyRegionAndABlackFrame)
{
    const std::vector<std::uint8_t> black(640 * 480 * 3, 0);
    EXPECT_EQ(measureFocus(black.data(), 640, 480, 10, tables), 0.0);
    const std::int32_t sizes[][2] = {{0, 0}, {1, 1}, {3, 100}, {100, 3}, {-8, -8}};
    for (const auto& [width, height] : sizes)
        EXPECT_EQ(measureFocus(nullptr, width, height, 10, tables), 0.0);
}

} // namespace

} // namespace tesmor::test
