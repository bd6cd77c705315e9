// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/motor_runner.h"

#include "drive/log.h"
#include "protocol/drive_request.h"

#include <algorithm>
#include <utility>

namespace tesmor::drive {

using service::Answer;
using service::Event;
using service::Reaction;
using namespace std::chrono_literals;

namespace {

constexpr auto VERDICT_LIMIT = 450ms; // the library gives a service up after a second
constexpr std::chrono::milliseconds FIRST_PAUSE = 250ms;
constexpr std::chrono::milliseconds LONGEST_PAUSE = 10s;

} // namespace

MotorRunner::MotorRunner(Motor& motor, const PositionFile& file, const Settings& settings)
    : motor_(motor), file_(file), travel_(settings.travel), settle_(settings.settle), position_(settings.position),
      thread_([this] { run(); })
{
}

MotorRunner::~MotorRunner()
{
    {
        const Lock lock(mutex_);
        resting_ = ending_ = true;
        changed_.notify_all();
    }
    thread_.join();
}

Reaction MotorRunner::request(std::uint32_t code, std::span<const std::uint8_t> input, service::Clock::time_point)
{
    const std::optional<DriveCommand> command = parseDriveCommand(code, input);
    if (!command)
        return {Answer::refused};
    bool accepted = true; // a reset: nothing is dropped by it, a move that still runs is acknowledged at its end
    if (command->kind == DriveCommand::Kind::open)
        accepted = post({Kind::open, 0});
    if (command->kind == DriveCommand::Kind::close)
        accepted = post({Kind::close, 0});
    if (command->kind == DriveCommand::Kind::move)
        accepted = post({Kind::move, command->displacement});
    return {accepted ? Answer::accepted : Answer::refused};
}

// An opening or closing request that comes while the motor turns or is away is carried out after that; the last one
// counts.
bool MotorRunner::post(const Job& job)
{
    Lock lock(mutex_);
    const bool waits = busy_ || lost_;
    if (job.kind == Kind::move && (waits || resting_))
        return false;
    next_ = job;
    changed_.notify_all();
    if (waits)
        return true;
    verdict_.reset();
    awaited_ = job.kind;
    // Until the motor turns, or is ready for the next request, which may follow at once.
    changed_.wait_for(lock, VERDICT_LIMIT, [this] { return verdict_ && (wanted_ || !busy_ || lost_); });
    awaited_.reset();
    if (!verdict_)
        next_.reset(); // refused: it must not turn later
    return verdict_.value_or(false);
}

// Under the lock. False when nobody waits for it.
bool MotorRunner::answer(bool accepted)
{
    if (!awaited_ || verdict_)
        return false;
    verdict_ = accepted;
    wanted_ = accepted && awaited_ == Kind::move;
    changed_.notify_all();
    return true;
}

// Under the lock.
void MotorRunner::owe(Event event)
{
    if (!std::exchange(wanted_, false))
        return;
    owed_ = event;
    if (wake_)
        wake_();
}

// Under the lock. Before a move turns, its client is refused; after that it is owed the news.
void MotorRunner::fail()
{
    if (!answer(false))
        owe(Event::failure);
}

std::optional<service::Clock::time_point> MotorRunner::nextEventTime() const
{
    const Lock lock(mutex_);
    return owed_ ? std::optional(service::Clock::time_point{}) : std::nullopt; // now
}

void MotorRunner::emitDue(service::Clock::time_point, const std::function<void(Event)>& emit)
{
    std::optional<Event> due;
    {
        const Lock lock(mutex_);
        due = std::exchange(owed_, std::nullopt);
        changed_.notify_all();
    }
    if (due)
        emit(*due);
}

void MotorRunner::forgetEvents()
{
    const Lock lock(mutex_);
    owed_.reset();
    wanted_ = false;
    changed_.notify_all();
}

void MotorRunner::setWake(std::function<void()> wake)
{
    const Lock lock(mutex_);
    wake_ = std::move(wake);
}

void MotorRunner::rest()
{
    Lock lock(mutex_);
    resting_ = true;
    changed_.wait(lock, [this] { return lost_ || (!busy_ && !next_ && !owed_); });
}

void MotorRunner::run()
{
    Lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return ending_ || next_; });
        if (!next_)
            return;
        const Job job = *std::exchange(next_, std::nullopt);
        busy_ = true;
        lock.unlock();
        bool hasMoved = false;
        bool isBack = false;
        try {
            hasMoved = carryOut(job);
        } catch (const MotorRefused& refusal) {
            refuse(refusal.what());
        } catch (const MotorLost& loss) {
            lose(loss);
            isBack = findAgain();
        }
        lock.lock();
        busy_ = false;
        lost_ = lost_ && !isBack;
        if (hasMoved)
            owe(Event::acknowledgement); // not before: the client's next move may come at once
        changed_.notify_all();
        if (isBack) { // told only now, since who reads it moves
            lock.unlock();
            logLine(motor_.name() + " is back; where it stands is uncertain if it was lost in a move");
            lock.lock();
        }
    }
}

// Whether a move has come to its end.
bool MotorRunner::carryOut(const Job& job)
{
    if (job.kind == Kind::move)
        return move(job.displacement);
    opened_ = job.kind == Kind::open;
    const bool accepted = opened_ ? motor_.open() : motor_.close();
    const Lock lock(mutex_);
    answer(accepted);
    return false;
}

bool MotorRunner::move(std::int32_t displacement)
{
    const auto turns = travel_.plan(position_, displacement, motor_.largestMove());
    if (!turns)
        throw MotorRefused("a move by " + std::to_string(displacement) + " steps from position " +
                           std::to_string(position_) + " is refused: it would go beyond the limits");
    motor_.begin(turns->front());
    lastRefusal_.clear();
    {
        const Lock lock(mutex_);
        answer(true);
    }
    position_ += displacement;
    save();
    motor_.finish();
    for (const std::int64_t turn : std::span(*turns).subspan(1)) {
        motor_.begin(turn);
        motor_.finish();
    }
    std::this_thread::sleep_for(settle_);
    return true;
}

void MotorRunner::refuse(const std::string& why)
{
    if (std::exchange(lastRefusal_, why) != why)
        logLine(why);
    const Lock lock(mutex_);
    fail();
}

void MotorRunner::lose(const MotorLost& loss)
{
    logLine(std::string(loss.what()) + "; moves are refused until it is back");
    const Lock lock(mutex_);
    lost_ = true;
    fail();
    changed_.notify_all();
}

void MotorRunner::save()
{
    if (std::exchange(saves_, file_.write(position_)) && !saves_)
        logLine("the position cannot be written to " + file_.name() + "; it will be lost at the end");
}

// False when the end comes first.
bool MotorRunner::findAgain()
{
    std::chrono::milliseconds pause = FIRST_PAUSE;
    for (;;) {
        {
            Lock lock(mutex_);
            if (changed_.wait_for(lock, pause, [this] { return ending_; }))
                return false;
        }
        try {
            motor_.connect();
            if (opened_)
                motor_.open();
            return true;
        } catch (const MotorLost&) {
            pause = std::min(pause * 2, LONGEST_PAUSE);
        }
    }
}

} // namespace tesmor::drive
