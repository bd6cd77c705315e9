// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/viewer_test.h"

#include "viewer/widgets/focus_curve_view.h"
#include "viewer/widgets/live_view.h"
#include "viewer/widgets/result_view.h"
#include "viewer/widgets/slice_strip.h"

#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>

namespace tesmor::test {

namespace {

TEST_F(ViewerTest, AutofocusShowsItsCurveAndEndsInFocus)
{
    openWindow();
    const double before = distanceFromFocus();
    auto& curve = *window_->findChild<apps::FocusCurveView*>();

    click("autofocus");
    EXPECT_FALSE(widget("autofocus").isEnabled());
    ASSERT_TRUE(await([&] { return curve.sampleCount() > 3; })); // while it runs, or at its end
    ASSERT_TRUE(awaitIdle());

    EXPECT_LT(distanceFromFocus(), microscope_->depthOfField() / 2);
    EXPECT_LT(distanceFromFocus(), before);
    EXPECT_GT(curve.sampleCount(), 20);
    EXPECT_TRUE(widget<QLabel>("activity").text().startsWith("In focus"));
    EXPECT_EQ(told(), QString());
    EXPECT_TRUE(widget("autofocus").isEnabled());
}

TEST_F(ViewerTest, StopEndsASearch)
{
    settingsOfMicroscope_.timeScale = 1; // slow enough to be stopped
    openWindow();
    press(Qt::Key_F);
    ASSERT_TRUE(window_->session().isBusy());
    press(Qt::Key_Escape);
    EXPECT_TRUE(widget<QPushButton>("stop").text().startsWith("Stopping"));
    ASSERT_TRUE(awaitIdle());
    EXPECT_TRUE(widget<QLabel>("activity").text().startsWith("Cancelled"));
    EXPECT_TRUE(widget("autofocus").isEnabled());
}

TEST_F(ViewerTest, KeysMoveTheFocusAndNeverMoreThanWasAsked)
{
    openWindow();
    const std::int64_t start = microscope_->position();
    const auto step = static_cast<std::int64_t>(120); // motor steps: a spacing unit of the objective
    for (int i = 0; i < 10; ++i)
        press(Qt::Key_Up);
    press(Qt::Key_PageDown);
    press(Qt::Key_PageUp);
    press(Qt::Key_Up);
    ASSERT_TRUE(await([&] { return microscope_->position() == start + 11 * step; }));
    ASSERT_TRUE(awaitIdle());
    EXPECT_EQ(microscope_->position(), start + 11 * step);
}

} // namespace

} // namespace tesmor::test
