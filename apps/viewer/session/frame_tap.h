// SPDX-License-Identifier: GPL-2.0-or-later
// Where the camera's frames go: first to the library, then to the record of a search and to the window. receive runs on
// the camera's thread, everything else on the window's.
#pragma once

#include "cameras/frame.h"
#include "focusing/seen_frame.h"
#include "viewer/session/frame_slot.h"

#include <QSize>

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace tesmor::apps {

class FrameTap {
public:
    // `frameWaits` is called on the camera's thread when there is a frame to take.
    explicit FrameTap(std::function<void()> frameWaits) : frameWaits_(std::move(frameWaits)) {}

    void receive(const cameras::Frame& frame);

    // The newest frame; null when it has been taken.
    QImage take()
    {
        return slot_.take();
    }

    // Of the objective: it decides which part of a frame is measured.
    void setMagnification(std::uint16_t magnification)
    {
        magnification_ = magnification;
    }

    // Grey levels, of the last frame.
    double sharpness() const
    {
        return sharpness_;
    }

    std::uint64_t frameCount() const
    {
        return frameCount_;
    }

    // That the window did not take in time.
    std::uint64_t droppedCount() const
    {
        return slot_.dropped();
    }

    // Forgets the record and begins a new one; after endRecord it does not grow.
    void beginRecord();
    void endRecord();
    std::vector<SeenFrame> record() const;

private:
    const std::function<void()> frameWaits_;
    FrameSlot slot_;
    std::atomic<std::uint16_t> magnification_ = 10;
    std::atomic<double> sharpness_ = 0;
    std::atomic<std::uint64_t> frameCount_ = 0;
    mutable std::mutex mutex_; // guards what follows
    bool isRecording_ = false;
    std::vector<SeenFrame> record_;
};

} // namespace tesmor::apps
