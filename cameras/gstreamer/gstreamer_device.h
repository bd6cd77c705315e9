// SPDX-License-Identifier: GPL-2.0-or-later
// The frames of one GStreamer pipeline.
#pragma once

#include "cameras/device.h"
#include "cameras/gstreamer/gstreamer_handle.h"
#include "cameras/gstreamer/v4l2_controls.h"

#include <gst/app/gstappsink.h>

#include <cstdint>
#include <optional>
#include <string>

namespace tesmor::cameras {

class GStreamerDevice : public Device {
public:
    //   head     a pipeline's text, up to where pictures of any kind come out
    //   source   to be put before an element of the head that is named "tesmor_head"; may be null
    // A v4l2src in the head that is named "tesmor_v4l2" has exposure and gain.
    // Throws CameraError.
    explicit GStreamerDevice(const std::string& head, ObjectHandle<GstElement> source = nullptr);
    ~GStreamerDevice() override;

    void start() override;
    bool next(std::chrono::milliseconds limit, const FrameSink& sink) override;
    void stop() noexcept override;
    std::optional<ControlState> control(Control control) const override;
    void setControl(Control control, double value) override;

private:
    void findControls();
    void setState(GstState state);
    void paceByArrival();
    void throwFailure(const char* otherwise);
    void deliver(GstSample* sample, const FrameSink& sink);
    Clock::time_point timeOf(GstSample* sample) const;

    ObjectHandle<GstElement> pipeline_;
    ObjectHandle<GstAppSink> frames_;
    std::optional<V4l2Controls> controls_;
    bool isLive_ = false;
    std::uint64_t nextNumber_ = 0;
    std::optional<std::uint64_t> firstOffset_; // the source's own number of the first frame
};

} // namespace tesmor::cameras
