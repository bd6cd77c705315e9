// The focus drive's device on Linux: a link to a drive service on a local socket.
//   socket       AF_UNIX, SOCK_SEQPACKET, abstract name "braskdrv-%u-1010"; one packet is one message
//   to service   control code as u32, then its input bytes
//   from service 5 bytes: the control code that is answered as u32, then 0 for refused, else accepted
//                1 byte: an acknowledgement; any other length is ignored
//   byte order   little-endian
// The service must run as root or as the library's own user. One whose backlog is full exists but does not answer.
#include "platform/drive_device.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <new>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tesmor::platform {

namespace {

constexpr int REPLY_TIMEOUT_MS = 1000;
constexpr int LATE_LOOKS = 64;
constexpr std::size_t ACK_LENGTH = 1;
constexpr std::size_t REPLY_LENGTH = 5;
constexpr std::size_t MAX_INPUT_BYTES = 10;

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

void putLittleEndian(std::uint32_t value, std::uint8_t* bytes) noexcept
{
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

std::uint32_t getLittleEndian(const std::uint8_t* bytes) noexcept
{
    std::uint32_t value = 0;
    for (int i = 3; i >= 0; --i)
        value = value << 8 | bytes[i];
    return value;
}

// 0, or the error number.
int connectToUnit(int socketFd, unsigned unit) noexcept
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    char* const name = address.sun_path + 1; // the leading 0 makes the name abstract
    const int nameLength = std::snprintf(name, sizeof(address.sun_path) - 1, "braskdrv-%u-1010", unit);
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + nameLength);
    return connect(socketFd, reinterpret_cast<const sockaddr*>(&address), length) == 0 ? 0 : errno;
}

bool isTrusted(int socketFd) noexcept
{
    ucred peer{};
    socklen_t length = sizeof(peer);
    return getsockopt(socketFd, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 &&
           (peer.uid == 0 || peer.uid == geteuid());
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
            if (packet->length == REPLY_LENGTH && getLittleEndian(packet->bytes.data()) == code)
                return packet->bytes[4] != 0;
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
        std::array<std::uint8_t, REPLY_LENGTH> bytes;
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
        std::array<std::uint8_t, 4 + MAX_INPUT_BYTES> packet;
        putLittleEndian(code, packet.data());
        std::ranges::copy(input, packet.data() + 4);
        const std::size_t length = 4 + input.size();
        ssize_t sent;
        do {
            sent = ::send(socketFd_, packet.data(), length, MSG_NOSIGNAL);
        } while (sent < 0 && errno == EINTR);
        return sent == static_cast<ssize_t>(length);
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
            if (packet.length == ACK_LENGTH)
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
        const int socketFd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        if (socketFd < 0)
            return nullptr;
        const int failure = connectToUnit(socketFd, unit);
        const bool hangs = failure == EAGAIN;
        if (hangs || (failure == 0 && isTrusted(socketFd))) {
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
