// SPDX-License-Identifier: GPL-2.0-or-later
// The curve of an autofocus while it runs: sharpness over the position of the motor where the drive tells what it was
// asked for, as the virtual microscope's does, else over time.
#pragma once

#include "focusing/focus_trace.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace tesmor::apps {

struct CurvePoint {
    SearchPhase phase;
    double place; // motor steps, or seconds
    double sharpness;
};

class FocusCurve {
public:
    // A search begins now.
    //   start   the motor's position; none where the drive does not tell
    void begin(std::optional<std::int64_t> start);

    // What has happened so far, or, when `ended`, all of it. Points that are there stay as they are.
    //   requests   of the drive, earlier ones too; empty where it does not tell
    void update(const std::vector<microscope::LoggedRequest>& requests, const std::vector<SeenFrame>& frames,
                bool ended, bool found = false);

    const std::vector<CurvePoint>& points() const
    {
        return points_;
    }

    bool isOverTime() const
    {
        return !start_;
    }

    SearchPhase phase() const // the latest
    {
        return phase_;
    }

    int moves() const
    {
        return moves_;
    }

private:
    void followTrace(const FocusTrace& trace, bool ended);

    std::optional<std::int64_t> start_;
    Clock::time_point startTime_;
    std::vector<CurvePoint> points_;
    SearchPhase phase_ = SearchPhase::PROBE;
    int moves_ = 0;
};

} // namespace tesmor::apps
