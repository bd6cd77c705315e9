// SPDX-License-Identifier: GPL-2.0-or-later
// The focus drive's device on Linux: a link to a drive service, which must run as root or as the library's own user.
// One whose backlog is full exists but does not answer.
#include "platform/drive_device.h"

#include "protocol/drive_link.h"
#include "protocol/drive_socket.h"

#include <cerrno>
#include <cstddef>
#include <ctime>
#include <new>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tesmor::platform {

namespace {

constexpr int REPLY_TIMEOUT_MS = 1000;
constexpr int LATE_LOOKS = 64;

using Milliseconds = std::int64_t;

Milliseconds now() noexcept
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<Milliseconds>(time.tv_sec) * 1000 + time.tv_nsec / 1'000'000;
}

// How long to go on looking for a packet. A thread that was held off past its time still finds what has come by then,
// but a peer that never stops sending does not keep it.
class Patience {
public:
    explicit Patience(std::uint32_t milliseconds) noexcept : end_(now() + milliseconds) {}

    // How long the next look may wait, in milliseconds; none when there is no further look.
    std::optional<int> nextWait() noexcept
    {
        const Milliseconds left = end_ - now();
        if (left > 0)
            return static_cast<int>(left);
        return lateLooks_-- > 0 ? std::optional(0) : std::nullopt;
    }

private:
    Milliseconds end_;
    int lateLooks_ = LATE_LOOKS;
};

// 0, or the error number.
int connectToUnit(int socketFd, unsigned unit) noexcept
{
    const DriveAddress address(unit);
    return connect(socketFd, address.get(), address.length()) == 0 ? 0 : errno;
}

// Once the peer has gone or failed to answer in time, the link is down for good: a late reply can then never be taken
// for another request's.
class DriveLink final : public DriveDevice {
public:
    explicit DriveLink(int socketFd) noexcept : socketFd_(socketFd) {}

    ~DriveLink() override
    {
        shutDown();
    }

    bool control(std::uint32_t code, std::span<const std::uint8_t> input) noexcept override
    {
        if (!send(code, input)) {
            shutDown();
            return false;
        }
        Patience patience(REPLY_TIMEOUT_MS);
        while (const std::optional<Packet> packet = receive(patience)) {
            if (packet->length == packet->bytes.size() && controlCodeOf(packet->bytes) == code)
                return isAccepted(packet->bytes);
        }
        shutDown();
        return false;
    }

    bool readByte(Event* completion, std::uint32_t timeoutMs) noexcept override
    {
        if (!completion)
            return false;
        completion->reset();
        return takeAcknowledgement(timeoutMs) && completion->set();
    }

private:
    bool takeAcknowledgement(std::uint32_t timeoutMs) noexcept
    {
        Patience patience(timeoutMs);
        while (keptAcknowledgements_ == 0) {
            if (!receive(patience))
                return false;
        }
        --keptAcknowledgements_;
        return true;
    }

    struct Packet {
        DriveReply bytes;
        std::size_t length; // of the packet, also where that is more than the bytes kept
    };

    // A child that the host has forked may hold the descriptor, too; the link must end all the same.
    void shutDown() noexcept
    {
        if (socketFd_ < 0)
            return;
        ::shutdown(socketFd_, SHUT_RDWR);
        ::close(socketFd_);
        socketFd_ = -1;
        keptAcknowledgements_ = 0;
    }

    bool send(std::uint32_t code, std::span<const std::uint8_t> input) noexcept
    {
        const ControlPacket packet = makeControlPacket(code, input);
        ssize_t sent;
        do {
            sent = ::send(socketFd_, packet.bytes.data(), packet.length, MSG_NOSIGNAL);
        } while (sent < 0 && errno == EINTR);
        return sent == static_cast<ssize_t>(packet.length);
    }

    // The next packet, acknowledgements counted; none when none came in time or the peer has gone.
    std::optional<Packet> receive(Patience& patience) noexcept
    {
        while (socketFd_ >= 0) {
            const std::optional<int> wait = patience.nextWait();
            pollfd readable{socketFd_, POLLIN, 0};
            if (!wait || poll(&readable, 1, *wait) == 0)
                break;
            Packet packet{};
            const ssize_t received = recv(socketFd_, packet.bytes.data(), packet.bytes.size(), MSG_TRUNC);
            if (received < 0 && (errno == EINTR || errno == EAGAIN))
                continue;
            if (received <= 0) {
                shutDown();
                break;
            }
            packet.length = static_cast<std::size_t>(received);
            if (packet.length == DRIVE_ACK_BYTES)
                ++keptAcknowledgements_;
            return packet;
        }
        return std::nullopt;
    }

    int socketFd_;                           // -1 once the link is down
    std::uint64_t keptAcknowledgements_ = 0; // received and not yet taken; their value means nothing
};

class SystemDriveUnits final : public DriveUnits {
public:
    bool exists(unsigned) noexcept override
    {
        return true;
    }

    std::unique_ptr<DriveDevice> open(unsigned unit) noexcept override
    {
        const int socketFd = makeDriveSocket(SOCK_NONBLOCK);
        if (socketFd < 0)
            return nullptr;
        const int failure = connectToUnit(socketFd, unit);
        const bool hangs = failure == EAGAIN;
        if (hangs || (failure == 0 && isTrusted(peerOf(socketFd)))) {
            // Nothing can be sent on a socket that is not connected: the link of a unit that hangs goes down at its
            // first request.
            if (auto* link = new (std::nothrow) DriveLink(socketFd))
                return std::unique_ptr<DriveDevice>(link);
        }
        ::close(socketFd);
        return nullptr;
    }
};

constinit SystemDriveUnits instance;

} // namespace

DriveUnits& systemDriveUnits() noexcept
{
    return instance;
}

} // namespace tesmor::platform
