// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/frame_watch.h"

#include "focusing/contrast.h"
#include "images/frame_image.h"
#include "tesmor.h"

namespace tesmor::apps {

void FrameWatch::receive(const microscope::Frame& frame)
{
    const double contrast = contrastOf(frame.pixels, frame.width, frame.height, magnification_);
    {
        const std::lock_guard lock(mutex_);
        frames_.push_back({Clock::now(), frame.position, contrast});
        if (firstImage_.isNull())
            firstImage_ = copyOfFrame(frame.pixels, frame.width, frame.height);
    }
    tesmor_video(frame.pixels, frame.width, frame.height);
}

std::vector<SeenFrame> FrameWatch::frames() const
{
    const std::lock_guard lock(mutex_);
    return frames_;
}

std::size_t FrameWatch::count() const
{
    const std::lock_guard lock(mutex_);
    return frames_.size();
}

std::optional<SeenFrame> FrameWatch::last() const
{
    const std::lock_guard lock(mutex_);
    return frames_.empty() ? std::nullopt : std::optional(frames_.back());
}

QImage FrameWatch::firstImage() const
{
    const std::lock_guard lock(mutex_);
    return firstImage_;
}

} // namespace tesmor::apps
