// Where the camera's frames go: to the library, with a note of each.
#pragma once

#include "microscope/camera/image.h"

#include <QImage>

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

namespace tesmor::apps {

using Clock = std::chrono::steady_clock;

struct SeenFrame {
    Clock::time_point time; // shortly before the library got it
    std::int64_t position;  // motor steps: what the frame shows
    double contrast;        // standard deviation of brightness where the autofocus looks, grey levels
};

// `receive` runs on the camera's thread, all else on any.
class FrameWatch {
public:
    explicit FrameWatch(std::uint16_t magnification) : magnification_(magnification) {}

    void receive(const microscope::Frame& frame);

    std::vector<SeenFrame> frames() const; // all, in order
    std::size_t count() const;
    std::optional<SeenFrame> last() const;
    QImage firstImage() const; // null before the first frame, and without memory

private:
    const std::uint16_t magnification_;
    mutable std::mutex mutex_;
    std::vector<SeenFrame> frames_;
    QImage firstImage_;
};

} // namespace tesmor::apps
