// SPDX-License-Identifier: GPL-2.0-or-later
// The focus motor. Positions are motor steps, positive forward. Any thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>

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

struct MotorSettings {
    double stepsPerSecond = 51200;  // 0: moves take no time
    std::int64_t lowEnd = -2000000; // end stops, motor steps; a move ends there and its other steps are lost
    std::int64_t highEnd = 2000000;
};

class Motor {
public:
    Motor(const MotorSettings& settings, TimeScale timeScale, std::int64_t position);

    // Starts a move at `now`, at constant speed, and returns when it will end. Not while the motor is moving.
    Clock::time_point move(std::int64_t displacement, Clock::time_point now);

    bool isMoving(Clock::time_point now) const;
    std::int64_t position(Clock::time_point now) const;

    // Puts the focus there, within the end stops, and ends a move that is under way.
    void place(std::int64_t position);

private:
    std::int64_t positionAt(Clock::time_point now) const;

    const MotorSettings settings_;
    const TimeScale timeScale_;

    mutable std::mutex mutex_; // guards what follows
    std::int64_t start_;       // of the last move
    std::int64_t displacement_ = 0;
    Clock::time_point startTime_{};
    Clock::time_point endTime_{};
};

} // namespace tesmor::microscope
