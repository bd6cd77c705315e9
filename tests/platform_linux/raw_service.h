// The service's end of the drive link, with nothing behind it: a test sends and receives each packet itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace tesmor::test {

using Packet = std::vector<std::uint8_t>;

class RawService {
public:
    explicit RawService(unsigned unit) : listener_(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const int length = std::snprintf(address.sun_path + 1, sizeof address.sun_path - 1, "braskdrv-%u-1010", unit);
        bind(listener_, reinterpret_cast<sockaddr*>(&address),
             static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length));
        listen(listener_, 1);
    }

    ~RawService()
    {
        vanish();
        close(listener_);
    }

    void acceptClient()
    {
        client_ = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    }

    void vanish()
    {
        if (client_ >= 0)
            close(client_);
        client_ = -1;
    }

    // What was sent is still read; then comes the end of file.
    void endSending()
    {
        shutdown(client_, SHUT_WR);
    }

    void send(const Packet& packet)
    {
        ::send(client_, packet.data(), packet.size(), MSG_NOSIGNAL);
    }

    // Empty at the end of file; none when nothing comes for two seconds.
    std::optional<Packet> receive()
    {
        pollfd readable{client_, POLLIN, 0};
        if (poll(&readable, 1, 2000) <= 0)
            return std::nullopt;
        Packet packet(64);
        const ssize_t length = recv(client_, packet.data(), packet.size(), 0);
        packet.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        return packet;
    }

private:
    int listener_;
    int client_ = -1;
};

} // namespace tesmor::test
