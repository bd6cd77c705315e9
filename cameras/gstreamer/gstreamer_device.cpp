// SPDX-License-Identifier: GPL-2.0-or-later
#include "cameras/gstreamer/gstreamer_device.h"

#include "cameras/gstreamer/gstreamer_failure.h"

#include <gst/video/video.h>

#include <algorithm>
#include <utility>

namespace tesmor::cameras {

namespace {

// The rows of BGR are padded to a multiple of 4 bytes here as in the library, so that no frame is copied. Of the frames
// that come while one is looked at, the newest is kept.
constexpr const char* TAIL = " ! videoconvert ! video/x-raw,format=BGR,multiview-mode=mono "
                             "! appsink name=tesmor_frames max-buffers=1 drop=true enable-last-sample=false";

constexpr GstClockTime PREROLL_LIMIT = 5 * GST_SECOND;

ObjectHandle<GstElement> makePipeline(const std::string& text)
{
    GError* error = nullptr;
    ObjectHandle<GstElement> pipeline(
        gst_parse_launch_full(text.c_str(), nullptr, GST_PARSE_FLAG_FATAL_ERRORS, &error));
    const ErrorHandle failure(error);
    if (!pipeline)
        throw CameraError(pipelineFailure(*failure));
    return pipeline;
}

} // namespace

GStreamerDevice::GStreamerDevice(const std::string& head, ObjectHandle<GstElement> source)
    : pipeline_(makePipeline(head + TAIL)),
      frames_(GST_APP_SINK(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "tesmor_frames")))
{
    if (source) {
        const ObjectHandle<GstElement> first(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "tesmor_head"));
        gst_bin_add(GST_BIN(pipeline_.get()), source.get());
        gst_element_link(source.release(), first.get());
    }
    setState(GST_STATE_READY);
    findControls();
}

GStreamerDevice::~GStreamerDevice()
{
    gst_element_set_state(pipeline_.get(), GST_STATE_NULL);
}

void GStreamerDevice::findControls()
{
    const ObjectHandle<GstElement> source(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "tesmor_v4l2"));
    if (!source)
        return;
    int descriptor = -1; // the source's own
    g_object_get(source.get(), "device-fd", &descriptor, nullptr);
    controls_.emplace(descriptor);
}

void GStreamerDevice::setState(GstState state)
{
    if (gst_element_set_state(pipeline_.get(), state) == GST_STATE_CHANGE_FAILURE)
        throwFailure("the camera cannot be started; close other programs that use it");
}

void GStreamerDevice::start()
{
    nextNumber_ = 0;
    firstOffset_.reset();
    setState(GST_STATE_PAUSED);
    paceByArrival();
    setState(GST_STATE_PLAYING);
}

// A live source's frames are taken as they come; those of a recording at their time.
void GStreamerDevice::paceByArrival()
{
    const auto result = gst_element_get_state(pipeline_.get(), nullptr, nullptr, PREROLL_LIMIT);
    if (result == GST_STATE_CHANGE_FAILURE)
        throwFailure("the camera cannot be started; close other programs that use it");
    isLive_ = result != GST_STATE_CHANGE_SUCCESS;
    g_object_set(frames_.get(), "sync", isLive_ ? FALSE : TRUE, nullptr);
}

bool GStreamerDevice::next(std::chrono::milliseconds limit, const FrameSink& sink)
{
    const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(limit).count();
    const SampleHandle sample(gst_app_sink_try_pull_sample(frames_.get(), static_cast<GstClockTime>(nanoseconds)));
    if (sample) {
        deliver(sample.get(), sink);
        return true;
    }
    if (gst_app_sink_is_eos(frames_.get()))
        throwFailure("the stream has ended; open it again to see it from its start");
    throwFailure(nullptr);
    return false;
}

// With what went wrong in the pipeline; with `otherwise` when it has not told, if that is given.
void GStreamerDevice::throwFailure(const char* otherwise)
{
    const ObjectHandle<GstBus> bus(gst_element_get_bus(pipeline_.get()));
    if (const MessageHandle message{gst_bus_pop_filtered(bus.get(), GST_MESSAGE_ERROR)})
        throw CameraError(streamFailure(message.get()));
    if (otherwise != nullptr)
        throw CameraError(otherwise);
}

void GStreamerDevice::deliver(GstSample* sample, const FrameSink& sink)
{
    GstBuffer* const buffer = gst_sample_get_buffer(sample);
    GstVideoInfo info;
    GstVideoFrame picture;
    if (gst_video_info_from_caps(&info, gst_sample_get_caps(sample)) == FALSE ||
        gst_video_frame_map(&picture, &info, buffer, GST_MAP_READ) == FALSE)
        throw CameraError("a frame cannot be read; close other programs, or choose a smaller size");
    if (GST_BUFFER_OFFSET_IS_VALID(buffer)) {
        firstOffset_ = firstOffset_.value_or(GST_BUFFER_OFFSET(buffer));
        nextNumber_ = std::max(nextNumber_, GST_BUFFER_OFFSET(buffer) - *firstOffset_);
    }
    sink({static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&picture, 0)), info.width, info.height,
          nextNumber_++, timeOf(sample)});
    gst_video_frame_unmap(&picture);
}

Clock::time_point GStreamerDevice::timeOf(GstSample* sample) const
{
    const auto now = Clock::now();
    const ObjectHandle<GstClock> clock(gst_element_get_clock(pipeline_.get()));
    const GstClockTime time = gst_segment_to_running_time(gst_sample_get_segment(sample), GST_FORMAT_TIME,
                                                          GST_BUFFER_PTS(gst_sample_get_buffer(sample)));
    if (!isLive_ || !clock || time == GST_CLOCK_TIME_NONE)
        return now;
    const GstClockTimeDiff age =
        GST_CLOCK_DIFF(gst_element_get_base_time(pipeline_.get()) + time, gst_clock_get_time(clock.get()));
    return now - std::chrono::nanoseconds(std::max<GstClockTimeDiff>(age, 0));
}

void GStreamerDevice::stop() noexcept
{
    gst_element_set_state(pipeline_.get(), GST_STATE_READY);
}

std::optional<ControlState> GStreamerDevice::control(Control control) const
{
    return controls_ ? controls_->control(control) : std::nullopt;
}

void GStreamerDevice::setControl(Control control, double value)
{
    if (controls_)
        controls_->setControl(control, value);
}

} // namespace tesmor::cameras
