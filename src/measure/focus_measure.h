// SPDX-License-Identifier: GPL-2.0-or-later
// The focus measure: how much the luminance of a frame's central region varies.
#pragma once

#include "measure/luma_tables.h"

#include <cstdint>

namespace tesmor {

// The sum (not the mean) of squared deviations of luminance from its mean over the central region of the frame (see
// protocol/central_region.h). 0.0 when the region is empty.
//   image          frame as tesmor.h lays it out; read only
//   width, height  pixels
// Rows are found by the running bit count of all rows above them, which drifts against the padded rows where the width
// is no multiple of 4. Sums are made in row order; every autofocus rests on the exact value. Never throws.
double measureFocus(const std::uint8_t* image, std::int32_t width, std::int32_t height, std::uint16_t magnification,
                    const LumaTables& tables) noexcept;

} // namespace tesmor
