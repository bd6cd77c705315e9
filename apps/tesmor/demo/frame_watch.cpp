// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/frame_watch.h"

#include "images/frame_image.h"
#include "protocol/central_region.h"
#include "tesmor.h"

#include <algorithm>
#include <cmath>

namespace tesmor::apps {

namespace {

double contrastOf(const microscope::Frame& frame, const Region& region)
{
    double sum = 0;
    double squares = 0;
    for (int y = region.top; y < region.top + region.height; ++y) {
        const std::uint8_t* pixel = frame.pixels + microscope::rowBytes(frame.width) * static_cast<std::size_t>(y) +
                                    3 * static_cast<std::size_t>(region.left);
        for (int x = 0; x < region.width; ++x, pixel += 3) {
            const double brightness = 0.114 * pixel[0] + 0.587 * pixel[1] + 0.299 * pixel[2];
            sum += brightness;
            squares += brightness * brightness;
        }
    }
    const double count = static_cast<double>(region.width) * region.height;
    return std::sqrt(std::max(0.0, squares / count - sum / count * (sum / count)));
}

} // namespace

void FrameWatch::receive(const microscope::Frame& frame)
{
    const double contrast = contrastOf(frame, centralRegion(frame.width, frame.height, magnification_));
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
