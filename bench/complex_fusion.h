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
struct ComplexResult {
    Bytes bytes;
    std::vector<bool> onATie; // the value lies so near to a half that the plan's rounding errors decide the byte
};

ComplexResult complexFusion(const std::vector<Bytes>& images, int width, int height, unsigned plannerFlags);

} // namespace tesmor::bench
