// The focus drive's device: on Windows the camera driver's device object, on Linux a link to a drive service.
// Used by the worker thread only; one device at a time is open.
#pragma once

#include "platform/event.h"

#include <cstdint>
#include <span>

namespace tesmor::platform {

class DriveDevice;

// An open device, or INVALID_DEVICE for none. closeDevice gives it back.
using DeviceHandle = DriveDevice*;
inline constexpr DeviceHandle INVALID_DEVICE = nullptr;

// Whether the system knows a device of this unit (0 to 15); it need not open. Does not block. On Linux a service can
// only be found by opening it, so every unit counts as known.
bool deviceExists(unsigned unit) noexcept;

// Opens the unit's device. Does not block. INVALID_DEVICE when it does not open. On Linux a unit whose service hangs
// opens as well, but refuses everything: the next unit may belong to another microscope.
DeviceHandle openDevice(unsigned unit) noexcept;

// Sends a control request and waits for the driver's answer. True when the driver accepted it. Blocks while the driver
// works; on Linux at most 1000 ms. False at once when `device` is INVALID_DEVICE or the link is down.
bool controlDevice(DeviceHandle device, std::uint32_t code, std::span<const std::uint8_t> input) noexcept;

// Reads one byte, of any value. Blocks at most `timeoutMs`. False when none came, `device` is INVALID_DEVICE,
// `completion` is null or the device has gone.
// `completion`: a manual-reset event that the read resets when it begins and that is set when a byte has come; the same
// one at each read of a device.
// A read that timed out may still take a byte later; whatever it needs for that belongs to the device.
bool readDeviceByte(DeviceHandle device, Event* completion, std::uint32_t timeoutMs) noexcept;

// Closes the device and ends its pending reads. Does not block. `device` is not INVALID_DEVICE.
void closeDevice(DeviceHandle device) noexcept;

} // namespace tesmor::platform
