// SPDX-License-Identifier: GPL-2.0-or-later
// A motor on any board that speaks G-code over a serial port: GRBL and its kin, Marlin.
//
// Moves are relative (G91, said again before each, since a board that was reset forgets it). A board answers "ok" when
// it has taken a line. That the motion has ended is told by the "ok" to M400 (Marlin) or G4 (GRBL, which waits with it
// until its buffer is empty, and is asked besides for its status until that says Idle).
#pragma once

#include "drive/motor.h"
#include "drive/serial_port.h"

#include <memory>

namespace tesmor::drive {

struct GcodeSettings {
    std::string port;
    unsigned baud = 115200;
    double stepsPerMm = 0; // steps of the motor that the board counts as a millimetre
    double feed = 60;      // millimetres a minute
    char axis = 'Z';
};

class GcodeMotor : public Motor {
public:
    explicit GcodeMotor(GcodeSettings settings);

    std::string name() const override;
    void connect() override;
    void begin(std::int64_t steps) override;
    void finish() override;
    std::string describe(std::int64_t steps) const override;

private:
    using Clock = SerialPort::Clock;
    enum class Answer { none, taken, refused, idle, locked, other };

    Answer answerIn(const std::string& line);
    Answer awaitAnswer(Clock::time_point deadline);
    bool say(const std::string& line, Clock::time_point deadline);
    void findFirmware();
    void unlock();
    [[noreturn]] void lose(const std::string& what) const;
    [[noreturn]] void loseToAlarm(const std::string& line) const;

    std::int64_t millionths(std::int64_t steps) const;
    double millimetres(std::int64_t steps) const;

    const GcodeSettings settings_;
    std::unique_ptr<SerialPort> port_;
    std::string firmware_; // as people know it; empty before it is known
    bool isGrbl_ = false;
    bool hasAlarm_ = false;     // it has stopped by itself
    bool reset_ = false;        // it has announced itself anew
    std::int64_t position_ = 0; // steps since the start, so that roundings to what a line can say do not add up
    std::int64_t turn_ = 0;     // the move in hand
    std::string refusal_;       // its words
    std::string rubbish_;       // words of it that were no answer
};

} // namespace tesmor::drive
