// Merges a focus stack into one image that is sharp throughout.
//
// A soft, per-pixel weighted mean:
//   1. each image is sharpened in the frequency domain (sharpen_engine.h);
//   2. the difference between the image and its sharpened copy is its focus measure (focus_weight.h);
//   3. five passes of a 3 x 3 mean smooth the measure (smoothing.h);
//   4. the image's colour enters the mean of every pixel with its measure there as weight (weighted_mean.h);
//   5. the mean is itself sharpened once and written to the output.
#pragma once

#include "tesmor.h"

#include <cstdint>

namespace tesmor {

// Called with a null image and the progress in percent. Worker thread only; what the callback throws passes through.
//   images          imageCount pointers to images of width x height, in tesmor.h's layout; read only
//   width, height   pixels
//   output          written at the very end, padding bytes excepted
// Returns SUCCESS; NO_MEMORY, before any callback, also for sizes that ImageLayout refuses; ABORTED when library.runFlag
// falls to 0 before the last image's weights are in.
std::int32_t fuseImages(const std::uint8_t* const* images, std::uint64_t imageCount, std::uint32_t width,
                        std::uint32_t height, std::uint8_t* output, FrameCallback frameCallback, void* context);

} // namespace tesmor
