// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/sangaboard_motor.h"

#include <cstdlib>

namespace tesmor::drive {

using namespace std::chrono_literals;

namespace {

constexpr auto START_LIMIT = 2500ms; // the board begins anew when its port is opened
constexpr auto VERSION_LIMIT = 2s;
constexpr auto SLOWEST_STEP = 5ms;
constexpr auto SILENCE_LIMIT = 5s;

bool isVersion(const std::string& line)
{
    return line.find("Sangaboard") != std::string::npos || line.find("Motor Board") != std::string::npos;
}

} // namespace

SangaboardMotor::SangaboardMotor(SangaboardSettings settings) : settings_(std::move(settings)) {}

std::string SangaboardMotor::name() const
{
    return "the Sangaboard on " + settings_.port;
}

void SangaboardMotor::lose(const std::string& what) const
{
    throw MotorLost(name() + " " + what);
}

void SangaboardMotor::connect()
{
    port_.reset();
    port_ = std::make_unique<SerialPort>(settings_.port, settings_.baud);
    port_->readLine(SerialPort::Clock::now() + START_LIMIT);
    port_->writeLine("version");
    const auto end = SerialPort::Clock::now() + VERSION_LIMIT;
    std::string heard;
    while (SerialPort::Clock::now() < end) {
        const auto line = port_->readLine(end);
        if (!line)
            break;
        if (isVersion(*line)) {
            // A greeting and the answer may both have come: what is left belongs to neither move nor question.
            while (port_->readLine(SerialPort::Clock::now() + 50ms)) {
            }
            return;
        }
        heard = *line;
    }
    if (heard.empty())
        heard = port_->rest();
    if (heard.empty())
        lose("answers nothing; is it the right port, and has the board power?");
    lose("answers \"" + heard + "\", which is no version of a Sangaboard; try: tesmor-drive gcode");
}

std::string SangaboardMotor::describe(std::int64_t steps) const
{
    return std::string("mr") + settings_.axis + " " + std::to_string(steps);
}

void SangaboardMotor::begin(std::int64_t steps)
{
    turn_ = steps;
    port_->writeLine(describe(steps));
}

void SangaboardMotor::finish()
{
    const auto end = SerialPort::Clock::now() + SILENCE_LIMIT + SLOWEST_STEP * std::abs(turn_);
    while (const auto line = port_->readLine(end)) {
        if (line->rfind("done", 0) == 0)
            return;
        if (isVersion(*line))
            lose("has begun anew by itself");
        if (SerialPort::Clock::now() >= end || line->rfind("Error", 0) == 0 || line->rfind("Type", 0) == 0)
            lose("has ended a move with \"" + *line + "\"");
    }
    lose("has fallen silent in a move");
}

std::int64_t SangaboardMotor::largestMove() const
{
    return 1'000'000;
}

} // namespace tesmor::drive
