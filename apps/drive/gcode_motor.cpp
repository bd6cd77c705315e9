// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/gcode_motor.h"

#include "drive/log.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace tesmor::drive {

using namespace std::chrono_literals;

namespace {

constexpr auto GREETING_LIMIT = 2500ms; // many boards begin anew when their port is opened
constexpr auto IDENTITY_LIMIT = 5s;     // while it begins, a board says much and takes nothing
constexpr auto LINE_LIMIT = 380ms;      // for all lines of a move
constexpr auto QUIET = 150ms;
constexpr auto STATUS_PAUSE = 50ms;
constexpr auto SILENCE_LIMIT = 5s;

bool startsWith(const std::string& line, const char* start)
{
    return line.rfind(start, 0) == 0;
}

} // namespace

GcodeMotor::GcodeMotor(GcodeSettings settings) : settings_(std::move(settings)) {}

std::string GcodeMotor::name() const
{
    return (firmware_.empty() ? "the board" : firmware_) + " on " + settings_.port;
}

void GcodeMotor::lose(const std::string& what) const
{
    throw MotorLost(name() + " " + what);
}

void GcodeMotor::loseToAlarm(const std::string& line) const
{
    lose("has stopped by itself with \"" + line + "\", at a limit; turn it free and start tesmor-drive anew");
}

GcodeMotor::Answer GcodeMotor::answerIn(const std::string& line)
{
    if (startsWith(line, "ok"))
        return Answer::taken;
    if (startsWith(line, "error") || startsWith(line, "Error") || startsWith(line, "!!")) {
        refusal_ = line;
        return Answer::refused;
    }
    if (startsWith(line, "<Idle"))
        return Answer::idle;
    if (startsWith(line, "<Alarm"))
        return Answer::locked;
    if (startsWith(line, "ALARM"))
        hasAlarm_ = true;
    reset_ = reset_ || startsWith(line, "Grbl ") || line == "start";
    return Answer::other;
}

// The next answer to a line; none when none comes in time. A board that stops by itself, or begins anew, is lost.
GcodeMotor::Answer GcodeMotor::awaitAnswer(Clock::time_point deadline)
{
    do {
        const std::optional<std::string> line = port_->readLine(deadline);
        if (!line)
            return Answer::none;
        const Answer answer = answerIn(*line);
        if (hasAlarm_)
            loseToAlarm(*line);
        if (reset_)
            lose("has begun anew by itself");
        if (answer != Answer::other)
            return answer;
        rubbish_ = *line;
    } while (Clock::now() < deadline);
    return Answer::none;
}

void GcodeMotor::connect()
{
    if (hasAlarm_)
        lose("has stopped with an alarm");
    port_.reset();
    port_ = std::make_unique<SerialPort>(settings_.port, settings_.baud);
    const Clock::time_point greetingEnd = Clock::now() + GREETING_LIMIT;
    reset_ = false;
    while (!reset_ && Clock::now() < greetingEnd) {
        if (const auto line = port_->readLine(greetingEnd))
            answerIn(*line);
    }
    findFirmware();
    reset_ = false; // all greetings came before its answer
    unlock();
    if (!say("G21", Clock::now() + IDENTITY_LIMIT))
        lose("does not take millimetres: \"" + refusal_ + "\"");
}

// GRBL tells its version on $I, which Marlin does not know; both then say ok.
void GcodeMotor::findFirmware()
{
    isGrbl_ = false;
    const Clock::time_point end = Clock::now() + IDENTITY_LIMIT;
    std::string heard;
    Answer verdict = Answer::refused;
    while (verdict == Answer::refused && Clock::now() < end) { // a line that it heard half of before spoils the first
        port_->writeLine("$I");
        verdict = Answer::none;
        while (const auto line = port_->readLine(verdict == Answer::none ? end : Clock::now() + QUIET)) {
            heard = *line;
            isGrbl_ = isGrbl_ || startsWith(*line, "[VER") || startsWith(*line, "[OPT");
            if (const Answer answer = answerIn(*line); answer == Answer::taken || answer == Answer::refused)
                verdict = answer;
            if (Clock::now() >= end)
                break;
        }
    }
    if (verdict == Answer::taken) {
        firmware_ = isGrbl_ ? "GRBL" : "Marlin";
        return;
    }
    if (heard.empty())
        heard = port_->rest();
    if (heard.empty())
        lose("answers nothing; is it the right port, and has the board power?");
    lose("answers \"" + heard + "\", as neither GRBL nor Marlin does; try another --baud");
}

