// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/drive/drive_controller.h"

#include "protocol/drive_request.h"

#include <algorithm>
#include <utility>

namespace tesmor::microscope {

namespace {

constexpr std::size_t MOST_LOGGED = 10'000;

bool use(int& count)
{
    if (count <= 0)
        return false;
    --count;
    return true;
}

} // namespace

DriveController::DriveController(Motor& motor, AcknowledgementGate& gate) : motor_(motor), gate_(gate) {}

Reaction DriveController::request(std::uint32_t code, std::span<const std::uint8_t> input, Clock::time_point now)
{
    std::lock_guard guard(mutex_);
    const Reaction reaction = react(code, input, now);
    log_.push_back({now, code, {input.begin(), input.end()}, reaction.answer});
    if (log_.size() > MOST_LOGGED)
        log_.pop_front();
    return reaction;
}

Reaction DriveController::react(std::uint32_t code, std::span<const std::uint8_t> input, Clock::time_point now)
{
    if (vanished_ || std::exchange(faults_.vanishAtRequest, false)) {
        vanished_ = true;
        return {Answer::vanish, false};
    }
    const std::optional<DriveCommand> command = parseDriveCommand(code, input);
    const bool isMove = command && command->kind == DriveCommand::Kind::move;
    const bool refused = !command || use(faults_.refuseRequests) || (isMove && use(faults_.refuseMoves));
    const bool accepted = !refused && (!isMove || startMove(command->displacement, now));
    if (std::exchange(faults_.vanishBeforeReply, false)) {
        vanished_ = true;
        return {Answer::vanish, false};
    }
    if (use(faults_.hangRequests))
        return {Answer::none, false};
    return {accepted ? Answer::accepted : Answer::refused, use(faults_.rubbishReplies)};
}

bool DriveController::startMove(std::int64_t displacement, Clock::time_point now)
{
    if (motor_.isMoving(now))
        return false;
    const bool vanishes = std::exchange(faults_.vanishInMove, false);
    if (vanishes)
        displacement /= 2;
    const Clock::time_point end = motor_.move(displacement, now);
    if (vanishes)
        owed_.push_back({end, Event::vanish});
    else if (!use(faults_.withholdAcknowledgements))
        owed_.push_back({end + faults_.acknowledgementDelay, Event::acknowledgement});
    return true;
}

std::optional<Clock::time_point> DriveController::nextEventTime() const
{
    std::lock_guard guard(mutex_);
    if (owed_.empty())
        return std::nullopt;
    return std::ranges::min(owed_, {}, &OwedEvent::time).time;
}

void DriveController::emitDue(Clock::time_point now, const std::function<void(Event)>& emit)
{
    std::vector<OwedEvent> due;
    {
        std::lock_guard guard(mutex_);
        const auto later = std::stable_partition(owed_.begin(), owed_.end(),
                                                 [now](const OwedEvent& owed) { return owed.time <= now; });
        due.assign(owed_.begin(), later);
        owed_.erase(owed_.begin(), later);
        if (std::ranges::any_of(due, [](const OwedEvent& owed) { return owed.event == Event::vanish; }))
            vanished_ = true;
    }
    for (const OwedEvent& owed : due) {
        if (owed.event == Event::acknowledgement)
            gate_.acknowledge([&] { emit(owed.event); });
        else
            emit(owed.event);
    }
}

void DriveController::forgetEvents()
{
    std::lock_guard guard(mutex_);
    owed_.clear();
}

void DriveController::setFaults(const Faults& faults)
{
    std::lock_guard guard(mutex_);
    faults_ = faults;
}

std::vector<LoggedRequest> DriveController::log() const
{
    std::lock_guard guard(mutex_);
    return {log_.begin(), log_.end()};
}

void DriveController::clearLog()
{
    std::lock_guard guard(mutex_);
    log_.clear();
}

bool DriveController::hasVanished() const
{
    std::lock_guard guard(mutex_);
    return vanished_;
}

void DriveController::reappear()
{
    std::lock_guard guard(mutex_);
    vanished_ = false;
    owed_.clear();
}

} // namespace tesmor::microscope
