// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/camera/camera.h"

#include <algorithm>
#include <utility>

namespace tesmor::microscope {

Camera::Camera(const CameraSettings& settings, const Scene& scene, const Sensor& sensor, const Motor& motor,
               AcknowledgementGate& gate)
    : settings_(settings), scene_(scene), sensor_(sensor), motor_(motor), gate_(gate),
      image_(scene.width(), scene.height()), row_(3 * static_cast<std::size_t>(scene.width() + 2 * scene.margin()))
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
        const double seconds =
            static_cast<double>(number) / (settings_.framesPerSecond > 0 ? settings_.framesPerSecond : 1);
        const Warp warp = settings_.motion.at(position, seconds);
        readOut(position, number, warp);
        delivered = gate_.deliver(exposure, [&] {
            if (sink_)
                sink_({image_.pixels.data(), image_.width, image_.height, number, position, warp});
        });
    }
}

void Camera::readOut(std::int64_t position, std::uint64_t number, const Warp& warp)
{
    const auto focus = static_cast<double>(position);
    const std::int32_t margin = scene_.margin();
    const std::span<std::uint16_t> frameRow =
        std::span(row_).subspan(3 * static_cast<std::size_t>(margin), 3 * static_cast<std::size_t>(image_.width));
    if (warp == Warp{}) {
        for (std::int32_t row = 0; row < image_.height; ++row) {
            scene_.renderRow(focus, row, row_);
            exposeRow(frameRow, number, row);
        }
        return;
    }
    whole_.resize(row_.size() * static_cast<std::size_t>(image_.height + 2 * margin));
    for (std::int32_t row = -margin; row < image_.height + margin; ++row)
        scene_.renderRow(focus, row,
                         std::span(whole_).subspan(static_cast<std::size_t>(row + margin) * row_.size(), row_.size()));
    for (std::int32_t row = 0; row < image_.height; ++row) {
        showRow({image_.width, image_.height, margin, whole_}, warp, row, frameRow);
        exposeRow(frameRow, number, row);
    }
}

void Camera::exposeRow(std::span<const std::uint16_t> levels, std::uint64_t number, std::int32_t row)
{
    sensor_.expose(levels, number, row, image_.pixels.data() + rowBytes(image_.width) * static_cast<std::size_t>(row));
}

} // namespace tesmor::microscope
