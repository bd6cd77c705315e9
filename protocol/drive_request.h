// The request packet of the focus drive, in the layout of the camera's driver.
#pragma once

#include <array>
#include <cstdint>

namespace tesmor {

// Device control codes.
inline constexpr std::uint32_t IOCTL_DRIVE_REQUEST = 0x222059;   // input: one DriveRequest
inline constexpr std::uint32_t IOCTL_DRIVE_RESET_ACK = 0x222035; // input: four zero bytes

inline constexpr std::uint8_t DRIVE_REQ_MOVE = 209;
inline constexpr std::uint8_t DRIVE_REQ_OPEN = 210;
inline constexpr std::uint8_t DRIVE_REQ_CLOSE = 211;

// The direction word of a move.
inline constexpr std::uint16_t DIR_FORWARD = 0x0060;
inline constexpr std::uint16_t DIR_REVERSE = 0x8060;

// byte 0 direction 0, 1 requestType 2, 2 recipient 0, 3 typeReserved 0, 4 request, 5 padding 0,
// 6-7 value (direction word of a move, else 0), 8-9 index (steps of a move, else 0); little-endian
using DriveRequest = std::array<std::uint8_t, 10>;

constexpr DriveRequest makeDriveRequest(std::uint8_t request, std::uint16_t value, std::uint16_t index) noexcept
{
    constexpr std::uint8_t requestType = 2;
    const auto low = [](std::uint16_t word) { return static_cast<std::uint8_t>(word & 0xFF); };
    const auto high = [](std::uint16_t word) { return static_cast<std::uint8_t>(word >> 8); };
    return {0, requestType, 0, 0, request, 0, low(value), high(value), low(index), high(index)};
}

} // namespace tesmor
