// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/frame_tap.h"

#include "focusing/contrast.h"
#include "tesmor.h"

namespace tesmor::apps {

void FrameTap::receive(const cameras::Frame& frame)
{
    const auto arrival = cameras::Clock::now();
    tesmor_video(frame.pixels, frame.width, frame.height);
    const double sharpness = contrastOf(frame.pixels, frame.width, frame.height, magnification_);
    sharpness_ = sharpness; // before the window takes the frame and asks for it
    if (slot_.put(frame))
        frameWaits_();
    ++frameCount_;
    const std::lock_guard lock(mutex_);
    if (isRecording_)
        record_.push_back({arrival, 0, sharpness});
}

void FrameTap::beginRecord()
{
    const std::lock_guard lock(mutex_);
    record_.clear();
    isRecording_ = true;
}

void FrameTap::endRecord()
{
    const std::lock_guard lock(mutex_);
    isRecording_ = false;
}

std::vector<SeenFrame> FrameTap::record() const
{
    const std::lock_guard lock(mutex_);
    return record_;
}

} // namespace tesmor::apps
