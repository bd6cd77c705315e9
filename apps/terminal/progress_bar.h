// SPDX-License-Identifier: GPL-2.0-or-later
// The progress of a long task on standard output: on a terminal a bar that is redrawn in place, otherwise a line now
// and then.
#pragma once

#include "terminal/live_line.h"

#include <QString>

#include <chrono>

namespace tesmor::apps {

class ProgressBar {
public:
    // The work begins now.
    //   label   one word for the task
    ProgressBar(const QString& label, LiveLine::Style style);

    // Call it as often as you like, even without news: the bar shows the time, too.
    //   percent   0 to 100, never decreasing
    void show(int percent);

    std::chrono::duration<double> elapsed() const;

private:
    using Clock = std::chrono::steady_clock;

    void noteSteps(int percent, Clock::time_point now);
    QString remainingText(Clock::time_point now) const;

    LiveLine line_;
    QString label_;
    Clock::time_point start_;
    int percent_ = 0;
    int firstStep_ = 0; // percent at the first report above 0; everything before it was preparation
    Clock::time_point firstStepTime_;
    Clock::time_point lastStepTime_;
};

} // namespace tesmor::apps
