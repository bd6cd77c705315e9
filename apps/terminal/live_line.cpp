// SPDX-License-Identifier: GPL-2.0-or-later
#include "terminal/live_line.h"

#include <unistd.h>

#include <cstdio>

namespace tesmor::apps {

namespace {

using namespace std::chrono_literals;

constexpr auto TIME_BETWEEN_DRAWINGS = 80ms;

void print(const QString& text)
{
    std::fputs(qPrintable(text), stdout);
    std::fflush(stdout);
}

} // namespace

LiveLine::Style LiveLine::styleOfOutput(bool quiet)
{
    if (quiet)
        return Style::SILENT;
    return isatty(STDOUT_FILENO) != 0 ? Style::IN_PLACE : Style::LINES;
}

LiveLine::LiveLine(Style style, std::chrono::milliseconds pause)
    : style_(style), pause_(style == Style::IN_PLACE ? TIME_BETWEEN_DRAWINGS : pause), lastOutput_(Clock::now())
{
    if (style_ == Style::IN_PLACE)
        lastOutput_ -= TIME_BETWEEN_DRAWINGS;
}

LiveLine::~LiveLine()
{
    if (drawn_)
        print("\r\033[K");
}

void LiveLine::show(const QString& text)
{
    const auto now = Clock::now();
    if (style_ == Style::SILENT || now - lastOutput_ < pause_)
        return;
    drawn_ = style_ == Style::IN_PLACE;
    print(drawn_ ? "\r" + text + "\033[K" : text + "\n");
    lastOutput_ = now;
}

} // namespace tesmor::apps
