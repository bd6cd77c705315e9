// SPDX-License-Identifier: GPL-2.0-or-later
// The camera: exposes frames of a scene at the motor's position and hands them to a sink.
#pragma once

#include "microscope/camera/image.h"
#include "microscope/camera/picture_motion.h"
#include "microscope/camera/scene.h"
#include "microscope/camera/sensor.h"
#include "microscope/drive/acknowledgement_gate.h"
#include "microscope/drive/motor.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace tesmor::microscope {

struct CameraSettings {
    double framesPerSecond; // 0: no thread
    TimeScale timeScale;
    PictureMotion motion;
};

// start, stop and deliverFrame from one thread at a time.
class Camera {
public:
    // All of them must outlive the camera.
    Camera(const CameraSettings& settings, const Scene& scene, const Sensor& sensor, const Motor& motor,
           AcknowledgementGate& gate);

    // Stops.
    ~Camera();

    void start(FrameSink sink);

    // Blocks until the frame in hand is done with. No call of the sink is under way or will come then.
    void stop() noexcept;

    // Does nothing when stopped.
    void deliverFrame();

private:
    void run();
    void exposeFrame();
    void readOut(std::int64_t position, std::uint64_t number, const Warp& warp);
    void exposeRow(std::span<const std::uint16_t> levels, std::uint64_t number, std::int32_t row);

    const CameraSettings settings_;
    const Scene& scene_;
    const Sensor& sensor_;
    const Motor& motor_;
    AcknowledgementGate& gate_;

    std::mutex frameMutex_; // one frame at a time; guards what follows
    FrameSink sink_;
    std::uint64_t nextNumber_ = 0;
    Image image_;
    std::vector<std::uint16_t> row_;   // of the scene, margins included
    std::vector<std::uint16_t> whole_; // all rows of the scene, once the picture moves

    std::mutex stopMutex_; // for the pause between frames
    std::condition_variable stopSignal_;
    std::atomic<bool> stopping_{true};
    std::thread thread_;
};

} // namespace tesmor::microscope
