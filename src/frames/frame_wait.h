// The worker's wait for a live frame.
#pragma once

#include <cstdint>

namespace tesmor {

// Asks the frame hook for the next frame and waits until it has been served. Worker thread only.
// Returns SUCCESS; ABORTED within 128 ms of runFlag falling to 0, at once when it is 0 already; NO_FRAME when more than
// 4000 ms have passed, which clears runFlag too, so that the whole command ends.
std::int32_t waitForFrame();

} // namespace tesmor
