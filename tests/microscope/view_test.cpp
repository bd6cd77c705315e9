// What the virtual microscope shows, checked against the truth that it tells.
#include "api/luma_tables.h"
#include "focus/search_profile.h"
#include "frame/focus_measure.h"
#include "microscope/virtual_microscope.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace tesmor::microscope {
namespace {

Settings smallSettings(std::uint64_t seed, std::uint16_t magnification, std::int32_t width = 320)
{
    Settings settings;
    settings.seed = seed;
    settings.magnification = magnification;
    settings.width = width;
    settings.height = 240;
    settings.framesPerSecond = 0;
    settings.timeScale = 0;
    return settings;
}

struct Shot {
    std::uint64_t number;
    std::vector<std::uint8_t> pixels;
};

std::vector<Shot> shoot(const Settings& settings, int frames)
{
    VirtualMicroscope microscope(settings);
    std::vector<Shot> shots;
    microscope.start([&](const Frame& frame) {
        const std::size_t size = rowBytes(frame.width) * static_cast<std::size_t>(frame.height);
        shots.push_back({frame.number, {frame.pixels, frame.pixels + size}});
    });
    for (int i = 0; i < frames; ++i)
        microscope.deliverFrame();
    return shots;
}

TEST(View, IsTheSameForTheSameSeedAndFrameNumberOnly)
{
    const std::vector<Shot> first = shoot(smallSettings(5, 10), 2);
    const std::vector<Shot> again = shoot(smallSettings(5, 10), 2);
    const std::vector<Shot> other = shoot(smallSettings(6, 10), 1);
    ASSERT_EQ(first.size(), 2u);
    EXPECT_EQ(first[0].pixels, again.at(0).pixels);
    EXPECT_EQ(first[1].pixels, again.at(1).pixels);
    EXPECT_NE(first[0].pixels, first[1].pixels) << "the noise stands still";
    EXPECT_NE(first[0].pixels, other.at(0).pixels);

    Settings noiseless = smallSettings(5, 10);
    noiseless.noise = 0;
    const std::vector<Shot> still = shoot(noiseless, 2);
    EXPECT_EQ(still.at(0).pixels, still.at(1).pixels);
}

TEST(View, LosesTheShareOfFramesThatIsAskedFor)
{
    Settings settings = smallSettings(1, 10);
    settings.droppedFrames = 0.25;
    const std::vector<Shot> shots = shoot(settings, 200);
    EXPECT_NEAR(static_cast<double>(shots.size()), 150, 30);
    EXPECT_GE(shots.back().number, 190u);
    EXPECT_TRUE(std::ranges::is_sorted(shots, std::ranges::less_equal{}, &Shot::number));
}

// Where the relief passes through the focus the view is the sharp image; far from it, it is not.
TEST(View, IsSharpWhereTheReliefIsInFocus)
{
    const VirtualMicroscope microscope(smallSettings(3, 40, 322)); // rows are padded
    const Image& truth = microscope.truth();
    for (const double offset : {0.0, 1.0, 2.0}) {
        const std::int64_t focus = std::llround(microscope.bestFocus() + offset * microscope.depthOfField());
        const Image view = microscope.view(focus);
        int inFocus = 0;
        double farDifference = 0;
        int far = 0;
        for (std::int32_t y = 0; y < view.height; ++y) {
            for (std::int32_t x = 0; x < view.width; ++x) {
                const float relief = microscope.heightMap()[static_cast<std::size_t>(y * view.width + x)];
                const double away = std::abs(relief - static_cast<double>(focus)) / microscope.depthOfField();
                const std::size_t at =
                    rowBytes(view.width) * static_cast<std::size_t>(y) + 3u * static_cast<unsigned>(x);
                const int difference = std::abs(view.pixels[at + 1] - truth.pixels[at + 1]);
                if (away < 0.02) {
                    ++inFocus;
                    ASSERT_LE(difference, 1) << x << ' ' << y;
                } else if (away > 2) {
                    ++far;
                    farDifference += difference;
                }
            }
        }
        EXPECT_GT(inFocus, 20) << offset;
        EXPECT_GT(farDifference, 1.5 * far) << offset;
    }
}

// The library's own focus measure, over the position: one peak, at the truth, and a steady fall on either side.
TEST(View, FocusMeasurePeaksAtTheTruthAndFallsSteadily)
{
    const LumaTables tables;
    for (const std::uint16_t magnification : {4, 10, 20, 40, 60, 100}) {
        VirtualMicroscope microscope(smallSettings(2, magnification));
        double measure = 0;
        microscope.start([&](const Frame& frame) {
            measure = measureFocus(frame.pixels, frame.width, frame.height, magnification, tables);
        });
        const auto measureAt = [&](double position) {
            microscope.setPosition(std::llround(position));
            microscope.deliverFrame();
            return measure;
        };
        const double best = microscope.bestFocus();
        const double depth = microscope.depthOfField();
        const double coarse = searchProfile(magnification).searchRange / 10;
        for (const double side : {-1.0, 1.0}) {
            EXPECT_GT(measureAt(best), measureAt(best + side * depth / 2)) << magnification;
            double nearer = measureAt(best + side * std::max(coarse, depth / 2));
            for (int step = 2; step <= 8; ++step) {
                const double further = measureAt(best + side * (std::max(coarse, depth / 2) + (step - 1) * coarse));
                EXPECT_LT(further, nearer) << magnification << ", step " << side * step;
                nearer = further;
            }
        }
    }
}

TEST(View, SaysThatItIsSimulated)
{
    const VirtualMicroscope microscope(smallSettings(3, 40));
    EXPECT_NE(microscope.description().find("simulated"), std::string::npos);
}

} // namespace
} // namespace tesmor::microscope
