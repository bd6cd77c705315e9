// How far a long piece of work is, on the standard output: a bar that is redrawn in place on a terminal, else a line
// now and then.
#pragma once

#include "terminal/live_line.h"

#include <QString>

#include <chrono>

namespace tesmor::apps {

class ProgressBar {
public:
    // The work begins now.
    //   label   what is going on, one word
    ProgressBar(const QString& label, LiveLine::Style style);

    // Call it as often as you like, also without news: time passes on the bar.
    //   percent   0 to 100, never falling
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
    int firstStep_ = 0; // percent at the first report above 0: what came before it was preparation
    Clock::time_point firstStepTime_;
    Clock::time_point lastStepTime_;
};

} // namespace tesmor::apps
