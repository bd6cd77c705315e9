// SPDX-License-Identifier: GPL-2.0-or-later
// The newest frame on its way from the camera's thread to the window's: one place, the latest wins. A window that is
// slow shows fewer frames and never old ones.
#pragma once

#include "cameras/frame.h"

#include <QImage>

#include <array>
#include <cstdint>
#include <mutex>

namespace tesmor::apps {

class FrameSlot {
public:
    // On the camera's thread. Returns whether the slot was empty, so that its taker has to be told.
    bool put(const cameras::Frame& frame);

    // Null when there is none.
    QImage take();

    std::uint64_t dropped() const; // frames that were never taken

private:
    QImage& spareImage(QSize size);

    std::array<QImage, 3> images_; // of the camera's thread: in the slot, on the screen, and being filled
    mutable std::mutex mutex_;     // guards what follows
    QImage newest_;
    std::uint64_t dropped_ = 0;
};

} // namespace tesmor::apps
