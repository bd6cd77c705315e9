#include "host/drive_units.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>

namespace tesmor::apps {

namespace {

constexpr unsigned UNITS = 16;
constexpr int REPLY_TIMEOUT_MS = 1000;

// The control code 0x222035, which forgets acknowledgements that nobody has read, and its input, a zero.
constexpr std::array<std::uint8_t, 8> HARMLESS_REQUEST{0x35, 0x20, 0x22, 0x00, 0, 0, 0, 0};
constexpr std::size_t REPLY_LENGTH = 5; // the control code, then whether it was accepted

class Socket {
public:
    Socket() : descriptor_(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {}
    ~Socket()
    {
        close(descriptor_);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    bool connectTo(unsigned unit) const
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const int length = std::snprintf(address.sun_path + 1, sizeof(address.sun_path) - 1, "braskdrv-%u-1010", unit);
        return connect(descriptor_, reinterpret_cast<const sockaddr*>(&address),
                       static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1) + static_cast<socklen_t>(length)) ==
               0;
    }

    std::optional<uid_t> peer() const
    {
        ucred credentials{};
        socklen_t length = sizeof(credentials);
        if (getsockopt(descriptor_, SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0)
            return std::nullopt;
        return credentials.uid;
    }

    DriveState ask() const
    {
        if (send(descriptor_, HARMLESS_REQUEST.data(), HARMLESS_REQUEST.size(), MSG_NOSIGNAL) < 0)
            return DriveState::busy;
        pollfd readable{descriptor_, POLLIN, 0};
        while (poll(&readable, 1, REPLY_TIMEOUT_MS) > 0) {
            std::array<std::uint8_t, REPLY_LENGTH> reply{};
            const ssize_t length = recv(descriptor_, reply.data(), reply.size(), MSG_TRUNC);
            if (length <= 0)
                return DriveState::busy;
            if (length == REPLY_LENGTH && std::equal(reply.begin(), reply.end() - 1, HARMLESS_REQUEST.begin()))
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
    for (unsigned number = 0; number < UNITS; ++number) {
        const Socket socket;
        if (!socket.connectTo(number))
            continue;
        const uid_t owner = socket.peer().value_or(0);
        const bool trusted = owner == 0 || owner == geteuid();
        units.push_back({number, trusted ? socket.ask() : DriveState::foreign, owner});
    }
    return units;
}

} // namespace tesmor::apps
