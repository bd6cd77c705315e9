// SPDX-License-Identifier: GPL-2.0-or-later
// A host's video thread: one frame after the other, as fast as the library takes them.
#pragma once

#include "protocol/frame_layout.h"
#include "tesmor.h"

#include <atomic>
#include <thread>
#include <vector>

namespace tesmor::test {

class VideoThread {
public:
    VideoThread(std::int32_t width, std::int32_t height)
        : frame_(static_cast<std::size_t>(rowBytes(width) * height), 100), thread_([=, this] {
              while (!stop_) {
                  tesmor_video(frame_.data(), width, height);
                  std::this_thread::yield();
              }
          })
    {
    }

    ~VideoThread()
    {
        stop_ = true;
        thread_.join();
    }

    const std::uint8_t* frame() const
    {
        return frame_.data();
    }

private:
    std::vector<std::uint8_t> frame_;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

} // namespace tesmor::test
