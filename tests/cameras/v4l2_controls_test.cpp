// SPDX-License-Identifier: GPL-2.0-or-later
// A video driver as this test plays it.
#include "cameras/gstreamer/v4l2_controls.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <map>

namespace tesmor::test {
namespace {

using namespace cameras;

TEST(V4l2Controls, SetExposureByHandWithinItsRange)
{
    std::map<std::uint32_t, std::int32_t> values{{V4L2_CID_EXPOSURE_ABSOLUTE, 157},
                                                 {V4L2_CID_EXPOSURE_AUTO, V4L2_EXPOSURE_APERTURE_PRIORITY}};
    const V4l2Controls controls([&](unsigned long request, void* argument) {
        auto& control = *static_cast<v4l2_control*>(argument);
        if (request == VIDIOC_QUERYCTRL) {
            auto& query = *static_cast<v4l2_queryctrl*>(argument);
            query.minimum = 3;
            query.maximum = 2047;
            return values.contains(query.id) ? 0 : -1;
        }
        if (!values.contains(control.id))
            return -1;
        if (request == VIDIOC_G_CTRL)
            control.value = values[control.id];
        else if (request == VIDIOC_S_CTRL)
            values[control.id] = control.value;
        return 0;
    });

    const auto state = controls.control(Control::EXPOSURE);
    ASSERT_TRUE(state);
    EXPECT_DOUBLE_EQ(state->value, 0.0157);
    EXPECT_DOUBLE_EQ(state->least, 0.0003);
    EXPECT_DOUBLE_EQ(state->most, 0.2047);
    controls.setControl(Control::EXPOSURE, 0.03);
    EXPECT_EQ(values[V4L2_CID_EXPOSURE_AUTO], V4L2_EXPOSURE_MANUAL);
    EXPECT_EQ(values[V4L2_CID_EXPOSURE_ABSOLUTE], 300);
    controls.setControl(Control::EXPOSURE, 9);
    EXPECT_EQ(values[V4L2_CID_EXPOSURE_ABSOLUTE], 2047);
    EXPECT_FALSE(controls.control(Control::GAIN));
}

} // namespace
} // namespace tesmor::test
