// SPDX-License-Identifier: GPL-2.0-or-later
// Exposure and gain of a camera that the system's video driver runs, beside the stream that GStreamer takes from it.
#pragma once

#include "cameras/device.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace tesmor::cameras {

class V4l2Controls {
public:
    // As ioctl: 0 when it succeeds.
    using Request = std::function<int(unsigned long request, void* argument)>;

    explicit V4l2Controls(int descriptor);
    explicit V4l2Controls(Request request);

    // See Device.
    std::optional<ControlState> control(Control control) const;
    void setControl(Control control, double value) const;

private:
    void set(std::uint32_t id, std::int32_t value) const;

    Request request_;
};

} // namespace tesmor::cameras
