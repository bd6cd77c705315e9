// SPDX-License-Identifier: GPL-2.0-or-later
// A real motor, behind whatever it is connected by. One thread calls it.
#pragma once

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

namespace tesmor::drive {

// The motor cannot be reached, or no longer: the text says why, and what helps. It may be connected anew.
class MotorLost : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The motor refuses a move: the text says why.
class MotorRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class Motor {
public:
    Motor() = default;
    virtual ~Motor() = default;
    Motor(const Motor&) = delete;
    Motor& operator=(const Motor&) = delete;

    // What it is and where, for people: "GRBL on /dev/ttyUSB0".
    virtual std::string name() const = 0;

    // Connects, anew where it was connected before. Blocks for some seconds. Throws MotorLost.
    virtual void connect() = 0;

    // The opening and closing request of a client. False when the motor refuses. Block for no more than 400 ms. Throw
    // MotorLost.
    virtual bool open()
    {
        return true;
    }
    virtual bool close()
    {
        return true;
    }

    // Begins a move by so many of the motor's own steps, at most largestMove() to either side; 0 is a move, too. Blocks
    // for no more than 400 ms. Throws MotorRefused, when nothing turns, and MotorLost.
    virtual void begin(std::int64_t steps) = 0;

    // Waits until the motor stands after a move that has begun. Throws MotorLost.
    virtual void finish() = 0;

    // What begin would send, for people.
    virtual std::string describe(std::int64_t steps) const = 0;

    virtual std::int64_t largestMove() const
    {
        return std::numeric_limits<std::int64_t>::max();
    }
};

} // namespace tesmor::drive
