// SPDX-License-Identifier: GPL-2.0-or-later
// The fusion written down once more, with complex transforms of whole images and one plain loop after the other: what
// the library's bytes are held against. See same_bytes.cpp.
#pragma once

#include <cstdint>
#include <vector>

namespace tesmor::bench {

using Bytes = std::vector<std::uint8_t>; // an image in tesmor.h's layout

// images: one or more of width x height pixels, at least 2 x 2.
// plannerFlags: FFTW's.
Bytes complexFusion(const std::vector<Bytes>& images, int width, int height, unsigned plannerFlags);

} // namespace tesmor::bench
