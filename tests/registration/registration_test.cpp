// SPDX-License-Identifier: GPL-2.0-or-later
// The warps that registration finds, against those that the virtual microscope tells.
#include "images/frame_image.h"
#include "microscope/virtual_microscope.h"
#include "registration/frame_overlay.h"
#include "registration/frame_registration.h"
#include "registration/shift_look.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace tesmor::apps {
namespace {

constexpr double PIXELS = 0.15; // of a shift
constexpr double SCALE = 0.0005;

struct Stack {
    std::vector<QImage> frames;
    std::vector<microscope::Warp> warps;
};

// The specimen from end to end.
Stack takeStack(const microscope::MotionSettings& motion, int slices = 9)
{
    microscope::Settings settings;
    settings.seed = 3;
    settings.width = 640;
    settings.height = 480;
    settings.framesPerSecond = 0;
    settings.timeScale = 0;
    settings.motion = motion;
    microscope::VirtualMicroscope microscope(settings);
    Stack stack;
    microscope.start([&](const microscope::Frame& frame) {
        stack.frames.push_back(copyOfFrame(frame.pixels, frame.width, frame.height));
        stack.warps.push_back(frame.warp);
    });
    const auto [low, high] = std::ranges::minmax(microscope.heightMap());
    for (int i = 0; i < slices; ++i) {
        microscope.setPosition(std::llround(low + i * static_cast<double>(high - low) / (slices - 1)));
        microscope.deliverFrame();
    }
    return stack;
}

void expectTruth(const Placement& found, const microscope::Warp& frame, const microscope::Warp& reference)
{
    const microscope::Point middle = frame.shownAt(reference.stillAt({0, 0}));
    EXPECT_NEAR(found.right, middle.x, PIXELS);
    EXPECT_NEAR(found.down, middle.y, PIXELS);
    EXPECT_NEAR(found.scale, frame.scale / reference.scale, SCALE);
    EXPECT_NEAR(found.angle, frame.angle - reference.angle, SCALE);
}

TEST(Registration, FindsTheWarpsOfAStack)
{
    const microscope::MotionSettings motions[] = {
        {}, {.drift = 40}, {.breathing = 0.008}, {.turn = 4}, {.breathing = -0.004, .drift = 12, .turn = 1}};
    for (const auto& motion : motions) {
        SCOPED_TRACE(testing::Message() << motion.breathing << ", " << motion.drift << ", " << motion.turn);
        Stack stack = takeStack(motion);
        int percent = 0;
        const StackPlacement placement = placeFrames(stack.frames, [&](int now) { percent = now; });
        EXPECT_EQ(percent, 100);
        for (std::size_t i = 0; i < stack.frames.size(); ++i) {
            SCOPED_TRACE(i);
            ASSERT_TRUE(placement.frames[i]);
            expectTruth(*placement.frames[i], stack.warps[i], stack.warps[placement.reference]);
        }
        const QSize size = stack.frames.front().size();
        const QRect shared = sharedPart(placement, size);
        for (const auto& warp : stack.warps) {
            for (const QPoint corner :
                 {shared.topLeft(), shared.bottomRight(), shared.topRight(), shared.bottomLeft()}) {
                const microscope::Point shown = warp.shownAt(stack.warps[placement.reference].stillAt(
                    {corner.x() - (size.width() - 1) / 2.0, corner.y() - (size.height() - 1) / 2.0}));
                EXPECT_LT(std::abs(shown.x), size.width() / 2.0);
                EXPECT_LT(std::abs(shown.y), size.height() / 2.0);
            }
        }
        EXPECT_EQ(shiftBetweenFrames(stack.frames) > 3, motion.drift > 0);
    }
}

// Wherever a bad frame stands, the others are registered past it.
TEST(Registration, LeavesOutWhatShowsNothingOfTheSpecimen)
{
    const Stack stack = takeStack({.drift = 10}, 7);
    QImage blank = stack.frames.front();
    blank.fill(Qt::white);
    QImage noise = blank; // an empty field
    std::uint32_t random = 1;
    for (qsizetype i = 0; i < noise.sizeInBytes(); ++i)
        noise.bits()[i] = static_cast<uchar>(200 + ((random = random * 1664525 + 1013904223) >> 30));
    QImage shading = blank; // darker to one side, as a lamp off its place makes it
    for (int x = 0; x < shading.width(); ++x) {
        for (int y = 0; y < shading.height(); ++y)
            shading.setPixel(x, y, qRgb(100 + x / 8, 100 + x / 8, 100 + x / 8));
    }
    const std::size_t sharpest = placeFrames(stack.frames, [](int) {}).reference;
    const QImage elsewhere = stack.frames[sharpest].mirrored(true, true);
    struct Case {
        const QImage& bad;
        std::size_t place;
    };
    for (const auto& [bad, place] : {Case{blank, 0}, {noise, 2}, {shading, 6}, {elsewhere, sharpest}}) {
        SCOPED_TRACE(place);
        Stack spoilt = stack;
        spoilt.frames[place] = bad;
        const StackPlacement placement = placeFrames(spoilt.frames, [](int) {});
        for (std::size_t i = 0; i < spoilt.frames.size(); ++i) {
            ASSERT_EQ(placement.frames[i].has_value(), i != place) << i;
            if (i != place)
                expectTruth(*placement.frames[i], stack.warps[i], stack.warps[placement.reference]);
        }
        layOver(spoilt.frames, placement);
        EXPECT_EQ(spoilt.frames.size(), stack.frames.size() - 1);
    }
}

} // namespace
} // namespace tesmor::apps
