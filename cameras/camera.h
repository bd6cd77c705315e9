// SPDX-License-Identifier: GPL-2.0-or-later
// A camera of any kind: open it, start it, take its frames.
//
// Threads
//   Each camera has a thread of its own, on which both sinks run. All functions may be called from any other thread,
//   from one at a time start and stop. No function waits longer than it says here, however the camera behaves: what a
//   dead camera's library needs to give it up goes on in the background, 15 seconds at most.
//
// Faults
//   A camera that is lost (unplugged, switched off, the stream at its end) is told by CameraEvent::LOST and delivers
//   nothing more; to go on, open it again as a new Camera.
#pragma once

#include "cameras/device.h"
#include "cameras/frame.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tesmor::cameras {

enum class CameraEvent {
    STALLED, // no frame for 3 seconds more than the exposure takes
    RESUMED, // the first frame after that follows
    RESIZED, // frames of another size follow
    LOST,    // no frame will come
};

// Hears of each event with one line for people, in order with the frames. Must not throw.
using EventSink = std::function<void(CameraEvent, const std::string& text)>;

class CameraSource;

class Camera {
public:
    // Opens a camera of this computer by its name; see openDevice in camera_list.h. Returns within 20 seconds. Throws
    // CameraError.
    explicit Camera(const std::string& name);

    // Opens what `make` makes, on the camera's own thread.
    explicit Camera(const DeviceMaker& make);

    // Stops and closes, within half a second after the sinks' call in hand.
    ~Camera();

    Camera(const Camera&) = delete;
    Camera& operator=(const Camera&) = delete;

    // Starts the stream; does nothing when started. The failure of a start is told as LOST. Returns at once, or, after
    // a stop that the camera has not finished, within 20 seconds. Throws CameraError when the camera is lost.
    void start(FrameSink frameSink, EventSink eventSink);

    // Returns within half a second after the sinks' call in hand. No call of a sink is under way or will come then.
    // Never from a sink.
    void stop() noexcept;

    // Returns at once with what the camera last told; none where there is no such control.
    std::optional<ControlState> control(Control control) const;

    // Returns at once. Takes effect before the stream starts, or within a tenth of a second or the time of a frame.
    void setControl(Control control, double value);

private:
    std::shared_ptr<CameraSource> source_;
};

} // namespace tesmor::cameras
