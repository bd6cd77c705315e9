// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/frame_slot.h"

#include "protocol/frame_layout.h"

#include <atomic>
#include <cstring>
#include <utility>

namespace tesmor::apps {

bool FrameSlot::put(const cameras::Frame& frame)
{
    QImage& image = spareImage({frame.width, frame.height});
    if (image.isNull())
        return false; // no memory: the frame is dropped
    std::memcpy(image.bits(), frame.pixels,
                static_cast<std::size_t>(rowBytes(frame.width)) * static_cast<std::size_t>(frame.height));
    const std::lock_guard lock(mutex_);
    const QImage replaced = std::exchange(newest_, image);
    if (!replaced.isNull())
        ++dropped_;
    return replaced.isNull();
}

QImage FrameSlot::take()
{
    const std::lock_guard lock(mutex_);
    return std::exchange(newest_, QImage());
}

std::uint64_t FrameSlot::dropped() const
{
    const std::lock_guard lock(mutex_);
    return dropped_;
}

// One that nobody else holds: memory of that size is costly to get.
QImage& FrameSlot::spareImage(QSize size)
{
    for (QImage& image : images_) {
        if (image.size() == size && image.isDetached()) {
            std::atomic_thread_fence(std::memory_order_acquire); // after the last reader's reads
            return image;
        }
    }
    for (QImage& image : images_) {
        if (image.size() != size)
            return image = QImage(size, QImage::Format_BGR888);
    }
    return images_.front() = QImage(size, QImage::Format_BGR888);
}

} // namespace tesmor::apps
