#include "microscope/drive/linux/link_socket.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <string>
#include <sys/un.h>
#include <system_error>

namespace tesmor::microscope {

namespace {

bool isTrusted(const Descriptor& client)
{
    ucred peer{};
    socklen_t length = sizeof peer;
    return getsockopt(client.get(), SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 &&
           (peer.uid == 0 || peer.uid == geteuid());
}

} // namespace

Descriptor checkedDescriptor(int fd, const char* what)
{
    if (fd < 0)
        throw std::system_error(errno, std::generic_category(), what);
    return Descriptor(fd);
}

Descriptor listenOnUnit(unsigned unit)
{
    constexpr int waitingClients = 8;
    const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    Descriptor listener = checkedDescriptor(fd, "drive service socket");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    char* const name = address.sun_path + 1; // the leading 0 makes the name abstract
    const int nameLength = std::snprintf(name, sizeof address.sun_path - 1, "braskdrv-%u-1010", unit);
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + nameLength);
    if (bind(fd, reinterpret_cast<const sockaddr*>(&address), length) != 0 || listen(fd, waitingClients) != 0)
        throw std::system_error(errno, std::generic_category(), "drive unit " + std::to_string(unit));
    return listener;
}

Descriptor acceptTrusted(const Descriptor& listener)
{
    Descriptor client(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (client.isOpen() && !isTrusted(client))
        client.close();
    return client;
}

} // namespace tesmor::microscope
