// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive_service/linux/link_socket.h"

#include "protocol/drive_socket.h"

#include <string>

namespace tesmor::service {

Descriptor listenOnUnit(unsigned unit)
{
    constexpr int waitingClients = 16;
    Descriptor listener = Descriptor::checked(makeDriveSocket(SOCK_NONBLOCK), "drive service socket");
    const DriveAddress address(unit);
    if (bind(listener.get(), address.get(), address.length()) != 0 || listen(listener.get(), waitingClients) != 0)
        throw std::system_error(errno, std::generic_category(), "drive unit " + std::to_string(unit));
    return listener;
}

LinkSocket::LinkSocket(const Descriptor& listener)
    : socket_(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK))
{
    if (isOpen() && !isTrusted(peerOf(get())))
        close();
}

std::optional<std::span<const std::uint8_t>> LinkSocket::receive(std::span<std::uint8_t> buffer)
{
    if (!isOpen())
        return std::nullopt;
    const ssize_t length = recv(get(), buffer.data(), buffer.size(), 0);
    if (length > 0)
        return buffer.first(static_cast<std::size_t>(length));
    if (length == 0 || (errno != EINTR && errno != EAGAIN))
        close();
    return std::nullopt;
}

void LinkSocket::send(std::span<const std::uint8_t> packet)
{
    if (isOpen() && ::send(get(), packet.data(), packet.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(packet.size()))
        close();
}

void LinkSocket::close() noexcept
{
    socket_.close();
}

bool LinkSocket::isOpen() const noexcept
{
    return socket_.isOpen();
}

int LinkSocket::get() const noexcept
{
    return socket_.get();
}

} // namespace tesmor::service
