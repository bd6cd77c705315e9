// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/serial_port.h"

#include "drive/port_users.h"
#include "drive/serial_speed.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace tesmor::drive {

namespace {

constexpr int WRITE_LIMIT_MS = 1000;
constexpr std::size_t LONGEST_LINE = 240; // longer ones are cut

std::string whyNotOpened(const std::string& port, int error)
{
    if (error == ENOENT)
        return "there is no port " + port + "; plug the board in, and see: tesmor-drive list";
    if (error == EACCES)
        return "no permission for " + port +
               "; install the udev rule that comes with tesmor-drive and plug the board " +
               "in anew, or join the group dialout and log in anew";
    if (error == EBUSY || error == EWOULDBLOCK)
        return port + " is in use by " + usersOf(port) + "; end that first";
    return port + " does not open: " + std::generic_category().message(error);
}

std::string printable(std::string text)
{
    std::ranges::replace_if(
        text, [](unsigned char character) { return std::isprint(character) == 0; }, '?');
    return text;
}

bool makeRaw(int descriptor)
{
    termios settings{};
    if (tcgetattr(descriptor, &settings) != 0)
        return false;
    cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    settings.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS | CSTOPB);
    return tcsetattr(descriptor, TCSANOW, &settings) == 0;
}

} // namespace

SerialPort::SerialPort(const std::string& port, unsigned baud) : port_(port)
{
    descriptor_ = open(port.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor_ < 0)
        throw MotorLost(whyNotOpened(port, errno));
    // The lock tells another tesmor-drive, also where root could pass TIOCEXCL.
    const bool isOurs = flock(descriptor_, LOCK_EX | LOCK_NB) == 0 && ioctl(descriptor_, TIOCEXCL) == 0;
    if (isOurs && makeRaw(descriptor_) && setSerialSpeed(descriptor_, baud)) {
        tcflush(descriptor_, TCIOFLUSH);
        return;
    }
    const int error = errno;
    close(descriptor_);
    throw MotorLost(error == ENOTTY ? port + " is no serial port; see: tesmor-drive list" : whyNotOpened(port, error));
}

SerialPort::~SerialPort()
{
    ioctl(descriptor_, TIOCNXCL);
    close(descriptor_);
}

void SerialPort::lose(const std::string& what) const
{
    throw MotorLost(port_ + " " + what);
}

void SerialPort::writeLine(const std::string& line)
{
    write(line + "\n");
}

void SerialPort::write(const std::string& text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        pollfd writable{descriptor_, POLLOUT, 0};
        const int ready = poll(&writable, 1, WRITE_LIMIT_MS);
        if (ready == 0)
            lose("takes nothing");
        const ssize_t count = ready < 0 ? -1 : ::write(descriptor_, text.data() + done, text.size() - done);
        if (count > 0)
            done += static_cast<std::size_t>(count);
        else if (errno != EINTR && errno != EAGAIN)
            lose("has gone; is the cable plugged in?");
    }
}

std::optional<std::string> SerialPort::readLine(Clock::time_point deadline)
{
    for (bool isLate = false; !isLate;) { // one last look when it is late already
        if (auto line = takeLine())
            return line;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        isLate = left <= 0;
        pollfd readable{descriptor_, POLLIN, 0};
        const int ready = poll(&readable, 1, static_cast<int>(std::max<long long>(left, 0)));
        if (ready == 0)
            continue;
        std::array<char, 256> buffer{};
        const ssize_t count = ready < 0 ? -1 : read(descriptor_, buffer.data(), buffer.size());
        if (count > 0)
            received_.append(buffer.data(), static_cast<std::size_t>(count));
        else if (count == 0 || (errno != EINTR && errno != EAGAIN))
            lose("has gone; is the cable plugged in?");
        if (received_.size() > LONGEST_LINE && received_.find('\n') == std::string::npos)
            received_.resize(LONGEST_LINE);
    }
    return takeLine();
}

std::optional<std::string> SerialPort::takeLine()
{
    for (std::size_t end; (end = received_.find_first_of("\r\n")) != std::string::npos;) {
        std::string line = received_.substr(0, end);
        received_.erase(0, end + 1);
        const std::size_t first = line.find_first_not_of(" \t");
        if (first == std::string::npos)
            continue;
        return printable(line.substr(first, line.find_last_not_of(" \t") - first + 1));
    }
    return std::nullopt;
}

std::string SerialPort::rest() const
{
    return printable(received_);
}

} // namespace tesmor::drive
