// SPDX-License-Identifier: GPL-2.0-or-later
#include "motors/fake_board.h"

#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace tesmor::test {

namespace fs = std::filesystem;

FakeBoard::FakeBoard(Firmware firmware, std::function<void(std::int64_t)> onPosition)
    : firmware_(firmware), onPosition_(std::move(onPosition)),
      link_(fs::temp_directory_path() / ("tesmor-board-" + std::to_string(getpid())))
{
    plugIn();
    thread_ = std::thread([this] { play(); });
}

FakeBoard::~FakeBoard()
{
    stop_ = true;
    thread_.join();
    unplug();
}

std::string FakeBoard::port() const
{
    return link_;
}

std::int64_t FakeBoard::position() const
{
    return position_;
}

int FakeBoard::turns() const
{
    return turns_;
}

void FakeBoard::set(BoardFault fault)
{
    fault_ = fault;
}

void FakeBoard::hold(bool held)
{
    held_ = held;
}

void FakeBoard::plugIn()
{
    terminal_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    grantpt(terminal_);
    unlockpt(terminal_);
    termios settings{};
    tcgetattr(terminal_, &settings);
    cfmakeraw(&settings); // no echo of what it says before anybody listens
    tcsetattr(terminal_, TCSANOW, &settings);
    fs::remove(link_);
    fs::create_symlink(ptsname(terminal_), link_);
}

void FakeBoard::unplug()
{
    close(terminal_);
    terminal_ = -1;
    fs::remove(link_);
}

void FakeBoard::say(const std::string& text) const
{
    if (write(terminal_, text.data(), text.size()) < 0)
        return; // nobody has it open
}

void FakeBoard::greet() const
{
    say(firmware_ == Firmware::grbl     ? "\r\nGrbl 1.1h ['$' for help]\r\n"
        : firmware_ == Firmware::marlin ? "start\necho:Marlin\n"
                                        : "Sangaboard Firmware v0.5\n");
}

void FakeBoard::play()
{
    while (!stop_) {
        if (fault_ == BoardFault::none) {
            if (terminal_ < 0)
                plugIn();
            dumb_ = false;
        }
        pollfd readable{terminal_, POLLIN, 0};
        poll(&readable, 1, 1);
        if ((readable.revents & POLLIN) != 0) {
            char character = 0;
            if (read(terminal_, &character, 1) != 1 || dumb_)
                continue;
            greeted_ = true;
            if (character == '?' && firmware_ == Firmware::grbl)
                say(moves_ ? "<Run|MPos:0,0,0>\r\n" : "<Idle|MPos:0,0,0>\r\n");
            else if (character == '\n')
                take(std::exchange(heard_, {}));
            else
                heard_ += character;
        } else if ((readable.revents & POLLHUP) != 0) {
            greeted_ = moves_ = waits_ = false; // begins anew when it is opened
            poll(nullptr, 0, 1);
        } else if (!greeted_ && !dumb_) {
            greet();
        }
        if (moves_ && (fault_ == BoardFault::unplug || fault_ == BoardFault::beginAnew))
            breakMove();
        if (moves_ && !held_)
            endMove();
    }
}

void FakeBoard::endMove()
{
    moves_ = false;
    position_ = std::llround(target_);
    ++turns_;
    if (onPosition_)
        onPosition_(position_);
    if (std::exchange(waits_, false))
        say(firmware_ == Firmware::sangaboard ? "done.\n" : "ok\n");
}

void FakeBoard::breakMove()
{
    moves_ = waits_ = greeted_ = false;
    heard_.clear();
    if (fault_ == BoardFault::unplug)
        unplug();
    else
        greet();
}

void FakeBoard::begin(double steps)
{
    if (fault_ == BoardFault::refuse) {
        say(firmware_ == Firmware::grbl ? "error:9\r\n" : "Error:stopped\n");
        return;
    }
    dumb_ = fault_ == BoardFault::silent || fault_ == BoardFault::halfALine || fault_ == BoardFault::rubbish;
    if (fault_ == BoardFault::halfALine)
        say("o");
    if (fault_ == BoardFault::rubbish)
        say("\xff\xfe\x01#%&\n\x80\x81\n");
    if (dumb_)
        return;
    waits_ = firmware_ == Firmware::sangaboard;
    if (!waits_)
        say("ok\n");
    target_ += steps;
    moves_ = true;
}

void FakeBoard::take(const std::string& line)
{
    if (line == "$I" && firmware_ == Firmware::grbl)
        say("[VER:1.1h.20190825:]\r\n[OPT:V,15,128]\r\nok\r\n");
    else if (line == "version")
        say("Sangaboard Firmware v0.5\n");
    else if (line.starts_with("G1 Z"))
        begin(std::strtod(line.c_str() + 4, nullptr) * STEPS_PER_MM);
    else if (line.starts_with("mrz "))
        begin(std::strtod(line.c_str() + 4, nullptr));
    else if (line == (firmware_ == Firmware::grbl ? "G4 P0" : "M400") && moves_)
        waits_ = true;
    else
        say("ok\n");
}

} // namespace tesmor::test
