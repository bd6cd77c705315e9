// SPDX-License-Identifier: GPL-2.0-or-later
// The capture of a focus stack: frames at evenly spaced focus positions.
#pragma once

#include <cstdint>
#include <functional>

namespace tesmor {

class FocusDrive;
class Frames;

struct StackPlan {
    std::uint16_t magnification;
    std::uint16_t sliceCount;
    std::int32_t sliceSpacing; // in spacing units of the magnification; negative reverses the run
    bool notifyOnly;           // the host takes the frames itself
};

// Moves the focus by one spacing and waits for the next live frame to reach the host, `sliceCount` times; then drives
// the focus back in as many moves of the same size. In notify-only mode, calls `onMoved` after each move and waits for
// no frame. Returns TESMOR_STACK_DONE, TESMOR_MOVE_FAILED, TESMOR_ABORTED (which only frame waits notice),
// TESMOR_NO_DRIVE or TESMOR_NO_FRAME. An exception of `onMoved` passes through.
std::int32_t captureStack(FocusDrive& drive, Frames& frames, const StackPlan& plan,
                          const std::function<void()>& onMoved);

} // namespace tesmor
