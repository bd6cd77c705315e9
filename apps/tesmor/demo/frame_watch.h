// SPDX-License-Identifier: GPL-2.0-or-later
// Passes the camera's frames to the library and keeps a record of each.
#pragma once

#include "focusing/seen_frame.h"
#include "microscope/camera/image.h"

#include <QImage>

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

namespace tesmor::apps {

// `receive` runs on the camera's thread, everything else on any thread.
class FrameWatch {
public:
    explicit FrameWatch(std::uint16_t magnification) : magnification_(magnification) {}

    void receive(const microscope::Frame& frame);

    std::vector<SeenFrame> frames() const; // all, in order
    std::size_t count() const;
    std::optional<SeenFrame> last() const;
    QImage firstImage() const; // null before the first frame, or if memory is short

private:
    const std::uint16_t magnification_;
    mutable std::mutex mutex_;
    std::vector<SeenFrame> frames_;
    QImage firstImage_;
};

} // namespace tesmor::apps
