// SPDX-License-Identifier: GPL-2.0-or-later
// The video thread's side of the exchange of a frame: what tesmor_video does.
#pragma once

#include "session/session.h"

#include <cstdint>

namespace tesmor {

// Serves the worker's request, if it is still valid: measures the frame for an autofocus or passes it to the host's
// FrameCallback for a stack or a capture, then signals frameEvent. An exception of the callback passes through; the
// worker then keeps waiting.
void serveFrame(Session& session, const std::uint8_t* image, std::int32_t width, std::int32_t height);

// Called for every live frame, on the host's video thread. A single load while the worker is not waiting for a frame.
inline void handleFrame(Session& session, const std::uint8_t* image, std::int32_t width, std::int32_t height)
{
    if (session.frameRequest.load(std::memory_order_relaxed) != 0)
        serveFrame(session, image, width, height);
}

} // namespace tesmor
