// SPDX-License-Identifier: GPL-2.0-or-later
// The request packet of the focus drive, in the layout of the camera's driver, and what control requests mean.
#pragma once

#include "protocol/drive_codes.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace tesmor {

inline constexpr std::uint8_t DRIVE_REQ_MOVE = 209;
inline constexpr std::uint8_t DRIVE_REQ_OPEN = 210;
inline constexpr std::uint8_t DRIVE_REQ_CLOSE = 211;

// The direction word of a move.
inline constexpr std::uint16_t DIR_FORWARD = 0x0060;
inline constexpr std::uint16_t DIR_REVERSE = 0x8060;

// byte 0 direction 0, 1 requestType 2, 2 recipient 0, 3 typeReserved 0, 4 request, 5 padding 0,
// 6-7 value (direction word of a move, else 0), 8-9 index (steps of a move, else 0); little-endian
using DriveRequest = std::array<std::uint8_t, DRIVE_REQUEST_BYTES>;

// The input of IOCTL_DRIVE_RESET_ACK.
inline constexpr std::array<std::uint8_t, DRIVE_RESET_ACK_BYTES> DRIVE_RESET_ACK_INPUT{};

constexpr DriveRequest makeDriveRequest(std::uint8_t request, std::uint16_t value, std::uint16_t index) noexcept
{
    constexpr std::uint8_t requestType = 2;
    const auto low = [](std::uint16_t word) { return static_cast<std::uint8_t>(word & 0xFF); };
    const auto high = [](std::uint16_t word) { return static_cast<std::uint8_t>(word >> 8); };
    return {0, requestType, 0, 0, request, 0, low(value), high(value), low(index), high(index)};
}

struct DriveCommand {
    enum class Kind { move, open, close, resetAcknowledgement };

    Kind kind;
    std::int32_t displacement = 0; // of a move: steps, positive forward, -65535 to 65535

    bool operator==(const DriveCommand&) const = default;
};

// None when the code is unknown, the input has a wrong length or a field of it is outside its range.
constexpr std::optional<DriveCommand> parseDriveCommand(std::uint32_t code,
                                                        std::span<const std::uint8_t> input) noexcept
{
    using Kind = DriveCommand::Kind;
    if (code == IOCTL_DRIVE_RESET_ACK && std::ranges::equal(input, DRIVE_RESET_ACK_INPUT))
        return DriveCommand{Kind::resetAcknowledgement};
    if (code != IOCTL_DRIVE_REQUEST || input.size() != DRIVE_REQUEST_BYTES)
        return std::nullopt;
    const std::uint8_t request = input[4];
    const auto value = static_cast<std::uint16_t>(input[6] | input[7] << 8);
    const auto index = static_cast<std::uint16_t>(input[8] | input[9] << 8);
    if (!std::ranges::equal(input, makeDriveRequest(request, value, index)))
        return std::nullopt; // a byte that is always the same is not
    if (request == DRIVE_REQ_MOVE && value == DIR_FORWARD)
        return DriveCommand{Kind::move, index};
    if (request == DRIVE_REQ_MOVE && value == DIR_REVERSE)
        return DriveCommand{Kind::move, -index};
    if (value == 0 && index == 0 && request == DRIVE_REQ_OPEN)
        return DriveCommand{Kind::open};
    if (value == 0 && index == 0 && request == DRIVE_REQ_CLOSE)
        return DriveCommand{Kind::close};
    return std::nullopt;
}

} // namespace tesmor
