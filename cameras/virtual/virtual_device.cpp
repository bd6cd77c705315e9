// SPDX-License-Identifier: GPL-2.0-or-later
#include "cameras/virtual/virtual_device.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>

namespace tesmor::cameras {

VirtualDevice::VirtualDevice(std::shared_ptr<microscope::VirtualMicroscope> microscope, double framesPerSecond)
    : microscope_(std::move(microscope)),
      period_(std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1 / framesPerSecond)))
{
}

VirtualDevice::~VirtualDevice()
{
    stop();
}

void VirtualDevice::start()
{
    try {
        microscope_->start([this](const microscope::Frame& frame) {
            (*sink_)({frame.pixels, frame.width, frame.height, frame.number, Clock::now()});
            delivered_ = true;
        });
    } catch (const std::system_error&) {
        throw CameraError("the virtual microscope's drive cannot be had: unit " +
                          std::to_string(microscope_->settings().unit) +
                          " is taken; end the drive service or the program that has it");
    }
    due_ = Clock::now();
}

bool VirtualDevice::next(std::chrono::milliseconds limit, const FrameSink& sink)
{
    const auto now = Clock::now();
    std::this_thread::sleep_until(std::min(due_, now + limit));
    if (due_ > now + limit)
        return false;
    due_ = std::max(due_ + period_, Clock::now());
    sink_ = &sink;
    delivered_ = false;
    microscope_->deliverFrame();
    return delivered_;
}

void VirtualDevice::stop() noexcept
{
    microscope_->stop();
}

} // namespace tesmor::cameras
