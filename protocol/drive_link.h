// SPDX-License-Identifier: GPL-2.0-or-later
// What passes between the library and a drive service on Linux. One packet is one message; little-endian.
//   to the service     control request: the control code as u32, then its input
//   to the library     reply: the control code that it answers as u32, then 0 for refused, else accepted
//                      acknowledgement: one byte of any value
//                      of any other length: ignored
// The socket is in drive_socket.h.
#pragma once

#include "protocol/drive_codes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tesmor {

inline constexpr std::size_t DRIVE_CODE_BYTES = 4;
inline constexpr std::size_t MAX_CONTROL_BYTES = DRIVE_CODE_BYTES + DRIVE_REQUEST_BYTES;
inline constexpr std::size_t DRIVE_ACK_BYTES = 1;

using DriveReply = std::array<std::uint8_t, DRIVE_CODE_BYTES + 1>;

struct ControlPacket {
    std::array<std::uint8_t, MAX_CONTROL_BYTES> bytes{};
    std::size_t length = 0;
};

constexpr void putControlCode(std::uint32_t code, std::span<std::uint8_t, DRIVE_CODE_BYTES> bytes) noexcept
{
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(code & 0xFF);
        code >>= 8;
    }
}

// Of any packet; bytes that it lacks count as 0.
constexpr std::uint32_t controlCodeOf(std::span<const std::uint8_t> packet) noexcept
{
    std::uint32_t code = 0;
    for (std::size_t i = std::min(DRIVE_CODE_BYTES, packet.size()); i-- > 0;)
        code = code << 8 | packet[i];
    return code;
}

constexpr std::span<const std::uint8_t> controlInputOf(std::span<const std::uint8_t> packet) noexcept
{
    return packet.subspan(std::min(DRIVE_CODE_BYTES, packet.size()));
}

// input: at most DRIVE_REQUEST_BYTES.
constexpr ControlPacket makeControlPacket(std::uint32_t code, std::span<const std::uint8_t> input) noexcept
{
    ControlPacket packet;
    putControlCode(code, std::span(packet.bytes).first<DRIVE_CODE_BYTES>());
    std::ranges::copy(input, packet.bytes.begin() + DRIVE_CODE_BYTES);
    packet.length = DRIVE_CODE_BYTES + input.size();
    return packet;
}

constexpr DriveReply makeDriveReply(std::uint32_t code, bool accepted) noexcept
{
    DriveReply reply{};
    putControlCode(code, std::span(reply).first<DRIVE_CODE_BYTES>());
    reply.back() = accepted ? 1 : 0;
    return reply;
}

constexpr bool isAccepted(const DriveReply& reply) noexcept
{
    return reply.back() != 0;
}

} // namespace tesmor
