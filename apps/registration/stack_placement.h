// SPDX-License-Identifier: GPL-2.0-or-later
// How the frames of a stack lie over one of them. The frames are in focus order, of format
// QImage::Format_BGR888 and one size, their sides from LEAST_REGISTERED_SIDE to MOST_REGISTERED_SIDE.
#pragma once

#include "registration/placement.h"

#include <QImage>
#include <QRect>
#include <QSize>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tesmor::apps {

// What this build registers with, such as "OpenCV 4.6.0".
std::string registrationVersion();

struct StackPlacement {
    std::size_t reference;
    std::vector<std::optional<Placement>> frames; // over the reference; nothing where a frame cannot be registered

    std::size_t leftOut() const; // that many frames have no place
    bool leavesOutMost() const;  // of those beside the reference
};

// All frames but the reference: those before it, then those behind it, each time from the reference outwards.
std::vector<std::size_t> outwards(std::size_t reference, std::size_t count);

// From the reference outwards, each frame is registered on its neighbour; where one cannot be, the next one is
// registered on the last that could. The reference is the sharpest frame, or the second sharpest if most cannot be
// registered with the sharpest. The same result with any number of threads.
//   progress   called with the percentage done, on this thread
StackPlacement placeFrames(const std::vector<QImage>& frames, const std::function<void(int)>& progress);

// Bytes that placeFrames takes at most.
std::uint64_t placementMemory(QSize size);

// The part of the reference that all placed frames show; empty if there is none.
QRect sharedPart(const StackPlacement& placement, QSize size);

} // namespace tesmor::apps
