// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/focus_curve.h"

#include <algorithm>

namespace tesmor::apps {

namespace {

constexpr std::size_t UNSETTLED_MOVES = 2;

} // namespace

void FocusCurve::begin(std::optional<std::int64_t> start)
{
    *this = {};
    start_ = start;
    startTime_ = Clock::now();
}

void FocusCurve::update(const std::vector<microscope::LoggedRequest>& requests, const std::vector<SeenFrame>& frames,
                        bool ended, bool found)
{
    points_.clear();
    if (start_) {
        const auto first = std::ranges::lower_bound(requests, startTime_, {}, &microscope::LoggedRequest::time);
        return followTrace(traceSearch({first, requests.end()}, frames, *start_, found), ended);
    }
    for (const SeenFrame& frame : frames) {
        const std::chrono::duration<double> time = frame.time - startTime_;
        points_.push_back({SearchPhase::COARSE, time.count(), frame.contrast});
    }
}

// Only what follows tells what a move was for: the last two may be the way back, the last may have no frame yet.
void FocusCurve::followTrace(const FocusTrace& trace, bool ended)
{
    moves_ = static_cast<int>(trace.size());
    const std::size_t settled = ended ? trace.size() : trace.size() - std::min(trace.size(), UNSETTLED_MOVES);
    for (std::size_t i = 0; i < settled; ++i) {
        phase_ = trace[i].phase;
        if (trace[i].sample)
            points_.push_back({trace[i].phase, static_cast<double>(trace[i].position), trace[i].sample->contrast});
    }
}

} // namespace tesmor::apps
