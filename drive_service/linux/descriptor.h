// SPDX-License-Identifier: GPL-2.0-or-later
// A file descriptor that closes itself.
#pragma once

#include <cerrno>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tesmor::service {

// Owns a file descriptor, or none.
class Descriptor {
public:
    explicit Descriptor(int fd = -1) noexcept : fd_(fd) {}

    // Throws std::system_error, about `what`, when the call that made `fd` has failed.
    static Descriptor checked(int fd, const char* what)
    {
        if (fd < 0)
            throw std::system_error(errno, std::generic_category(), what);
        return Descriptor(fd);
    }

    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(fd_, other.fd_);
        other.close();
        return *this;
    }

    ~Descriptor()
    {
        close();
    }

    void close() noexcept
    {
        if (fd_ >= 0)
            ::close(fd_);
        fd_ = -1;
    }

    bool isOpen() const noexcept
    {
        return fd_ >= 0;
    }

    int get() const noexcept
    {
        return fd_;
    }

private:
    int fd_;
};

} // namespace tesmor::service
