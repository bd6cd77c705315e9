// SPDX-License-Identifier: GPL-2.0-or-later
// The open link to the focus motor. It tracks no position: every move is relative.
#pragma once

#include "platform/clock.h"
#include "platform/drive_device.h"
#include "platform/event.h"

#include <cstdint>
#include <memory>

namespace tesmor {

inline constexpr std::uint32_t ACK_TIMEOUT_MS = 1500;
inline constexpr std::uint32_t DRIVE_RETRY_PAUSE_MS = 20;
inline constexpr int SEND_ATTEMPTS = 5; // per move
inline constexpr int ACK_READS = 5;     // per move, in total

// Worker thread only; at most one at a time is open. Never throws.
class FocusDrive {
public:
    // Opens the lowest unit that can be opened. Always succeeds; hasDevice tells whether there is a drive. A drive that
    // does not respond counts as one: its moves fail. Units and clock must outlive the drive.
    FocusDrive(platform::DriveUnits& units, platform::Clock& clock) noexcept;

    // Closes the device, after releasing it if the driver accepted the opening.
    ~FocusDrive();

    FocusDrive(const FocusDrive&) = delete;
    FocusDrive& operator=(const FocusDrive&) = delete;

    bool hasDevice() const noexcept
    {
        return device_ != nullptr;
    }

    // Moves the motor and waits for its acknowledgement. Returns true if the move was accepted and acknowledged; false
    // after SEND_ATTEMPTS refusals, or if ACK_READS reads bring no acknowledgement of an accepted move, which is never
    // sent again. Blocks for at most 5 x 20 ms if the driver refuses and 5 x (1500 + 20) ms if it does not acknowledge,
    // plus the driver's time to answer each request (platform/drive_device.h).
    bool move(std::uint16_t steps, bool reverse) noexcept;

    // A signed displacement as a move: the low 16 bits of its magnitude; reverse if it is 0 or negative.
    bool moveBy(std::int32_t displacement) noexcept;

private:
    bool sendRequest(std::uint8_t request, std::uint16_t value, std::uint16_t index) noexcept;
    bool readAck() noexcept;

    platform::Clock& clock_;
    std::unique_ptr<platform::DriveDevice> device_;
    std::unique_ptr<platform::Event> ackEvent_; // null when it could not be created; then every move fails
    bool opened_ = false;                       // the driver has accepted DRIVE_REQ_OPEN
};

} // namespace tesmor
