// SPDX-License-Identifier: GPL-2.0-or-later
#include "registration/frame_overlay.h"

#include "registration/opencv.h"

namespace tesmor::apps {

namespace {

QImage drawnOver(const QImage& inner, const QImage& frame, const Placement& placement)
{
    QImage drawn = inner.copy();
    if (drawn.isNull())
        throw std::bad_alloc();
    cv::Mat target = matOf(drawn);
    cv::warpAffine(matOf(frame), target, matrixOf(placement, target.size()), target.size(),
                   cv::INTER_LANCZOS4 | cv::WARP_INVERSE_MAP, cv::BORDER_TRANSPARENT);
    return drawn;
}

} // namespace

void layOver(std::vector<QImage>& frames, const StackPlacement& placement)
{
    withoutOpenCvErrors([&] {
        std::size_t inner = placement.reference;
        for (const std::size_t frame : outwards(placement.reference, frames.size())) {
            if (frame == placement.reference + 1)
                inner = placement.reference; // on to the other side
            if (!placement.frames[frame])
                continue;
            frames[frame] = drawnOver(frames[inner], frames[frame], *placement.frames[frame]);
            inner = frame;
        }
    });
    std::size_t next = 0;
    std::erase_if(frames, [&](const QImage&) { return !placement.frames[next++]; });
}

} // namespace tesmor::apps
