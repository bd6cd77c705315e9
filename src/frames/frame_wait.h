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
    // Both outlive it.
    FrameWait(Session& session, platform::Clock& clock) noexcept : session_(session), clock_(clock) {}

    // Worker thread only. TESMOR_ABORTED within 128 ms of runFlag falling to 0, at once when it is 0 already;
    // TESMOR_NO_FRAME when more than 4000 ms have passed, which clears runFlag too.
    FrameReply next() override;

private:
    std::int32_t wait();

    Session& session_;
    platform::Clock& clock_;
};

} // namespace tesmor
