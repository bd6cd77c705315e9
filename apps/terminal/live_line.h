// A line on the standard output that follows the work: redrawn in place on a terminal, else a line of its own now and
// then.
#pragma once

#include <QString>

#include <chrono>

namespace tesmor::apps {

class LiveLine {
public:
    enum class Style { IN_PLACE, LINES, SILENT };

    // The style that suits the standard output.
    static Style styleOfOutput(bool quiet);

    //   pause   between two lines of style LINES; the first comes after such a pause, too
    LiveLine(Style style, std::chrono::milliseconds pause);

    // Takes the line off the terminal.
    ~LiveLine();
    LiveLine(const LiveLine&) = delete;
    LiveLine& operator=(const LiveLine&) = delete;

    // Call it as often as you like: it shows the text when it is time to.
    void show(const QString& text);

    Style style() const
    {
        return style_;
    }

private:
    using Clock = std::chrono::steady_clock;

    const Style style_;
    const std::chrono::milliseconds pause_;
    Clock::time_point lastOutput_;
    bool drawn_ = false;
};

} // namespace tesmor::apps
