// SPDX-License-Identifier: GPL-2.0-or-later
// The thread of a camera, and what it shares with the threads that ask. It outlives its Camera when the device is slow
// to close.
#pragma once

#include "cameras/camera.h"
#include "cameras/stream_watch.h"

#include <array>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace tesmor::cameras {

// start, stop and close as those of Camera; close comes last.
class CameraSource {
public:
    // Begins the thread, and waits for the device to be open.
    static std::shared_ptr<CameraSource> open(const DeviceMaker& make);

    void start(FrameSink frameSink, EventSink eventSink);
    void stop() noexcept;
    void close() noexcept;
    std::optional<ControlState> control(Control control) const;
    void setControl(Control control, double value);

private:
    static constexpr std::array CONTROLS{Control::EXPOSURE, Control::GAIN};

    enum class Wish { REST, STREAM, CLOSE };
    enum class State { OPENING, RESTING, STREAMING, LOST, CLOSED };

    void awaitOpen();
    void wishFor(Wish wish) noexcept;

    // On the camera's thread.
    void run(const DeviceMaker& make);
    Wish awaitWish();
    void stream();
    void takeFrames();
    void deliver(const Frame& frame, StreamWatch& watch);
    void tell(const CameraNews& news);
    template <class Call>
    void callSink(Call call);
    void setControls();
    void readControls();
    void setState(State state);
    bool isStreamWished() const;
    bool isControlWished() const;

    mutable std::mutex mutex_; // guards what follows
    std::condition_variable changed_;
    Wish wish_ = Wish::REST;
    State state_ = State::OPENING;
    std::string failure_;
    std::array<std::optional<ControlState>, CONTROLS.size()> controls_;
    std::array<std::optional<double>, CONTROLS.size()> controlWishes_;

    std::mutex sinkMutex_; // held during a sink's call; taken before mutex_
    FrameSink frameSink_;  // both change only while the thread rests
    EventSink eventSink_;

    std::unique_ptr<Device> device_; // of the camera's thread
};

} // namespace tesmor::cameras
