// SPDX-License-Identifier: GPL-2.0-or-later
// What the viewer knows without a window.
#include "viewer/session/calibration.h"
#include "viewer/session/focus_curve.h"
#include "viewer/session/move_queue.h"
#include "viewer/session/stack_plan.h"

#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>

namespace tesmor::apps {

namespace {

TEST(MoveQueue, AddsUpAndForgetsAHeldKey)
{
    MoveQueue queue;
    for (int i = 0; i < 7; ++i)
        queue.add(10);
    queue.add(-20);
    EXPECT_EQ(queue.take(), 50);
    EXPECT_EQ(queue.take(), 0);

    queue.add(10);
    for (int i = 0; i < 1000; ++i)
        queue.addHeld(10);
    queue.letGo();
    EXPECT_EQ(queue.take(), 10);

    for (int i = 0; i < 1000; ++i)
        queue.addHeld(-10);
    EXPECT_EQ(queue.take(), -80) << "a move cannot be stopped: it must be short";

    queue.add(100'000);
    EXPECT_EQ(queue.take(), 65'535);
    EXPECT_EQ(queue.take(), 100'000 - 65'535);
}

TEST(StackPlan, ReachesBothEnds)
{
    struct Case {
        std::int64_t first, last;
        int spacing;
        int slices;
        int signedSpacing;
    };
    for (const Case& c : {Case{-500, 500, 2, 6, 2},
                          {500, -500, 2, 6, -2},
                          {0, 0, 1, 1, 1},
                          {10, 250, 1, 3, 1},
                          {-1000, 1000, 3, 7, 3}}) {
        const auto plan = planBetween(c.first, c.last, c.spacing, 10); // a unit is 120 steps
        SCOPED_TRACE(testing::Message() << c.first << " to " << c.last);
        ASSERT_TRUE(plan);
        EXPECT_EQ(plan->wayToFirst, c.first);
        EXPECT_EQ(plan->spacing, c.signedSpacing);
        EXPECT_EQ(plan->slices, c.slices);
        EXPECT_GE(plan->depth(), std::abs(c.last - c.first));
    }
    EXPECT_FALSE(planBetween(0, 128 * 120, 1, 10)) << "129 slices";
    EXPECT_TRUE(planBetween(0, 127 * 120, 1, 10));

    const StackPlan around = planAround(5, 2, 40); // a unit is 48 steps
    EXPECT_EQ(around.wayToFirst, -192);
    EXPECT_EQ(around.wayToStart(), -288);
    EXPECT_EQ(around.depth(), 384);
}

TEST(Calibration, IsRememberedForEachSourceAndObjective)
{
    const QTemporaryDir folder;
    QSettings settings(folder.filePath("settings.ini"), QSettings::IniFormat);
    Calibration saved;
    saved.setMicrometresPerPixel(40, 0.125);
    saved.setMicrometresPerTurn(100);
    saved.save(settings, "/dev/video0");

    Calibration loaded;
    loaded.load(settings, "/dev/video0");
    EXPECT_EQ(loaded.micrometresPerPixel(40), 0.125);
    EXPECT_EQ(loaded.micrometresPerPixel(10), std::nullopt);
    EXPECT_EQ(loaded.micrometres(12800), 100);
    Calibration other;
    other.load(settings, "/dev/video1");
    EXPECT_EQ(other.micrometresPerPixel(40), std::nullopt);
    EXPECT_EQ(other.micrometres(1), std::nullopt);
}

} // namespace

} // namespace tesmor::apps
