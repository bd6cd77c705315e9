#include "microscope/camera/camera.h"

#include <algorithm>
#include <utility>

namespace tesmor::microscope {

Camera::Camera(const CameraSettings& settings, const Scene& scene, const Sensor& sensor, const Motor& motor,
               AcknowledgementGate& gate)
    : settings_(settings), scene_(scene), sensor_(sensor), motor_(motor), gate_(gate),
      image_(scene.width(), scene.height()), row_(3 * static_cast<std::size_t>(scene.width()))
{
}

Camera::~Camera()
{
    stop();
}

void Camera::start(FrameSink sink)
{
    sink_ = std::move(sink);
    nextNumber_ = 0;
    stopping_ = false;
    if (settings_.framesPerSecond > 0)
        thread_ = std::thread([this] { run(); });
}

void Camera::stop() noexcept
{
    {
        std::lock_guard guard(stopMutex_);
        stopping_ = true;
    }
    stopSignal_.notify_all();
    if (thread_.joinable())
        thread_.join();
}

void Camera::deliverFrame()
{
    if (!stopping_)
        exposeFrame();
}

void Camera::run()
{
    const Clock::duration period = settings_.timeScale.realTime(1 / settings_.framesPerSecond);
    Clock::time_point next = Clock::now();
    while (!stopping_) {
        exposeFrame();
        next = std::max(next + period, Clock::now());
        std::unique_lock lock(stopMutex_);
        stopSignal_.wait_until(lock, next, [this] { return stopping_.load(); });
    }
}

void Camera::exposeFrame()
{
    std::lock_guard guard(frameMutex_);
    const std::uint64_t number = nextNumber_++;
    bool delivered = false;
    while (!delivered && !stopping_) {
        const std::uint64_t exposure = gate_.beginExposure();
        const std::int64_t position = motor_.position(Clock::now());
        readOut(position, number);
        delivered = gate_.deliver(exposure, [&] {
            if (sink_)
                sink_({image_.pixels.data(), image_.width, image_.height, number, position});
        });
    }
}

void Camera::readOut(std::int64_t position, std::uint64_t number)
{
    for (std::int32_t row = 0; row < image_.height; ++row) {
        scene_.renderRow(static_cast<double>(position), row, row_);
        std::uint8_t* const bytes = image_.pixels.data() + rowBytes(image_.width) * static_cast<std::size_t>(row);
        sensor_.expose(row_, number, row, bytes);
    }
}

} // namespace tesmor::microscope
