// SPDX-License-Identifier: GPL-2.0-or-later
#include "operations/manual_move.h"

#include "drive/focus_drive.h"
#include "support/scripted_system.h"
#include "tesmor.h"

#include <gtest/gtest.h>

namespace tesmor::test {

namespace {

TEST(ManualMove, TurnsDegreesIntoSteps)
{
    ScriptedSystem system;
    system.reset({0});
    FocusDrive drive(system, system);
    const std::pair<double, std::int32_t> cases[] = {
        {90, 3200}, {-90, -3200}, {1, 35},     {-1, -35},    {0.02, 0},
        {0, 0},     {-0.02, 0},   {1843.2, 0}, {1900, 2019}, {2000, 5575},
    };
    for (const auto& [angle, steps] : cases) {
        EXPECT_EQ(manualMove(drive, angle), TESMOR_SUCCESS) << angle;
        EXPECT_EQ(system.moves().back(), steps) << angle;
    }
}

} // namespace

} // namespace tesmor::test
