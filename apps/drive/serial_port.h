// SPDX-License-Identifier: GPL-2.0-or-later
// A serial port on which a board takes lines and answers with lines.
#pragma once

#include "drive/motor.h"

#include <chrono>
#include <optional>
#include <string>

namespace tesmor::drive {

class SerialPort {
public:
    using Clock = std::chrono::steady_clock;

    // Opens the port raw, 8 bits without parity, for this program alone. Throws MotorLost with the remedy: no such
    // port, no permission, in use and by whom.
    SerialPort(const std::string& port, unsigned baud);

    ~SerialPort();

    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    // A line without its end. Throws MotorLost when the port has gone or takes nothing for a second.
    void writeLine(const std::string& line);

    // As it is, without an end.
    void write(const std::string& text);

    // The next line that is not empty, without its end and the blanks around it, '?' for all that is no text; none when
    // no whole line comes in time. Throws MotorLost when the port has gone.
    std::optional<std::string> readLine(Clock::time_point deadline);

    // What has come of a line that did not end; for messages.
    std::string rest() const;

private:
    [[noreturn]] void lose(const std::string& what) const;
    std::optional<std::string> takeLine();

    const std::string port_;
    int descriptor_;
    std::string received_;
};

} // namespace tesmor::drive
