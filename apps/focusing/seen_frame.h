// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <chrono>
#include <cstdint>

namespace tesmor::apps {

using Clock = std::chrono::steady_clock;

struct SeenFrame {
    Clock::time_point time; // just before the library received it
    std::int64_t position;  // motor steps: where the frame was taken; 0 where nobody knows
    double contrast;        // standard deviation of brightness where the autofocus looks, grey levels
};

} // namespace tesmor::apps
