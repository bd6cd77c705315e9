// SPDX-License-Identifier: GPL-2.0-or-later
// The worker's side of the exchange of a frame.
#pragma once

#include "frames/frames.h"

namespace tesmor {

namespace platform {
class Clock;
}
struct Session;

class FrameWait final : public Frames {
public:
    // Both must outlive it.
    FrameWait(Session& session, platform::Clock& clock) noexcept : session_(session), clock_(clock) {}

    // Worker thread only. TESMOR_ABORTED within 128 ms after runFlag falls to 0, immediately if it already is;
    // TESMOR_NO_FRAME after more than 4000 ms, which also clears runFlag.
    FrameReply next() override;

private:
    std::int32_t wait();

    Session& session_;
    platform::Clock& clock_;
};

} // namespace tesmor
