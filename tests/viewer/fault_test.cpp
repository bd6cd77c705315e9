// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/viewer_test.h"

#include "viewer/widgets/live_view.h"

#include <QLabel>
#include <QPushButton>

namespace tesmor::test {

namespace {

TEST_F(ViewerTest, ALostCameraIsToldAndComesBackWithoutARestart)
{
    openWindow();
    *unplugged_ = true;
    ASSERT_TRUE(await([&] { return told().contains("unplugged"); }));
    EXPECT_FALSE(widget("autofocus").isEnabled());
    EXPECT_TRUE(widget<apps::LiveView>("live").image().isNull());

    *unplugged_ = false;
    press(Qt::Key_R, Qt::ControlModifier);
    ASSERT_TRUE(await([&] { return widget("autofocus").isEnabled(); }));
    EXPECT_EQ(told(), QString());
    click("autofocus");
    ASSERT_TRUE(awaitIdle());
    EXPECT_LT(distanceFromFocus(), microscope_->depthOfField() / 2);
}

} // namespace

} // namespace tesmor::test
