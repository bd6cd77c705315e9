// SPDX-License-Identifier: GPL-2.0-or-later
#include "measure/luma_tables.h"

#include <cstddef>

namespace tesmor {

LumaTables::LumaTables() noexcept
{
    for (std::size_t value = 0; value < 256; ++value) {
        const auto intensity = static_cast<double>(value);
        lumaR[value] = intensity * 0.299;
        lumaG[value] = intensity * 0.578; // not the customary 0.587: every focus value rests on this weight
        lumaB[value] = intensity * 0.114;
    }
}

} // namespace tesmor
