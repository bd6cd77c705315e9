// SPDX-License-Identifier: GPL-2.0-or-later
#include "cameras/gstreamer/v4l2_controls.h"

#include <linux/videodev2.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tesmor::cameras {

namespace {

std::uint32_t idOf(Control control)
{
    return control == Control::EXPOSURE ? V4L2_CID_EXPOSURE_ABSOLUTE : V4L2_CID_GAIN;
}

double unitOf(Control control)
{
    return control == Control::EXPOSURE ? 100e-6 : 1; // seconds; a plain number
}

} // namespace

V4l2Controls::V4l2Controls(int descriptor)
    : V4l2Controls([descriptor](unsigned long request, void* argument) { return ioctl(descriptor, request, argument); })
{
}

V4l2Controls::V4l2Controls(Request request) : request_(std::move(request)) {}

std::optional<ControlState> V4l2Controls::control(Control control) const
{
    v4l2_queryctrl range{};
    v4l2_control current{};
    range.id = current.id = idOf(control);
    if (request_(VIDIOC_QUERYCTRL, &range) != 0 || (range.flags & V4L2_CTRL_FLAG_DISABLED) != 0 ||
        request_(VIDIOC_G_CTRL, &current) != 0)
        return std::nullopt;
    const double unit = unitOf(control);
    return ControlState{current.value * unit, range.minimum * unit, range.maximum * unit};
}

void V4l2Controls::setControl(Control control, double value) const
{
    const auto state = this->control(control);
    if (!state)
        return;
    if (control == Control::EXPOSURE)
        set(V4L2_CID_EXPOSURE_AUTO, V4L2_EXPOSURE_MANUAL);
    else
        set(V4L2_CID_AUTOGAIN, 0);
    const double possible = std::clamp(value, state->least, state->most);
    set(idOf(control), static_cast<std::int32_t>(std::lround(possible / unitOf(control))));
}

void V4l2Controls::set(std::uint32_t id, std::int32_t value) const
{
    v4l2_control wanted{id, value};
    request_(VIDIOC_S_CTRL, &wanted);
}

} // namespace tesmor::cameras
