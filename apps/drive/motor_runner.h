// SPDX-License-Identifier: GPL-2.0-or-later
// The controller behind the drive service for real motors: answers at once, lets the motor turn on a thread of its own,
// and owes the acknowledgement until it stands. It keeps the position, and finds a motor again that was lost.
#pragma once

#include "drive/motor.h"
#include "drive/position_file.h"
#include "drive/travel.h"
#include "drive_service/motor_controller.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace tesmor::drive {

class MotorRunner : public service::MotorController {
public:
    struct Settings {
        TravelSettings travel;
        std::chrono::milliseconds settle{0}; // from the end of a move to its acknowledgement
        std::int64_t position = 0;           // where the motor stands now, steps of the link
    };

    // The motor is connected. It and the file must outlive the runner.
    MotorRunner(Motor& motor, const PositionFile& file, const Settings& settings);

    // Ends after the move in hand.
    ~MotorRunner() override;

    service::Reaction request(std::uint32_t code, std::span<const std::uint8_t> input,
                              service::Clock::time_point now) override;
    std::optional<service::Clock::time_point> nextEventTime() const override;
    void emitDue(service::Clock::time_point now, const std::function<void(service::Event)>& emit) override;
    void forgetEvents() override;
    void setWake(std::function<void()> wake) override;

    // Refuses moves from now on, and waits until the one in hand has ended and its acknowledgement is handed over.
    void rest();

private:
    enum class Kind { open, close, move };
    struct Job {
        Kind kind;
        std::int32_t displacement;
    };
    using Lock = std::unique_lock<std::mutex>;

    bool post(const Job& job);
    bool answer(bool accepted);
    void owe(service::Event event);
    void fail();

    void run();
    bool carryOut(const Job& job);
    bool move(std::int32_t displacement);
    void refuse(const std::string& why);
    void save();
    void lose(const MotorLost& loss);
    bool findAgain();

    Motor& motor_;
    const PositionFile& file_;
    const Travel travel_;
    const std::chrono::milliseconds settle_;

    // Of the motor's thread:
    std::int64_t position_;
    bool opened_ = false;
    bool saves_ = true;
    std::string lastRefusal_; // that was told; the library asks five times

    mutable std::mutex mutex_; // guards what follows
    std::condition_variable changed_;
    std::function<void()> wake_;
    std::optional<Job> next_;
    std::optional<service::Event> owed_;
    std::optional<bool> verdict_; // on the job that `post` waits for
    std::optional<Kind> awaited_; // `post` waits for a verdict on it
    bool wanted_ = false;         // a client waits for the end of the move in hand
    bool busy_ = false;           // a job is in hand
    bool lost_ = false;
    bool resting_ = false;
    bool ending_ = false;
    std::thread thread_;
};

} // namespace tesmor::drive
