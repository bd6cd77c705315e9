// What tesmor_video does with a live frame.
#pragma once

#include <cstdint>

namespace tesmor {

// Serves the frame that the worker has asked for, if it has: measures it for an autofocus, hands it to the host's
// FrameCallback for a stack or a capture, then signals frameEvent. Called on the host's video thread. An exception of
// the callback passes through; the worker then goes on waiting.
void handleFrame(const std::uint8_t* image, std::int32_t width, std::int32_t height);

} // namespace tesmor
