// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <cstdint>

namespace tesmor::apps {

// The standard deviation of brightness, in grey levels, where an autofocus with that magnification looks. The frame is
// in the library's layout.
double contrastOf(const std::uint8_t* pixels, int width, int height, std::uint16_t magnification);

} // namespace tesmor::apps
