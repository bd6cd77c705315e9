// SPDX-License-Identifier: GPL-2.0-or-later
// The other end of a pseudo terminal, playing a motor board: GRBL, Marlin or a Sangaboard, with one switch for each
// fault.
#pragma once

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <poll.h>
#include <string>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tesmor::test {

enum class Firmware { grbl, marlin, sangaboard };

// What the board does when it is told to move, or, the last two, while it moves; and from then on until the fault is
// taken back.
enum class BoardFault { none, refuse, silent, halfALine, rubbish, beginAnew, unplug };

class FakeBoard {
public:
    static constexpr double STEPS_PER_MM = 3200;

    explicit FakeBoard(Firmware firmware, std::function<void(std::int64_t)> onPosition = {})
        : firmware_(firmware), onPosition_(std::move(onPosition)),
          link_(std::filesystem::temp_directory_path() / ("tesmor-board-" + std::to_string(getpid())))
    {
        plugIn();
        thread_ = std::thread([this] { play(); });
    }

    ~FakeBoard()
    {
        stop_ = true;
        thread_.join();
        unplug();
    }

    // The same after it was plugged in anew
    std::string port() const
    {
        return link_;
    }

    std::int64_t position() const
    {
        return position_;
    }

    // How often its motor has turned
    int turns() const
    {
        return turns_;
    }

    // None: plugs it in anew, too
    void set(BoardFault fault)
    {
        fault_ = fault;
    }

    // A motor that is held does not come to the end of its move
    void hold(bool held)
    {
        held_ = held;
    }

private:
    void plugIn()
    {
        terminal_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        grantpt(terminal_);
        unlockpt(terminal_);
        termios settings{};
        tcgetattr(terminal_, &settings);
        cfmakeraw(&settings); // no echo of what it says before anybody listens
        tcsetattr(terminal_, TCSANOW, &settings);
        std::filesystem::remove(link_);
        std::filesystem::create_symlink(ptsname(terminal_), link_);
    }

    void unplug()
    {
        close(terminal_);
        terminal_ = -1;
        std::filesystem::remove(link_);
    }

    void play()
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

    void take(const std::string& line)
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

    void begin(double steps)
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

    void breakMove()
    {
        moves_ = waits_ = greeted_ = false;
        heard_.clear();
        if (fault_ == BoardFault::unplug)
            unplug();
        else
            greet();
    }

    void endMove()
    {
        moves_ = false;
        position_ = std::llround(target_);
        ++turns_;
        if (onPosition_)
            onPosition_(position_);
        if (std::exchange(waits_, false))
            say(firmware_ == Firmware::sangaboard ? "done.\n" : "ok\n");
    }

    void greet() const
    {
        say(firmware_ == Firmware::grbl     ? "\r\nGrbl 1.1h ['$' for help]\r\n"
            : firmware_ == Firmware::marlin ? "start\necho:Marlin\n"
                                            : "Sangaboard Firmware v0.5\n");
    }

    void say(const std::string& text) const
    {
        if (write(terminal_, text.data(), text.size()) < 0)
            return; // nobody has it open
    }

    const Firmware firmware_;
    const std::function<void(std::int64_t)> onPosition_;
    const std::string link_;
    std::atomic<BoardFault> fault_{BoardFault::none};
    std::atomic<bool> held_{false};
    std::atomic<bool> stop_{false};
    std::atomic<std::int64_t> position_{0};
    std::atomic<int> turns_{0};

    // Of the playing thread:
    int terminal_ = -1;
    bool greeted_ = false; // it was spoken to since it was opened
    bool dumb_ = false;
    bool waits_ = false; // for the end of the move in hand, to say so
    bool moves_ = false;
    double target_ = 0; // steps
    std::string heard_;
    std::thread thread_;
};

} // namespace tesmor::test
