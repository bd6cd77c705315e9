// SPDX-License-Identifier: GPL-2.0-or-later
// A client that sends whatever it likes towards a drive service, which must reply to every packet.
// Input: packets, each a length byte and so many bytes; a bit of the length says that the client leaves without reading
// the answer.
#pragma once

#include "fuzz/fuzz_input.h"
#include "protocol/drive_socket.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace tesmor::fuzz {

inline constexpr std::uint8_t LENGTH_BITS = 0x7F;
inline constexpr std::uint8_t LEAVES = 0x80;

inline int connectTo(unsigned unit)
{
    const int client = makeDriveSocket(0);
    const DriveAddress address(unit);
    require(connect(client, address.get(), address.length()) == 0, "the service listens");
    return client;
}

// The one reply to a packet, past the acknowledgements.
inline void expectReply(int client, std::span<const std::uint8_t> packet)
{
    std::uint8_t code[4] = {};
    std::memcpy(code, packet.data(), std::min<std::size_t>(packet.size(), sizeof code));
    std::uint8_t reply[512];
    ssize_t length;
    do {
        length = recv(client, reply, sizeof reply, 0);
    } while (length == 1 || (length < 0 && errno == EINTR)); // the fuzzer's own timer interrupts
    require(length == 5, "every packet is replied to");
    require(std::memcmp(reply, code, sizeof code) == 0 && reply[4] <= 1, "with its code and a verdict");
}

inline void playClient(unsigned unit, Input input)
{
    int client = connectTo(unit);
    while (!input.isEmpty()) {
        const std::uint8_t head = input.byte();
        const auto packet = input.bytes(head & LENGTH_BITS);
        if (packet.empty())
            continue; // reads as the end of file
        require(send(client, packet.data(), packet.size(), MSG_NOSIGNAL) > 0, "the service takes packets");
        if (head & LEAVES) {
            close(client);
            client = connectTo(unit);
        } else {
            expectReply(client, packet);
        }
    }
    close(client);
}

} // namespace tesmor::fuzz
