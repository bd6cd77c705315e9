// SPDX-License-Identifier: GPL-2.0-or-later
// Linux: the socket of the drive link, AF_UNIX and SOCK_SEQPACKET in the abstract namespace. Each side checks the user
// of the other.
#pragma once

#include "protocol/drive_codes.h"

#include <cstddef>
#include <cstdio>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tesmor {

// For bind and connect.
class DriveAddress {
public:
    explicit DriveAddress(unsigned unit) noexcept
    {
        address_.sun_family = AF_UNIX;
        char* const name = address_.sun_path + 1; // the leading 0 makes the name abstract
        const int nameLength = std::snprintf(name, sizeof address_.sun_path - 1, DRIVE_NAME_FORMAT, unit);
        length_ = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1) + static_cast<socklen_t>(nameLength);
    }

    const sockaddr* get() const noexcept
    {
        return reinterpret_cast<const sockaddr*>(&address_);
    }

    socklen_t length() const noexcept
    {
        return length_;
    }

private:
    sockaddr_un address_{};
    socklen_t length_;
};

// A new socket, or -1. flags: SOCK_NONBLOCK or 0.
inline int makeDriveSocket(int flags) noexcept
{
    return socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0);
}

// As whom the other side runs; none when the system does not say.
inline std::optional<uid_t> peerOf(int socketFd) noexcept
{
    ucred peer{};
    socklen_t length = sizeof peer;
    if (getsockopt(socketFd, SOL_SOCKET, SO_PEERCRED, &peer, &length) != 0)
        return std::nullopt;
    return peer.uid;
}

inline bool isTrusted(std::optional<uid_t> user) noexcept
{
    return user && (*user == 0 || *user == geteuid());
}

} // namespace tesmor