// With a homing cycle set, GRBL is locked whenever it begins; a focus cannot be homed.
void GcodeMotor::unlock()
{
    if (!isGrbl_)
        return;
    port_->write("?");
    if (awaitAnswer(Clock::now() + 1s) != Answer::locked)
        return;
    logLine(name() + " was locked, as it is after a start; it is unlocked now");
    if (!say("$X", Clock::now() + IDENTITY_LIMIT))
        lose("stays locked: \"" + refusal_ + "\"");
}

// False when the board refuses the line.
bool GcodeMotor::say(const std::string& line, Clock::time_point deadline)
{
    while (awaitAnswer({}) != Answer::none) { // to no question
    }
    port_->writeLine(line);
    rubbish_.clear();
    Answer answer;
    do {
        answer = awaitAnswer(deadline);
    } while (answer == Answer::idle);
    if (answer == Answer::none && !port_->rest().empty())
        lose("answers half a line: \"" + port_->rest() + "\"");
    if (answer == Answer::none)
        lose(rubbish_.empty() ? "answers nothing" : "answers \"" + rubbish_ + "\", which is no answer");
    return answer == Answer::taken;
}

std::int64_t GcodeMotor::millionths(std::int64_t steps) const
{
    return std::llround(static_cast<long double>(steps) * 1'000'000 / settings_.stepsPerMm);
}

double GcodeMotor::millimetres(std::int64_t steps) const
{
    return static_cast<double>(millionths(position_ + steps) - millionths(position_)) / 1e6;
}

std::string GcodeMotor::describe(std::int64_t steps) const
{
    std::array<char, 80> line{};
    std::snprintf(line.data(), line.size(), "G1 %c%.6f F%g", settings_.axis, millimetres(steps), settings_.feed);
    return line.data();
}

void GcodeMotor::begin(std::int64_t steps)
{
    const Clock::time_point deadline = Clock::now() + LINE_LIMIT;
    if (!say("G91", deadline) || !say(describe(steps), deadline))
        throw MotorRefused(name() + " refuses a move: \"" + refusal_ + "\"");
    turn_ = steps;
    position_ += steps;
}

void GcodeMotor::finish()
{
    const auto expected = std::chrono::duration<double, std::ratio<60>>(std::abs(static_cast<double>(turn_)) /
                                                                        settings_.stepsPerMm / settings_.feed);
    const auto patience =
        isGrbl_ ? SILENCE_LIMIT : SILENCE_LIMIT + 2 * std::chrono::ceil<std::chrono::seconds>(expected);
    port_->writeLine(isGrbl_ ? "G4 P0" : "M400");
    Clock::time_point heard = Clock::now();
    Clock::time_point asked{};
    for (bool buffered = true;;) {
        if (isGrbl_ && Clock::now() >= asked + STATUS_PAUSE) {
            port_->write("?");
            asked = Clock::now();
        }
        const Clock::time_point silent = heard + patience;
        const auto line = port_->readLine(isGrbl_ ? std::min(silent, asked + STATUS_PAUSE) : silent);
        if (!line && Clock::now() >= silent)
            lose("has fallen silent in a move");
        if (!line)
            continue;
        heard = Clock::now();
        const Answer answer = answerIn(*line);
        if (hasAlarm_)
            loseToAlarm(*line);
        if (reset_ || answer == Answer::refused || answer == Answer::locked)
            lose("has ended a move with \"" + *line + "\"");
        buffered = buffered && answer != Answer::taken;
        if (!buffered && (!isGrbl_ || answer == Answer::idle))
            return;
    }
}

} // namespace tesmor::drive
