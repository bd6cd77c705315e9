// SPDX-License-Identifier: GPL-2.0-or-later
#include "operations/stack_capture.h"

#include "drive/focus_drive.h"
#include "support/scripted_frames.h"

#include <gtest/gtest.h>

namespace tesmor::test {

namespace {

class Stack : public ::testing::Test {
protected:
    std::int32_t capture(const StackPlan& plan)
    {
        system.reset({0});
        FocusDrive drive(system, system);
        return captureStack(drive, frames, plan, [this] { noticedAt.push_back(system.position()); });
    }

    ScriptedSystem system;
    ScriptedFrames frames{system};
    std::vector<std::int64_t> noticedAt;
};

TEST_F(Stack, MovesThenTakesAFrameAndDrivesBack)
{
    for (const bool notifyOnly : {false, true}) {
        EXPECT_EQ(capture({10, 3, 5, notifyOnly}), TESMOR_STACK_DONE);
        EXPECT_EQ(system.moves(), (std::vector{600, 600, 600, -600, -600, -600}));
    }
    EXPECT_EQ(frames.positions, (std::vector<std::int64_t>{600, 1200, 1800}));
    EXPECT_EQ(noticedAt, frames.positions);
}

TEST_F(Stack, StepsByMagnificationAndSpacing)
{
    struct Case {
        std::uint16_t magnification;
        std::int32_t spacing;
        std::int32_t out, back;
    };
    const Case cases[] = {
        {4, 1, 200, -200}, {20, -1, -96, 96},     {40, 2, 96, -96},        {60, 1, 48, -48},
        {100, 1, 48, -48}, {80, 1, 100, -100},    {4, 400, 14464, -14464}, {10, 0, 0, 0},
        {7, 3, 300, -300}, {4, 0x40000000, 0, 0}, {10, INT32_MIN, 0, 0},
    };
    for (const Case& c : cases) {
        capture({c.magnification, 1, c.spacing, true});
        EXPECT_EQ(system.moves(), (std::vector{c.out, c.back})) << c.magnification << ", " << c.spacing;
    }
}

} // namespace

} // namespace tesmor::test
