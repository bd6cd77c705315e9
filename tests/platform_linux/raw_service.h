// SPDX-License-Identifier: GPL-2.0-or-later
// Both ends of the drive link, with nothing behind them: a test sends and receives each packet itself.
#pragma once

#include "protocol/drive_socket.h"

#include <cstdint>
#include <optional>
#include <poll.h>
#include <vector>

namespace tesmor::test {

using Packet = std::vector<std::uint8_t>;

class RawLink {
public:
    ~RawLink()
    {
        vanish();
    }

    void vanish()
    {
        if (link_ >= 0)
            close(link_);
        link_ = -1;
    }

    void send(const Packet& packet) const
    {
        ::send(link_, packet.data(), packet.size(), MSG_NOSIGNAL);
    }

    // Empty at the end of file; none when nothing comes for ten seconds.
    std::optional<Packet> receive() const
    {
        pollfd readable{link_, POLLIN, 0};
        if (poll(&readable, 1, 10'000) <= 0)
            return std::nullopt;
        Packet packet(64);
        const ssize_t length = recv(link_, packet.data(), packet.size(), 0);
        packet.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        return packet;
    }

protected:
    int link_ = -1;
};

class RawClient : public RawLink {
public:
    explicit RawClient(unsigned unit)
    {
        link_ = makeDriveSocket(0);
        const DriveAddress address(unit);
        connect(link_, address.get(), address.length());
    }

    std::optional<Packet> ask(const Packet& request) const
    {
        send(request);
        return receive();
    }
};

class RawService : public RawLink {
public:
    explicit RawService(unsigned unit)
    {
        const DriveAddress address(unit);
        bind(listener_, address.get(), address.length());
        listen(listener_, 1);
    }

    ~RawService()
    {
        close(listener_);
    }

    void acceptClient()
    {
        link_ = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    }

    // Whether somebody has connected and was not yet accepted.
    bool hasCaller() const
    {
        pollfd connecting{listener_, POLLIN, 0};
        return poll(&connecting, 1, 0) > 0;
    }

    // What was sent is still read; then comes the end of file.
    void endSending()
    {
        shutdown(link_, SHUT_WR);
    }

private:
    const int listener_ = makeDriveSocket(0);
};

} // namespace tesmor::test
