// The sockets of the drive link, as its service uses them.
#pragma once

#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace tesmor::microscope {

// Owns a file descriptor, or none.
class Descriptor {
public:
    explicit Descriptor(int fd = -1) noexcept : fd_(fd) {}

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

// Throws std::system_error, about `what`, when `fd` is negative.
Descriptor checkedDescriptor(int fd, const char* what);

// A socket that does not block and listens for clients of the unit. Throws std::system_error when the unit is taken.
Descriptor listenOnUnit(unsigned unit);

// The next client that waits, not blocking; none when there is none, or when it runs neither as root nor as this user.
Descriptor acceptTrusted(const Descriptor& listener);

} // namespace tesmor::microscope
