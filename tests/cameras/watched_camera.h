// SPDX-License-Identifier: GPL-2.0-or-later
// Takes a camera's frames and events, and waits for them.
#pragma once

#include "cameras/camera.h"
#include "protocol/frame_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tesmor::test {

struct KeptFrame {
    int width, height;
    std::uint64_t number;
    std::vector<std::uint8_t> bytes;
};

struct KeptEvent {
    cameras::CameraEvent event;
    std::string text;
    std::size_t framesBefore;
};

class WatchedCamera {
public:
    template <class From>
    explicit WatchedCamera(const From& from) : camera(from)
    {
    }

    ~WatchedCamera()
    {
        camera.stop();
    }

    void start()
    {
        camera.start([this](const cameras::Frame& frame) { keep(frame); },
                     [this](cameras::CameraEvent event, const std::string& text) {
                         const std::lock_guard lock(mutex_);
                         events_.push_back({event, text, frames_.size()});
                         changed_.notify_all();
                     });
    }

    // So many frames more than there are.
    std::vector<KeptFrame> awaitFrames(std::size_t count)
    {
        std::unique_lock lock(mutex_);
        const std::size_t wanted = frames_.size() + count;
        EXPECT_TRUE(changed_.wait_for(lock, LIMIT, [&] { return frames_.size() >= wanted; }));
        return frames_;
    }

    KeptEvent awaitEvent(cameras::CameraEvent event)
    {
        const auto isIt = [&](const KeptEvent& kept) { return kept.event == event; };
        std::unique_lock lock(mutex_);
        EXPECT_TRUE(changed_.wait_for(lock, LIMIT, [&] { return std::ranges::any_of(events_, isIt); }));
        const auto found = std::ranges::find_if(events_, isIt);
        return found == events_.end() ? KeptEvent{} : *found;
    }

    std::vector<KeptFrame> frames() const
    {
        const std::lock_guard lock(mutex_);
        return frames_;
    }

    cameras::Camera camera;

private:
    static constexpr std::chrono::seconds LIMIT{60}; // far above what is needed

    void keep(const cameras::Frame& frame)
    {
        const auto size = static_cast<std::size_t>(rowBytes(frame.width) * frame.height);
        const std::lock_guard lock(mutex_);
        frames_.push_back({frame.width, frame.height, frame.number, {frame.pixels, frame.pixels + size}});
        changed_.notify_all();
    }

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<KeptFrame> frames_;
    std::vector<KeptEvent> events_;
};

} // namespace tesmor::test
