// SPDX-License-Identifier: GPL-2.0-or-later
#include "host/drive_units.h"

#include "protocol/drive_link.h"
#include "protocol/drive_request.h"
#include "protocol/drive_socket.h"

#include <cerrno>
#include <poll.h>

namespace tesmor::apps {

namespace {

constexpr int REPLY_TIMEOUT_MS = 1000;

class Socket {
public:
    Socket() : descriptor_(makeDriveSocket(SOCK_NONBLOCK)) {}
    ~Socket()
    {
        close(descriptor_);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    // 0 or the error.
    int connectTo(unsigned unit) const
    {
        const DriveAddress address(unit);
        return connect(descriptor_, address.get(), address.length()) == 0 ? 0 : errno;
    }

    std::optional<uid_t> peer() const
    {
        return peerOf(descriptor_);
    }

    // With the one request that changes nothing: nobody waits for an acknowledgement on this link.
    DriveState ask() const
    {
        const ControlPacket request = makeControlPacket(IOCTL_DRIVE_RESET_ACK, DRIVE_RESET_ACK_INPUT);
        if (send(descriptor_, request.bytes.data(), request.length, MSG_NOSIGNAL) < 0)
            return DriveState::busy;
        pollfd readable{descriptor_, POLLIN, 0};
        while (poll(&readable, 1, REPLY_TIMEOUT_MS) > 0) {
            DriveReply reply{};
            const ssize_t length = recv(descriptor_, reply.data(), reply.size(), MSG_TRUNC);
            if (length <= 0)
                return DriveState::busy;
            if (length == static_cast<ssize_t>(reply.size()) && controlCodeOf(reply) == IOCTL_DRIVE_RESET_ACK)
                return DriveState::answers;
        }
        return DriveState::silent;
    }

private:
    int descriptor_;
};

} // namespace

std::vector<DriveUnit> findDriveUnits()
{
    std::vector<DriveUnit> units;
    for (unsigned number = 0; number < MAX_DRIVE_UNITS; ++number) {
        const Socket socket;
        const int error = socket.connectTo(number);
        if (error == EAGAIN) // others wait already for a service that lets nobody in
            units.push_back({number, DriveState::silent, 0});
        if (error != 0)
            continue;
        const std::optional<uid_t> owner = socket.peer();
        units.push_back({number, isTrusted(owner) ? socket.ask() : DriveState::foreign, owner.value_or(0)});
    }
    return units;
}

} // namespace tesmor::apps
