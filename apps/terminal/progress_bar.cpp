// SPDX-License-Identifier: GPL-2.0-or-later
#include "terminal/progress_bar.h"

#include "terminal/text.h"

#include <algorithm>

namespace tesmor::apps {

namespace {

using namespace std::chrono_literals;

constexpr auto TIME_BETWEEN_LINES = 5s;
constexpr int BAR_LENGTH = 30; // characters

} // namespace

ProgressBar::ProgressBar(const QString& label, LiveLine::Style style)
    : line_(style, TIME_BETWEEN_LINES), label_(label), start_(Clock::now()), firstStepTime_(start_),
      lastStepTime_(start_)
{
}

void ProgressBar::show(int percent)
{
    const auto now = Clock::now();
    noteSteps(percent, now);
    const QString time = durationText(now - start_) + remainingText(now);
    if (line_.style() == LiveLine::Style::IN_PLACE)
        line_.show(
            QString("%1 %2 %3 %  %4").arg(label_, barText(percent_ / 100.0, BAR_LENGTH)).arg(percent_, 3).arg(time));
    else
        line_.show(QString("%1: %2 % after %3").arg(label_).arg(percent_).arg(time));
}

std::chrono::duration<double> ProgressBar::elapsed() const
{
    return Clock::now() - start_;
}

void ProgressBar::noteSteps(int percent, Clock::time_point now)
{
    if (percent == percent_)
        return;
    if (percent_ == 0) {
        firstStep_ = percent;
        firstStepTime_ = now;
    }
    percent_ = percent;
    lastStepTime_ = now;
}

// From the pace since the first step; counts down between steps.
QString ProgressBar::remainingText(Clock::time_point now) const
{
    if (percent_ == 0)
        return ", preparing";
    if (percent_ == firstStep_)
        return {};
    const std::chrono::duration<double> stepsTook = lastStepTime_ - firstStepTime_;
    const std::chrono::duration<double> sinceStep = now - lastStepTime_;
    const auto remaining = stepsTook * (100 - percent_) / (percent_ - firstStep_) - sinceStep;
    return remaining < 1s ? QString(", almost done") : QString(", about %1 left").arg(durationText(remaining));
}

} // namespace tesmor::apps
