// The open link to the focus motor. It keeps no position: every move is relative.
#pragma once

#include "platform/clock.h"
#include "platform/drive_device.h"
#include "platform/event.h"

#include <cstdint>
#include <memory>

namespace tesmor {

inline constexpr unsigned MAX_DRIVE_UNITS = 16;
inline constexpr std::uint32_t ACK_TIMEOUT_MS = 1500;
inline constexpr std::uint32_t DRIVE_RETRY_PAUSE_MS = 20;
inline constexpr int SEND_ATTEMPTS = 5; // per move
inline constexpr int ACK_READS = 5;     // per move, in total

// Worker thread only; at most one at a time is open. Never throws.
class FocusDrive {
public:
    // Takes the lowest unit that exists and opens. Always yields the object; hasDevice tells whether there is a drive.
    // A drive that does not answer counts: its moves fail. Units and clock outlive the drive.
    FocusDrive(platform::DriveUnits& units, platform::Clock& clock) noexcept;

    // Closes the device, released first where the driver had accepted the opening.
    ~FocusDrive();

    FocusDrive(const FocusDrive&) = delete;
    FocusDrive& operator=(const FocusDrive&) = delete;

    bool hasDevice() const noexcept
    {
        return device_ != nullptr;
    }

    // Moves the motor and waits for its acknowledgement. True when the move was accepted and acknowledged; false after
    // SEND_ATTEMPTS refusals, or after ACK_READS vain reads of an accepted move, which is never sent again.
    // Blocks for 5 x 20 ms at most when the driver refuses and 5 x (1500 + 20) ms when no acknowledgement comes, and for
    // what the driver takes to answer each request (platform/drive_device.h).
    bool move(std::uint16_t steps, bool reverse) noexcept;

    // A signed displacement as a move: the low 16 bits of its size; reverse when it is 0 or negative.
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
