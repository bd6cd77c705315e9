// SPDX-License-Identifier: GPL-2.0-or-later
// The focus drive's device: on Windows the camera driver's device object, on Linux a link to a drive service.
// Interfaces, so that a drive can be handed other units than the system's.
#pragma once

#include "platform/event.h"

#include <cstdint>
#include <memory>
#include <span>

namespace tesmor::platform {

// An open device. Used by the worker thread only; one at a time is open. Its destructor closes it and ends its pending
// reads, without blocking.
class DriveDevice {
public:
    DriveDevice() = default;
    DriveDevice(const DriveDevice&) = delete;
    DriveDevice& operator=(const DriveDevice&) = delete;
    virtual ~DriveDevice() = default;

    // Sends a control request and waits for the driver's answer. True when the driver accepted it. Blocks while the
    // driver works; on Linux at most 1000 ms. False at once when the link is down.
    virtual bool control(std::uint32_t code, std::span<const std::uint8_t> input) noexcept = 0;

    // Reads one byte, of any value. Blocks at most `timeoutMs`. False when none came, `completion` is null or the
    // device has gone. `completion`: a manual-reset event that the read resets when it begins and that is set when a
    // byte has come; the same one at each read of a device. A read that timed out may still take a byte later; whatever
    // it needs for that belongs to the device.
    virtual bool readByte(Event* completion, std::uint32_t timeoutMs) noexcept = 0;
};

// The drive units, numbered from 0.
class DriveUnits {
public:
    // Whether there is a device of this unit; it need not open. Does not block. On Linux a service can only be found by
    // opening it, so every unit counts as known.
    virtual bool exists(unsigned unit) noexcept = 0;

    // Opens the unit's device. Does not block. Null when it does not open. On Linux a unit whose service hangs opens as
    // well, but refuses everything: the next unit may belong to another microscope.
    virtual std::unique_ptr<DriveDevice> open(unsigned unit) noexcept = 0;

protected:
    ~DriveUnits() = default;
};

DriveUnits& systemDriveUnits() noexcept;

} // namespace tesmor::platform
