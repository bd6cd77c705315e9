// SPDX-License-Identifier: GPL-2.0-or-later
// The camera of a virtual microscope in this process. While it is started, so is the microscope's drive.
#pragma once

#include "cameras/device.h"
#include "microscope/virtual_microscope.h"

#include <cstdint>
#include <memory>

namespace tesmor::cameras {

class VirtualDevice : public Device {
public:
    // The microscope must have been made with 0 frames a second: they are exposed here, so many a second. Nobody else
    // may start or stop it.
    VirtualDevice(std::shared_ptr<microscope::VirtualMicroscope> microscope, double framesPerSecond);
    ~VirtualDevice() override;

    void start() override;
    bool next(std::chrono::milliseconds limit, const FrameSink& sink) override;
    void stop() noexcept override;

private:
    const std::shared_ptr<microscope::VirtualMicroscope> microscope_;
    const Clock::duration period_;
    Clock::time_point due_;
    const FrameSink* sink_ = nullptr;
    bool delivered_ = false;
};

} // namespace tesmor::cameras
