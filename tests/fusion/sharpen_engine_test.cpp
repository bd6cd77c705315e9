#include "fusion/sharpen_engine.h"

#include "fusion/plain_fusion.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace tesmor::test {

namespace {

PlainImage sharpened(PlainImage image)
{
    SharpenEngine engine(0.65, 1.0);
    engine.prepare(static_cast<std::uint32_t>(image.width), static_cast<std::uint32_t>(image.height));
    EXPECT_TRUE(engine.ready());
    engine.buildGain();
    for (int channel = 0; channel < 3; ++channel) {
        engine.load(image.bytes.data() + channel, image.stride);
        engine.forward();
        engine.applyGain();
        engine.inverse();
        std::vector<std::uint8_t> row(static_cast<std::size_t>(image.width));
        for (int y = 0; y < image.height; ++y) {
            engine.storeRow(static_cast<std::uint32_t>(y), row.data());
            for (int x = 0; x < image.width; ++x)
                image.at(x, y, channel) = row[static_cast<std::size_t>(x)];
        }
    }
    return image;
}

TEST(SharpenEngine, HasAGainThatIsFlatAboveTheCutoff)
{
    SharpenEngine engine(0.65, 1.0);
    engine.prepare(64, 48);
    engine.buildGain();
    EXPECT_NEAR(engine.gain()[0], 1 - std::sin(0.35 * 1.5707963267948966), 1e-15);
    EXPECT_EQ(engine.gain()[24 * 64 + 32], std::sin(-3.141592653589793) + 1);
    EXPECT_NEAR(engine.gain()[24 * 64] / engine.gain()[0],
                (1 - std::sin((std::sqrt(0.5) - 0.65) * 1.5707963267948966)) / engine.gain()[0], 1e-12);
}

TEST(SharpenEngine, EqualsANaiveTransformAndLeavesPaddingAlone)
{
    std::mt19937 random(2);
    for (const auto& [width, height] : {std::pair{2, 2}, {5, 7}, {16, 9}, {23, 11}}) {
        PlainImage image(width, height);
        for (auto& byte : image.bytes)
            byte = static_cast<std::uint8_t>(random());
        PlainImage expected = plainSharpen(image);
        for (int y = 0; y < height; ++y) {
            for (int i = width * 3; i < image.stride; ++i)
                expected.bytes[y * image.stride + i] = image.bytes[y * image.stride + i];
        }
        EXPECT_EQ(sharpened(image).bytes, expected.bytes) << width << " x " << height;
    }
}

TEST(SharpenEngine, KeepsAConstantAndRingsAroundASpot)
{
    PlainImage image(16, 16);
    std::ranges::fill(image.bytes, 77);
    EXPECT_EQ(sharpened(image).bytes, image.bytes);

    std::ranges::fill(image.bytes, 0);
    image.at(8, 8, 1) = 100;
    PlainImage spot = sharpened(image);
    EXPECT_GT(spot.at(8, 8, 1), 100);
    EXPECT_GT(spot.at(9, 8, 1), 0) << "an overshoot below 0 shows its size";
    EXPECT_EQ(spot.at(8, 8, 0), 0);
}

TEST(SharpenEngine, PlansOnceForOneSize)
{
    SharpenEngine engine(0.65, 1.0);
    engine.prepare(8, 4);
    const double* gain = engine.gain();
    engine.prepare(8, 4);
    EXPECT_EQ(engine.gain(), gain);
    engine.release();
    EXPECT_FALSE(engine.ready());
    engine.prepare(4, 8);
    EXPECT_TRUE(engine.ready());
}

} // namespace

} // namespace tesmor::test
