#include "support/scripted_device.h"

#include "platform/drive_device.h"

#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>

namespace tesmor::test {

namespace {

constexpr std::uint32_t REQUEST_CODE = 0x222059;
constexpr std::uint32_t RESET_CODE = 0x222035;

std::string hexOf(const std::vector<std::uint8_t>& bytes)
{
    std::ostringstream text;
    for (const unsigned byte : bytes)
        text << ' ' << std::hex << std::uppercase << std::setw(2) << std::setfill('0') << byte;
    return text.str();
}

} // namespace

void ScriptedDevice::reset(const std::set<unsigned>& units)
{
    std::lock_guard guard(mutex_);
    existingUnits = openingUnits = units;
    refuseOpenRequest = false;
    goodMoves = NEVER;
    refusals = missingAcks = 0;
    inMove = nullptr;
    log_.clear();
    moves_.clear();
    waited_ = 0;
    isOpen_ = false;
}

void ScriptedDevice::record(const std::string& line)
{
    std::lock_guard guard(mutex_);
    log_.push_back(line);
}

bool ScriptedDevice::open(unsigned unit)
{
    std::lock_guard guard(mutex_);
    record("open " + std::to_string(unit));
    EXPECT_FALSE(isOpen_) << "two drives are open";
    isOpen_ = openingUnits.contains(unit);
    return isOpen_;
}

bool ScriptedDevice::control(std::uint32_t code, const std::vector<std::uint8_t>& input)
{
    std::lock_guard guard(mutex_);
    if (code == RESET_CODE) {
        record(input == std::vector<std::uint8_t>(4, 0) ? "reset" : "reset with" + hexOf(input));
        return true;
    }
    EXPECT_EQ(code, REQUEST_CODE);
    record("request" + hexOf(input));
    switch (input.at(4)) {
    case 209:
        return acceptMove(static_cast<std::uint16_t>(input.at(6) | input.at(7) << 8),
                          static_cast<std::uint16_t>(input.at(8) | input.at(9) << 8));
    case 210:
        return !refuseOpenRequest;
    default:
        return true;
    }
}

bool ScriptedDevice::acceptMove(std::uint16_t direction, std::uint16_t steps)
{
    if (moves_.size() >= goodMoves && refusals > 0) {
        --refusals;
        return false;
    }
    moves_.push_back(direction == 0x8060 ? -steps : steps);
    if (inMove)
        inMove();
    return true;
}

bool ScriptedDevice::readByte(std::uint32_t timeoutMs)
{
    std::lock_guard guard(mutex_);
    record("read " + std::to_string(timeoutMs));
    if (moves_.size() > goodMoves && missingAcks > 0) {
        --missingAcks;
        waited_ += timeoutMs;
        return false;
    }
    return true;
}

void ScriptedDevice::sleep(std::uint32_t milliseconds)
{
    std::lock_guard guard(mutex_);
    record("sleep " + std::to_string(milliseconds));
    waited_ += milliseconds;
}

void ScriptedDevice::close()
{
    std::lock_guard guard(mutex_);
    record("close");
    isOpen_ = false;
}

} // namespace tesmor::test

namespace tesmor::platform {

using test::device;

class DriveDevice {};

static DriveDevice theDevice;

bool deviceExists(unsigned unit) noexcept
{
    device.record("exists " + std::to_string(unit));
    return device.existingUnits.contains(unit);
}

DeviceHandle openDevice(unsigned unit) noexcept
{
    return device.open(unit) ? &theDevice : INVALID_DEVICE;
}

bool controlDevice(DeviceHandle handle, std::uint32_t code, std::span<const std::uint8_t> input) noexcept
{
    return handle != INVALID_DEVICE && device.control(code, {input.begin(), input.end()});
}

bool readDeviceByte(DeviceHandle handle, Event* completion, std::uint32_t timeoutMs) noexcept
{
    return handle != INVALID_DEVICE && completion && device.readByte(timeoutMs);
}

void closeDevice(DeviceHandle) noexcept
{
    device.close();
}

} // namespace tesmor::platform
