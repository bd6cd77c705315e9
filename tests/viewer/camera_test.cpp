// SPDX-License-Identifier: GPL-2.0-or-later
// The viewer with a camera that has an exposure and a gain.
#include "cameras/fake_gige_camera.h"
#include "viewer/viewer_test.h"

#include <QDoubleSpinBox>

#include <cmath>

namespace tesmor::test {

namespace {

using ViewerCameraTest = ViewerTest;

TEST_F(ViewerCameraTest, ACameraTakesExposureAndGainAndMayDie)
{
    std::optional<FakeGigeCamera> camera(std::in_place, "127.0.0.1", "SEEN");
    camera->set(ARV_PIXEL_FORMAT_MONO_8, 64, 48);
    window_.emplace([] { return std::vector{apps::cameraSource("SEEN", "Camera")}; }, QString(), *settings_);
    window_->show();
    window_->activateWindow();
    ASSERT_TRUE(await([&] { return widget("exposure").isVisible(); })) << told().toStdString();

    apps::LiveSource& source = window_->session().source();
    const auto type = [&](const char* field, const QString& text) {
        auto& box = widget<QDoubleSpinBox>(field);
        box.setFocus();
        box.selectAll();
        QTest::keyClicks(&box, text);
        QTest::keyClick(&box, Qt::Key_Return);
    };
    type("exposure", "12.5");
    EXPECT_TRUE(await([&] { return std::abs(source.controls().exposure->value - 0.0125) < 1e-9; })); // seconds
    type("gain", "3");
    EXPECT_TRUE(await([&] { return source.controls().gain->value == 3; }));
    EXPECT_EQ(widget<QDoubleSpinBox>("exposure").value(), 12.5);

    camera.reset();
    ASSERT_TRUE(await([&] { return told().contains("does not respond any more"); })) << told().toStdString();
    EXPECT_FALSE(widget("exposure").isEnabled());
    camera.emplace("127.0.0.1", "SEEN");
    widget("live").setFocus();
    press(Qt::Key_R, Qt::ControlModifier);
    ASSERT_TRUE(await([&] { return widget("autofocus").isEnabled(); })) << told().toStdString();
    EXPECT_TRUE(told().isEmpty());
}

} // namespace

} // namespace tesmor::test
