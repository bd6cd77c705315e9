// SPDX-License-Identifier: GPL-2.0-or-later
// A status line on standard output: on a terminal redrawn in place, otherwise a new line now and then.
#pragma once

#include <QString>

#include <chrono>

namespace tesmor::apps {

class LiveLine {
public:
    enum class Style { IN_PLACE, LINES, SILENT };

    // The style that suits standard output.
    static Style styleOfOutput(bool quiet);

    //   pause   between lines of style LINES, and before the first one
    LiveLine(Style style, std::chrono::milliseconds pause);

    // Erases the line from the terminal.
    ~LiveLine();
    LiveLine(const LiveLine&) = delete;
    LiveLine& operator=(const LiveLine&) = delete;

    // Call it as often as you like; it prints only when it is time to.
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
