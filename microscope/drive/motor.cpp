// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/drive/motor.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace tesmor::microscope {

Motor::Motor(const MotorSettings& settings, TimeScale timeScale, std::int64_t position)
    : settings_(settings), timeScale_(timeScale), start_(std::clamp(position, settings.lowEnd, settings.highEnd))
{
}

std::int64_t Motor::positionAt(Clock::time_point now) const
{
    std::int64_t displacement = displacement_;
    if (now < endTime_) {
        const std::chrono::duration<double> elapsed = now - startTime_;
        const std::chrono::duration<double> whole = endTime_ - startTime_;
        displacement = std::llround(std::max(0.0, elapsed / whole) * static_cast<double>(displacement));
    }
    return std::clamp(start_ + displacement, settings_.lowEnd, settings_.highEnd);
}

Clock::time_point Motor::move(std::int64_t displacement, Clock::time_point now)
{
    std::lock_guard guard(mutex_);
    const auto steps = static_cast<double>(std::abs(displacement));
    const double seconds = settings_.stepsPerSecond == 0 ? 0 : steps / settings_.stepsPerSecond;
    start_ = positionAt(now);
    displacement_ = displacement;
    startTime_ = now;
    endTime_ = now + timeScale_.realTime(seconds);
    return endTime_;
}

bool Motor::isMoving(Clock::time_point now) const
{
    std::lock_guard guard(mutex_);
    return now < endTime_;
}

std::int64_t Motor::position(Clock::time_point now) const
{
    std::lock_guard guard(mutex_);
    return positionAt(now);
}

void Motor::place(std::int64_t position)
{
    std::lock_guard guard(mutex_);
    start_ = std::clamp(position, settings_.lowEnd, settings_.highEnd);
    displacement_ = 0;
    endTime_ = startTime_;
}

} // namespace tesmor::microscope
