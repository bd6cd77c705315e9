#pragma once

#include <chrono>

namespace tesmor::microscope {

using Clock = std::chrono::steady_clock;

// How many times faster than real the microscope runs; 0: nothing takes time.
struct TimeScale {
    double factor = 1;

    // Real time that something takes which would take `seconds` on a real microscope.
    Clock::duration realTime(double seconds) const
    {
        if (factor == 0)
            return Clock::duration::zero();
        return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds / factor));
    }
};

} // namespace tesmor::microscope
