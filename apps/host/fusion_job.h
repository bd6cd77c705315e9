// SPDX-License-Identifier: GPL-2.0-or-later
// Merges images through the library, as any host would, and stops on interruption.
#pragma once

#include <QImage>

#include <cstdint>
#include <functional>
#include <vector>

namespace tesmor::apps {

constexpr int MOST_FUSED_IMAGES = 128;
constexpr int LEAST_FUSED_SIDE = 2; // pixels

// Within a LibrarySession. No other thread may use FFTW's planner meanwhile.
//   images     at most MOST_FUSED_IMAGES, all of output's size and format, no side below LEAST_FUSED_SIDE
//   output     of format BGR888; untouched unless the result is TESMOR_SUCCESS
//   progress   called about twenty times a second with the percentage done, on this thread
// Returns TESMOR_SUCCESS, TESMOR_NO_MEMORY or, after an interruption, TESMOR_ABORTED. If the library does not end
// within a second of an interruption, the program ends here with status 130.
std::int32_t mergeImages(const std::vector<QImage>& images, QImage& output, const std::function<void(int)>& progress);

} // namespace tesmor::apps
