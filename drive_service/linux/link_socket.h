// SPDX-License-Identifier: GPL-2.0-or-later
// The sockets of the drive link, as its service uses them. None of them blocks.
#pragma once

#include "drive_service/linux/descriptor.h"

#include <cstdint>
#include <optional>
#include <span>

namespace tesmor::service {

// Listens for clients of the unit. Throws std::system_error when the unit is taken.
Descriptor listenOnUnit(unsigned unit);

// The link to one client.
class LinkSocket {
public:
    // Takes the next client that waits; not open when there is none, or when it runs neither as root nor as this user.
    explicit LinkSocket(const Descriptor& listener);

    // The next packet, cut to the buffer; none when none is there. Closes when the client has gone.
    std::optional<std::span<const std::uint8_t>> receive(std::span<std::uint8_t> buffer);

    // Closes when the client has gone or does not take its packets.
    void send(std::span<const std::uint8_t> packet);

    void close() noexcept;
    bool isOpen() const noexcept;
    int get() const noexcept;

private:
    Descriptor socket_;
};

} // namespace tesmor::service
