// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/drive/motor.h"

#include <array>
#include <gtest/gtest.h>

namespace tesmor::microscope {
namespace {

TEST(Motor, LosesTheStepsBeyondAnEndStop)
{
    Motor motor({.lowEnd = -50, .highEnd = 50}, TimeScale{0}, 0);
    const std::array<std::int64_t, 4> moves{80, -20, -200, 10};
    const std::array<std::int64_t, 4> positions{50, 30, -50, -40};
    for (std::size_t i = 0; i < moves.size(); ++i) {
        motor.move(moves[i], Clock::time_point{});
        EXPECT_EQ(motor.position(Clock::time_point{}), positions[i]) << "move " << i;
    }
}

} // namespace
} // namespace tesmor::microscope
