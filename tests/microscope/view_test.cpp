// SPDX-License-Identifier: GPL-2.0-or-later
// What the virtual microscope shows, checked against the truth that it tells.
#include "measure/focus_measure.h"
#include "measure/luma_tables.h"
#include "microscope/virtual_microscope.h"
#include "operations/search_profile.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace tesmor::microscope {
namespace {

Settings smallSettings(std::uint64_t seed, std::uint16_t magnification)
{
    Settings settings;
    settings.seed = seed;
    settings.magnification = magnification;
    settings.width = 320;
    settings.height = 240;
    settings.framesPerSecond = 0;
    settings.timeScale = 0;
    return settings;
}

using Pixels = std::vector<std::uint8_t>;

std::vector<Pixels> shoot(const Settings& settings, int frames)
{
    VirtualMicroscope microscope(settings);
    std::vector<Pixels> shots;
    microscope.start([&](const Frame& frame) {
        const std::size_t size = rowBytes(frame.width) * static_cast<std::size_t>(frame.height);
        shots.emplace_back(frame.pixels, frame.pixels + size);
    });
    for (int i = 0; i < frames; ++i)
        microscope.deliverFrame();
    return shots;
}

TEST(View, IsTheSameForTheSameSeedAndFrameNumberOnly)
{
    const std::vector<Pixels> first = shoot(smallSettings(5, 10), 2);
    const std::vector<Pixels> again = shoot(smallSettings(5, 10), 2);
    const std::vector<Pixels> other = shoot(smallSettings(6, 10), 1);
    ASSERT_EQ(first.size(), 2u);
    EXPECT_EQ(first[0], again.at(0));
    EXPECT_EQ(first[1], again.at(1));
    EXPECT_NE(first[0], first[1]) << "the noise stands still";
    EXPECT_NE(first[0], other.at(0));

    Settings noiseless = smallSettings(5, 10);
    noiseless.noise = 0;
    const std::vector<Pixels> still = shoot(noiseless, 2);
    EXPECT_EQ(still.at(0), still.at(1));
}

// Each pixel of a moved frame is where its warp says: found in the still frame at the same focus, between its pixels.
TEST(View, AMovingPictureLiesWhereItsWarpSays)
{
    Settings settings = smallSettings(3, 10);
    settings.noise = 0;
    const auto framesOf = [](VirtualMicroscope& microscope, std::vector<Warp>& warps) {
        std::vector<Pixels> frames;
        microscope.start([&](const Frame& frame) {
            frames.emplace_back(frame.pixels, frame.pixels + rowBytes(frame.width) * 240);
            warps.push_back(frame.warp);
        });
        for (const double depths : {-2.0, 0.0, 3.0, 5.0}) {
            microscope.setPosition(std::llround(microscope.bestFocus() + depths * microscope.depthOfField()));
            microscope.deliverFrame();
        }
        return frames;
    };
    std::vector<Warp> warps;
    VirtualMicroscope still(settings);
    const std::vector<Pixels> stillFrames = framesOf(still, warps);
    still.stop();
    EXPECT_EQ(warps, std::vector<Warp>(4));

    warps.clear();
    settings.motion = {.breathing = 0.004, .drift = 12, .turn = 1.5};
    VirtualMicroscope moving(settings);
    EXPECT_NEAR(moving.bestFocus(), still.bestFocus(), still.depthOfField() / 8);
    const std::vector<Pixels> frames = framesOf(moving, warps);
    // Mean difference of two pictures, of their green, away from the edges; the second seen at the warp's places.
    const auto difference = [](const Pixels& shown, const Pixels& seen, const Warp& warp) {
        constexpr int BORDER = 30;
        double sum = 0;
        for (int y = BORDER; y < 240 - BORDER; ++y) {
            for (int x = BORDER; x < 320 - BORDER; ++x) {
                const Point from = warp.stillAt({x - 159.5, y - 119.5});
                const double left = std::floor(from.x + 159.5);
                const double top = std::floor(from.y + 119.5);
                const auto green = [&](double right, double down) {
                    return seen[rowBytes(320) * static_cast<std::size_t>(top + down) +
                                3 * static_cast<std::size_t>(left + right) + 1];
                };
                const double across = from.x + 159.5 - left;
                const double here = std::lerp(std::lerp(green(0, 0), green(1, 0), across),
                                              std::lerp(green(0, 1), green(1, 1), across), from.y + 119.5 - top);
                sum += std::abs(here - shown[rowBytes(320) * static_cast<std::size_t>(y) + 3 * x + 1]);
            }
        }
        return sum / ((240 - 2 * BORDER) * (320 - 2 * BORDER));
    };
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const Pixels& seen = stillFrames[i];
        EXPECT_LT(difference(frames[i], seen, warps[i]), difference(frames[i], seen, Warp{}) / 4) << i;
        EXPECT_LT(difference(moving.truth(warps[i]).pixels, still.truth().pixels, warps[i]), 2) << i;
    }
}

// The library's own focus measure, over the position: one peak, at the truth, and a steady fall on either side.
TEST(View, FocusMeasurePeaksAtTheTruthAndFallsSteadily)
{
    const LumaTables tables;
    for (const std::uint16_t magnification : std::initializer_list<std::uint16_t>{4, 10, 20, 40, 60, 100}) {
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

} // namespace
} // namespace tesmor::microscope
