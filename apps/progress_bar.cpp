#include "progress_bar.h"

#include "text.h"

#include <unistd.h>

#include <cstdio>

namespace tesmor::apps {

namespace {

using namespace std::chrono_literals;

constexpr auto TIME_BETWEEN_DRAWINGS = 100ms;
constexpr auto TIME_BETWEEN_LINES = 5s;
constexpr int BAR_LENGTH = 30; // characters

void print(const QString& text)
{
    std::fputs(qPrintable(text), stdout);
    std::fflush(stdout);
}

} // namespace

ProgressBar::Style ProgressBar::styleOfOutput(bool quiet)
{
    if (quiet)
        return Style::SILENT;
    return isatty(STDOUT_FILENO) != 0 ? Style::BAR : Style::LINES;
}

ProgressBar::ProgressBar(const QString& label, Style style)
    : label_(label), style_(style), start_(Clock::now()), lastOutput_(start_), firstStepTime_(start_),
      lastStepTime_(start_)
{
}

ProgressBar::~ProgressBar()
{
    if (drawn_)
        print("\r\033[K");
}

void ProgressBar::show(int percent)
{
    const auto now = Clock::now();
    noteSteps(percent, now);
    if (style_ == Style::BAR && (!drawn_ || now - lastOutput_ >= TIME_BETWEEN_DRAWINGS))
        drawBar(now);
    else if (style_ == Style::LINES && now - lastOutput_ >= TIME_BETWEEN_LINES)
        printLine(now);
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

// From the pace since the first step, and counting down between two steps.
QString ProgressBar::remainingText(Clock::time_point now) const
{
    if (percent_ == 0)
        return ", getting ready";
    if (percent_ == firstStep_)
        return {};
    const std::chrono::duration<double> stepsTook = lastStepTime_ - firstStepTime_;
    const std::chrono::duration<double> sinceStep = now - lastStepTime_;
    const auto remaining = stepsTook * (100 - percent_) / (percent_ - firstStep_) - sinceStep;
    return remaining < 1s ? QString(", almost done") : QString(", about %1 left").arg(durationText(remaining));
}

void ProgressBar::drawBar(Clock::time_point now)
{
    const int filled = BAR_LENGTH * percent_ / 100;
    print(QString("\r%1 [%2%3] %4 %  %5%6\033[K")
              .arg(label_, QString(filled, '#'), QString(BAR_LENGTH - filled, '.'))
              .arg(percent_, 3)
              .arg(durationText(now - start_), remainingText(now)));
    lastOutput_ = now;
    drawn_ = true;
}

void ProgressBar::printLine(Clock::time_point now)
{
    print(
        QString("%1: %2 % after %3%4\n").arg(label_).arg(percent_).arg(durationText(now - start_), remainingText(now)));
    lastOutput_ = now;
}

} // namespace tesmor::apps
