#include "microscope/drive/linux/link_socket.h"

#include "protocol/drive_socket.h"

#include <cerrno>
#include <string>
#include <system_error>

namespace tesmor::microscope {

Descriptor checkedDescriptor(int fd, const char* what)
{
    if (fd < 0)
        throw std::system_error(errno, std::generic_category(), what);
    return Descriptor(fd);
}

Descriptor listenOnUnit(unsigned unit)
{
    constexpr int waitingClients = 8;
    const int fd = makeDriveSocket(SOCK_NONBLOCK);
    Descriptor listener = checkedDescriptor(fd, "drive service socket");
    const DriveAddress address(unit);
    if (bind(fd, address.get(), address.length()) != 0 || listen(fd, waitingClients) != 0)
        throw std::system_error(errno, std::generic_category(), "drive unit " + std::to_string(unit));
    return listener;
}

Descriptor acceptTrusted(const Descriptor& listener)
{
    Descriptor client(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (client.isOpen() && !isTrusted(peerOf(client.get())))
        client.close();
    return client;
}

} // namespace tesmor::microscope
