// The video thread's side of the exchange of a frame: what tesmor_video does.
#pragma once

#include "session/session.h"

#include <cstdint>

namespace tesmor {

// Takes the worker's request, if it still stands, and serves it: measures the frame for an autofocus, hands it to the
// host's FrameCallback for a stack or a capture, then signals frameEvent. An exception of the callback passes through;
// the worker then goes on waiting.
void serveFrame(Session& session, const std::uint8_t* image, std::int32_t width, std::int32_t height);

// For every live frame, on the host's video thread. One load while the worker has not asked for a frame.
inline void handleFrame(Session& session, const std::uint8_t* image, std::int32_t width, std::int32_t height)
{
    if (session.frameRequest.load(std::memory_order_relaxed) != 0)
        serveFrame(session, image, width, height);
}

} // namespace tesmor
