// SPDX-License-Identifier: GPL-2.0-or-later
// Luminance for each byte value of each colour.
#pragma once

#include <array>

namespace tesmor {

struct LumaTables {
    LumaTables() noexcept;

    std::array<double, 256> lumaR;
    std::array<double, 256> lumaG;
    std::array<double, 256> lumaB;
};

} // namespace tesmor
