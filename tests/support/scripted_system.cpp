// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/scripted_system.h"

#include "platform/event.h"
#include "protocol/drive_request.h"

#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>

namespace tesmor::test {

namespace {

std::string hexOf(const std::vector<std::uint8_t>& bytes)
{
    std::ostringstream text;
    for (const unsigned byte : bytes)
        text << ' ' << std::hex << std::uppercase << std::setw(2) << std::setfill('0') << byte;
    return text.str();
}

} // namespace

class ScriptedSystem::Device final : public platform::DriveDevice {
public:
    explicit Device(ScriptedSystem& system) : system_(system) {}

    ~Device() override
    {
        std::lock_guard guard(system_.mutex_);
        system_.record("close");
        system_.isOpen_ = false;
    }

    bool control(std::uint32_t code, std::span<const std::uint8_t> input) noexcept override
    {
        std::lock_guard guard(system_.mutex_);
        const std::vector<std::uint8_t> bytes(input.begin(), input.end());
        if (code == IOCTL_DRIVE_RESET_ACK) {
            system_.record(bytes == std::vector<std::uint8_t>(4, 0) ? "reset" : "reset with" + hexOf(bytes));
            return true;
        }
        EXPECT_EQ(code, IOCTL_DRIVE_REQUEST);
        system_.record("request" + hexOf(bytes));
        return system_.acceptRequest(bytes);
    }

    bool readByte(platform::Event* completion, std::uint32_t timeoutMs) noexcept override
    {
        std::lock_guard guard(system_.mutex_);
        system_.record("read " + std::to_string(timeoutMs));
        if (system_.moves_.size() > system_.goodMoves && system_.missingAcks > 0) {
            --system_.missingAcks;
            system_.waitedForDevice_ += timeoutMs;
            return false;
        }
        return completion != nullptr;
    }

private:
    ScriptedSystem& system_;
};

void ScriptedSystem::reset(const std::set<unsigned>& units)
{
    std::lock_guard guard(mutex_);
    existingUnits = openingUnits = units;
    refuseOpenRequest = false;
    goodMoves = NEVER;
    refusals = missingAcks = 0;
    inMove = nullptr;
    log_.clear();
    moves_.clear();
    waitedForDevice_ = 0;
}

void ScriptedSystem::record(const std::string& line)
{
    std::lock_guard guard(mutex_);
    log_.push_back(line);
}

bool ScriptedSystem::acceptRequest(const std::vector<std::uint8_t>& request)
{
    if (request.at(4) == DRIVE_REQ_OPEN)
        return !refuseOpenRequest;
    if (request.at(4) != DRIVE_REQ_MOVE)
        return true;
    if (moves_.size() >= goodMoves && refusals > 0) {
        --refusals;
        return false;
    }
    const int steps = request.at(8) | request.at(9) << 8;
    moves_.push_back(request.at(7) == 0x80 ? -steps : steps);
    if (inMove)
        inMove();
    return true;
}

bool ScriptedSystem::exists(unsigned unit) noexcept
{
    record("exists " + std::to_string(unit));
    return existingUnits.contains(unit);
}

std::unique_ptr<platform::DriveDevice> ScriptedSystem::open(unsigned unit) noexcept
{
    std::lock_guard guard(mutex_);
    record("open " + std::to_string(unit));
    EXPECT_FALSE(isOpen_) << "two drives are open";
    isOpen_ = openingUnits.contains(unit);
    return isOpen_ ? std::make_unique<Device>(*this) : nullptr;
}

std::uint32_t ScriptedSystem::tickMilliseconds() noexcept
{
    return now_;
}

void ScriptedSystem::sleepMilliseconds(std::uint32_t milliseconds) noexcept
{
    std::lock_guard guard(mutex_);
    record("sleep " + std::to_string(milliseconds));
    waitedForDevice_ += milliseconds;
    now_ += milliseconds;
}

bool ScriptedSystem::waitFor(platform::Event& event, std::uint32_t milliseconds) noexcept
{
    if (inWait)
        inWait();
    if (event.waitFor(1))
        return true;
    if (timePasses)
        now_ += milliseconds;
    return false;
}

} // namespace tesmor::test
