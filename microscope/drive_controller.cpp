#include "microscope/drive_controller.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace tesmor::microscope {

namespace {

constexpr std::uint32_t REQUEST_CODE = 0x222059;
constexpr std::uint32_t RESET_CODE = 0x222035;
constexpr std::size_t REQUEST_BYTES = 10;
constexpr std::size_t RESET_BYTES = 4;
constexpr std::size_t MOST_LOGGED = 10'000;

constexpr std::uint8_t MOVE = 209;
constexpr std::uint8_t OPEN = 210;
constexpr std::uint8_t CLOSE = 211;

constexpr std::uint16_t FORWARD = 0x0060;
constexpr std::uint16_t REVERSE = 0x8060;

struct RequestPacket {
    std::uint8_t request;
    std::uint16_t value;
    std::uint16_t index;
};

std::optional<RequestPacket> parse(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() != REQUEST_BYTES)
        return std::nullopt;
    const bool addressed = bytes[0] == 0 && bytes[1] == 2 && bytes[2] == 0 && bytes[3] == 0 && bytes[5] == 0;
    if (!addressed)
        return std::nullopt;
    const auto word = [&](std::size_t at) { return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8); };
    const RequestPacket packet{bytes[4], word(6), word(8)};
    switch (packet.request) {
    case MOVE:
        if (packet.value == FORWARD || packet.value == REVERSE)
            return packet;
        return std::nullopt;
    case OPEN:
    case CLOSE:
        if (packet.value == 0 && packet.index == 0)
            return packet;
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

bool isMove(std::uint32_t code, std::span<const std::uint8_t> input)
{
    if (code != REQUEST_CODE)
        return false;
    const std::optional<RequestPacket> packet = parse(input);
    return packet && packet->request == MOVE;
}

bool use(int& count)
{
    if (count <= 0)
        return false;
    --count;
    return true;
}

} // namespace

DriveController::DriveController(Motor& motor, AcknowledgementGate& gate) : motor_(motor), gate_(gate) {}

DriveController::Reaction DriveController::request(std::uint32_t code, std::span<const std::uint8_t> input,
                                                   Clock::time_point now)
{
    std::lock_guard guard(mutex_);
    const Reaction reaction = react(code, input, now);
    log_.push_back({now, code, {input.begin(), input.end()}, reaction.answer});
    if (log_.size() > MOST_LOGGED)
        log_.pop_front();
    return reaction;
}

DriveController::Reaction DriveController::react(std::uint32_t code, std::span<const std::uint8_t> input,
                                                 Clock::time_point now)
{
    if (vanished_ || std::exchange(faults_.vanishAtRequest, false)) {
        vanished_ = true;
        return {Answer::vanish, false};
    }
    const bool refused = use(faults_.refuseRequests) || (isMove(code, input) && use(faults_.refuseMoves));
    const bool accepted = !refused && carryOut(code, input, now);
    if (std::exchange(faults_.vanishBeforeReply, false)) {
        vanished_ = true;
        return {Answer::vanish, false};
    }
    if (use(faults_.hangRequests))
        return {Answer::none, false};
    return {accepted ? Answer::accepted : Answer::refused, use(faults_.rubbishReplies)};
}

bool DriveController::carryOut(std::uint32_t code, std::span<const std::uint8_t> input, Clock::time_point now)
{
    if (code == RESET_CODE)
        return input.size() == RESET_BYTES && std::ranges::all_of(input, [](std::uint8_t byte) { return byte == 0; });
    const std::optional<RequestPacket> packet = code == REQUEST_CODE ? parse(input) : std::nullopt;
    if (!packet)
        return false;
    if (packet->request != MOVE)
        return true;
    const std::int64_t steps = packet->index;
    return startMove(packet->value == FORWARD ? steps : -steps, now);
}

bool DriveController::startMove(std::int64_t displacement, Clock::time_point now)
{
    if (motor_.isMoving(now))
        return false;
    const bool vanishes = std::exchange(faults_.vanishInMove, false);
    if (vanishes)
        displacement /= 2;
    const std::int64_t missed = std::clamp<std::int64_t>(faults_.missSteps, 0, std::abs(displacement));
    faults_.missSteps -= static_cast<int>(missed);
    const Clock::time_point end = motor_.move(displacement, missed, now);
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

Faults DriveController::faults() const
{
    std::lock_guard guard(mutex_);
    return faults_;
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
