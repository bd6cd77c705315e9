// SPDX-License-Identifier: GPL-2.0-or-later
// The camera's controller behind the focus drive: takes control requests, turns the motor, owes acknowledgements, and
// does every fault that is switched on. It knows nothing of the way on which requests come; a transport brings them.
//
// Requests
//   0x222059  one 10-byte request packet: move (209), open (210) or close (211). Open and close do nothing; moves are
//             accepted without an open too. A move while the motor still runs is refused.
//   0x222035  four zero bytes: resets the acknowledgement. Accepted, and nothing is dropped by it: a move that still
//             runs is acknowledged at its end all the same.
//   Anything else, a wrong length, and a packet with a field outside its range are refused.
//
// Any thread; times are given so that a test need not wait.
#pragma once

#include "drive_service/motor_controller.h"
#include "microscope/drive/acknowledgement_gate.h"
#include "microscope/drive/faults.h"
#include "microscope/drive/motor.h"
#include "microscope/drive/request_log.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace tesmor::microscope {

using service::Event;
using service::Reaction;

class DriveController : public service::MotorController {
public:
    DriveController(Motor& motor, AcknowledgementGate& gate);

    Reaction request(std::uint32_t code, std::span<const std::uint8_t> input, Clock::time_point now) override;
    std::optional<Clock::time_point> nextEventTime() const override;
    void emitDue(Clock::time_point now, const std::function<void(Event)>& emit) override;
    void forgetEvents() override;

    void setFaults(const Faults& faults);
    std::vector<LoggedRequest> log() const;
    void clearLog();

    // Set by a vanishing fault, until `reappear`; every request is then answered by `vanish`.
    bool hasVanished() const override;
    void reappear();

private:
    struct OwedEvent {
        Clock::time_point time;
        Event event;
    };

    Reaction react(std::uint32_t code, std::span<const std::uint8_t> input, Clock::time_point now);
    bool startMove(std::int64_t displacement, Clock::time_point now);

    Motor& motor_;
    AcknowledgementGate& gate_;

    mutable std::mutex mutex_; // guards what follows
    Faults faults_;
    std::deque<LoggedRequest> log_; // the newest MOST_LOGGED
    std::vector<OwedEvent> owed_;   // in the order of their moves
    bool vanished_ = false;
};

} // namespace tesmor::microscope
