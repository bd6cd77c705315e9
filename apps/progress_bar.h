// How far a long piece of work is, on the standard output: a bar that is redrawn in place on a terminal, else a line
// now and then.
#pragma once

#include <QString>

#include <chrono>

namespace tesmor::apps {

class ProgressBar {
public:
    enum class Style { BAR, LINES, SILENT };

    // The style that suits the standard output.
    static Style styleOfOutput(bool quiet);

    // The work begins now.
    //   label   what is going on, one word
    ProgressBar(const QString& label, Style style);

    // Takes the bar off the terminal.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // Call it as often as you like, also without news: time passes on the bar.
    //   percent   0 to 100, never falling
    void show(int percent);

    std::chrono::duration<double> elapsed() const;

private:
    using Clock = std::chrono::steady_clock;

    void noteSteps(int percent, Clock::time_point now);
    QString remainingText(Clock::time_point now) const;
    void drawBar(Clock::time_point now);
    void printLine(Clock::time_point now);

    QString label_;
    Style style_;
    Clock::time_point start_;
    Clock::time_point lastOutput_;
    int percent_ = 0;
    int firstStep_ = 0; // percent at the first report above 0: what came before it was preparation
    Clock::time_point firstStepTime_;
    Clock::time_point lastStepTime_;
    bool drawn_ = false;
};

} // namespace tesmor::apps
