// SPDX-License-Identifier: GPL-2.0-or-later
// Merges a focus stack into one image that is sharp throughout.
//
// A soft, per-pixel weighted mean:
//   1. each image is sharpened in the frequency domain (sharpen_engine.h);
//   2. the difference between the image and its sharpened copy gives each pixel its weight (pixel_weight.h);
//   3. five passes of a 3 x 3 mean smooth the weights (smoothing.h);
//   4. the image's colours enter the mean with these weights (weighted_mean.h);
//   5. the mean is itself sharpened once and written to the output.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

namespace tesmor {

// Takes the progress in percent, on the thread that fuses. What it throws passes through.
using FusionProgress = std::function<void(std::int32_t percent)>;

//   images          imageCount pointers to images of width x height, in tesmor.h's layout; read only
//   width, height   pixels
//   output          written at the very end, padding bytes excepted
//   runFlag         0 aborts, until the last image's weights are in
// Returns a result code of tesmor.h: TESMOR_SUCCESS; TESMOR_NO_MEMORY, before any progress, also for sizes that
// ImageLayout refuses; TESMOR_ABORTED. One fusion at a time: FFTW's planner is not thread-safe.
std::int32_t fuseImages(const std::uint8_t* const* images, std::uint64_t imageCount, std::uint32_t width,
                        std::uint32_t height, std::uint8_t* output, const std::atomic<std::int32_t>& runFlag,
                        const FusionProgress& progress);

} // namespace tesmor
