// SPDX-License-Identifier: GPL-2.0-or-later
// What every kind of camera implements. A Camera (camera.h) owns one, and calls all of it on one thread, which nobody
// else waits for without a limit: so every function may block, and simply does what the camera's library does.
#pragma once

#include "cameras/frame.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace tesmor::cameras {

// One line for people: what is wrong and what to do. Without the camera's name in front.
class CameraError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class Control {
    EXPOSURE, // seconds
    GAIN,     // in the camera's own unit: decibels for most, a plain number for USB cameras
};

struct ControlState {
    double value;
    double least;
    double most;
};

// Constructed open, stopped. The destructor stops and closes.
class Device {
public:
    Device() = default;
    virtual ~Device() = default;
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    // Begins the stream. Throws CameraError.
    virtual void start() = 0;

    // Waits for a frame and hands it to the sink; false when none came within the limit. When several are there, the
    // newest; while started only. Throws CameraError when the camera is lost.
    virtual bool next(std::chrono::milliseconds limit, const FrameSink& sink) = 0;

    // Ends the stream.
    virtual void stop() noexcept = 0;

    // None where the camera has no such control.
    virtual std::optional<ControlState> control(Control) const
    {
        return std::nullopt;
    }

    // Also ends the camera's own choice of the value. What it cannot have is ignored; control() tells what came of it.
    virtual void setControl(Control, double) {}
};

using DeviceMaker = std::function<std::unique_ptr<Device>()>; // throws CameraError

} // namespace tesmor::cameras
