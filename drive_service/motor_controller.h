// SPDX-License-Identifier: GPL-2.0-or-later
// What stands behind a drive service: the controller of a motor, simulated or real. It knows nothing of the way on
// which requests come, and the service nothing of motors.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace tesmor::service {

using Clock = std::chrono::steady_clock;

enum class Answer {
    refused,
    accepted,
    none,   // no reply is sent
    vanish, // no reply is sent and the link is cut for good
};

struct Reaction {
    Answer answer = Answer::refused;
    bool rubbish = false; // the service sends meaningless packets before the reply
};

enum class Event {
    acknowledgement, // the motor stands after a move
    failure,         // a move that was accepted has failed: on Linux its client's link is cut, which tells it at once
    vanish,          // the link is to be cut for good
};

// A service calls these from threads of its own, at times from two at once.
class MotorController {
public:
    MotorController() = default;
    virtual ~MotorController() = default;
    MotorController(const MotorController&) = delete;
    MotorController& operator=(const MotorController&) = delete;

    // Answers a control request, well-formed or not, within half a second; a move goes on after that. The library gives
    // its link up after a second.
    virtual Reaction request(std::uint32_t code, std::span<const std::uint8_t> input, Clock::time_point now) = 0;

    // When the next event is due; none when nothing is.
    virtual std::optional<Clock::time_point> nextEventTime() const = 0;

    // Hands each event that is due by `now` to `emit`.
    virtual void emitDue(Clock::time_point now, const std::function<void(Event)>& emit) = 0;

    // Drops what is owed: the client that has asked for it has gone. Its move runs on. `emit` may call it.
    virtual void forgetEvents() = 0;

    // From then on the service is of no use, and ends.
    virtual bool hasVanished() const
    {
        return false;
    }

    // `wake` is to be called, from any thread, when nextEventTime changes other than by a call of the service. The
    // service takes it back, with an empty function, before it ends.
    virtual void setWake(std::function<void()> wake)
    {
        static_cast<void>(wake);
    }
};

} // namespace tesmor::service
