// SPDX-License-Identifier: GPL-2.0-or-later
#include "cameras/genicam/genicam_device.h"

#include <algorithm>
#include <utility>

namespace tesmor::cameras {

namespace {

constexpr std::size_t BUFFER_BYTES = 64'000'000; // for all frames that wait
constexpr std::size_t FEWEST_BUFFERS = 4;
constexpr std::size_t MOST_BUFFERS = 32;
constexpr int SOCKET_BUFFER_BYTES = 32'000'000; // as far as the system lets an ordinary user

constexpr const char* REMEDY = "check its power and its cable, and close other programs that use it";

// Takes what Aravis has to say of a failure.
class Failure {
public:
    Failure() = default;
    ~Failure()
    {
        g_clear_error(&error_);
    }
    Failure(const Failure&) = delete;
    Failure& operator=(const Failure&) = delete;

    operator GError**()
    {
        g_clear_error(&error_);
        return &error_;
    }

    bool happened() const
    {
        return error_ != nullptr;
    }

    void throwIfAny() const
    {
        if (error_ != nullptr)
            throw CameraError(std::string(error_->message) + "; " + REMEDY);
    }

private:
    GError* error_ = nullptr;
};

} // namespace

GenicamDevice::GenicamDevice(const std::string& id)
{
    Failure failure;
    camera_.reset(arv_camera_new(id.c_str(), failure));
    failure.throwIfAny();
    ArvDevice* const device = arv_camera_get_device(camera_.get());
    if (ARV_IS_GV_DEVICE(device) && arv_gv_device_is_controller(ARV_GV_DEVICE(device)) == FALSE)
        throw CameraError("another program is using the camera; close that program");
    const auto onLost = +[](ArvDevice*, gpointer lost) { *static_cast<std::atomic<bool>*>(lost) = true; };
    g_signal_connect(device, "control-lost", G_CALLBACK(onLost), &lost_);
    arv_camera_clear_triggers(camera_.get(), failure); // where it has any
    arv_camera_set_acquisition_mode(camera_.get(), ARV_ACQUISITION_MODE_CONTINUOUS, failure);
    chooseFormat();
    // The largest packets that the network carries: the fewer, the less gets lost for a program that is late.
    if (arv_camera_is_gv_device(camera_.get()) != FALSE)
        arv_camera_gv_auto_packet_size(camera_.get(), failure);
}

GenicamDevice::~GenicamDevice()
{
    stop();
    g_signal_handlers_disconnect_by_data(arv_camera_get_device(camera_.get()), &lost_);
}

void GenicamDevice::chooseFormat()
{
    Failure failure;
    if (isConvertible(arv_camera_get_pixel_format(camera_.get(), failure)))
        return;
    failure.throwIfAny();
    for (const ArvPixelFormat format : convertibleFormats()) {
        arv_camera_set_pixel_format(camera_.get(), format, failure);
        if (!failure.happened())
            return;
    }
    throw CameraError(
        "it has no pixel format that can be converted; 8 bits of grey, of a Bayer mosaic, or of red, green "
        "and blue can");
}

void GenicamDevice::start()
{
    Failure failure;
    const auto payload = static_cast<std::size_t>(arv_camera_get_payload(camera_.get(), failure));
    failure.throwIfAny();
    stream_.reset(arv_camera_create_stream(camera_.get(), nullptr, nullptr, failure));
    failure.throwIfAny();
    if (ARV_IS_GV_STREAM(stream_.get()))
        g_object_set(stream_.get(), "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED, "socket-buffer-size",
                     SOCKET_BUFFER_BYTES, nullptr);
    const std::size_t count = std::clamp(BUFFER_BYTES / payload, FEWEST_BUFFERS, MOST_BUFFERS);
    for (std::size_t i = 0; i < count; ++i)
        arv_stream_push_buffer(stream_.get(), arv_buffer_new_allocate(payload));
    number_ = lastId_ = 0;
    arv_camera_start_acquisition(camera_.get(), failure);
    failure.throwIfAny();
}

bool GenicamDevice::next(std::chrono::milliseconds limit, const FrameSink& sink)
{
    if (lost_)
        throw CameraError("the camera does not respond any more; check its power and its cable");
    ArvBuffer* const buffer = newestBuffer(limit);
    if (buffer == nullptr)
        return false;
    const bool delivered = deliver(buffer, sink);
    arv_stream_push_buffer(stream_.get(), buffer);
    return delivered;
}

ArvBuffer* GenicamDevice::newestBuffer(std::chrono::milliseconds limit)
{
    const auto microseconds = std::chrono::duration_cast<std::chrono::microseconds>(limit).count();
    ArvBuffer* buffer = arv_stream_timeout_pop_buffer(stream_.get(), static_cast<std::uint64_t>(microseconds));
    while (buffer != nullptr) {
        ArvBuffer* const newer = arv_stream_try_pop_buffer(stream_.get());
        if (newer == nullptr)
            break;
        arv_stream_push_buffer(stream_.get(), std::exchange(buffer, newer));
    }
    return buffer;
}

bool GenicamDevice::deliver(ArvBuffer* buffer, const FrameSink& sink)
{
    if (arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SIZE_MISMATCH)
        throw CameraError("the camera's frames have changed their size; open it again");
    if (arv_buffer_get_status(buffer) != ARV_BUFFER_STATUS_SUCCESS)
        return false;
    const ArvPixelFormat format = arv_buffer_get_image_pixel_format(buffer);
    if (!isConvertible(format))
        throw CameraError("the camera's pixel format has changed; open it again");
    const std::int32_t width = arv_buffer_get_image_width(buffer);
    const std::int32_t height = arv_buffer_get_image_height(buffer);
    std::size_t size = 0;
    const auto* pixels = static_cast<const std::uint8_t*>(arv_buffer_get_image_data(buffer, &size));
    noteNumber(arv_buffer_get_frame_id(buffer));
    sink({converter_.convert(format, pixels, width, height), width, height, number_, timeOf(buffer)});
    return true;
}

// The camera's own number goes from 65535 to 1 where it has 16 bits.
void GenicamDevice::noteNumber(std::uint64_t id)
{
    if (lastId_ != 0)
        number_ += id > lastId_ ? id - lastId_ : 1;
    lastId_ = id;
}

// Of the first packet's arrival.
Clock::time_point GenicamDevice::timeOf(ArvBuffer* buffer)
{
    const auto age = g_get_real_time() * 1000 - static_cast<std::int64_t>(arv_buffer_get_system_timestamp(buffer));
    return Clock::now() - std::chrono::nanoseconds(std::max<std::int64_t>(age, 0));
}

void GenicamDevice::stop() noexcept
{
    if (!stream_)
        return;
    if (!lost_) {
        Failure failure;
        arv_camera_stop_acquisition(camera_.get(), failure);
    }
    stream_.reset();
}

std::optional<ControlState> GenicamDevice::control(Control control) const
{
    constexpr double MICROSECOND = 1e-6;
    Failure failure;
    ControlState state{};
    if (control == Control::EXPOSURE) {
        state.value = arv_camera_get_exposure_time(camera_.get(), failure) * MICROSECOND;
        if (!failure.happened())
            arv_camera_get_exposure_time_bounds(camera_.get(), &state.least, &state.most, failure);
        state.least *= MICROSECOND;
        state.most *= MICROSECOND;
    } else {
        state.value = arv_camera_get_gain(camera_.get(), failure);
        if (!failure.happened())
            arv_camera_get_gain_bounds(camera_.get(), &state.least, &state.most, failure);
    }
    return failure.happened() ? std::nullopt : std::optional(state);
}

void GenicamDevice::setControl(Control control, double value)
{
    const auto state = this->control(control);
    if (!state)
        return;
    const double possible = std::clamp(value, state->least, state->most);
    Failure failure;
    if (control == Control::EXPOSURE) {
        arv_camera_set_exposure_time_auto(camera_.get(), ARV_AUTO_OFF, failure);
        arv_camera_set_exposure_time(camera_.get(), possible * 1e6, failure);
    } else {
        arv_camera_set_gain_auto(camera_.get(), ARV_AUTO_OFF, failure);
        arv_camera_set_gain(camera_.get(), possible, failure);
    }
}

} // namespace tesmor::cameras
