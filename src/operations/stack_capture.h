// The capture of a focus stack: frames at evenly spaced focus positions.
#pragma once

#include "tesmor.h"

#include <cstdint>

namespace tesmor {

// Moves the focus by one spacing and has the next live frame handed to `frameCallback`, `sliceCount` times; then drives
// the focus back in as many moves of the same size. With `notifyOnly` the callback is only told of each move.
// Reports its one result code through `frameCallback` with a null image. The drive is closed on every way out; what
// the callback throws passes through. Worker thread only. An abort is seen by the frame waits alone.
void captureStack(std::uint16_t magnification, std::uint16_t sliceCount, std::int32_t sliceSpacing,
                  std::uint32_t notifyOnly, FrameCallback frameCallback, void* context);

} // namespace tesmor
