// SPDX-License-Identifier: GPL-2.0-or-later
// The other end of a pseudo terminal, playing a motor board: GRBL, Marlin or a Sangaboard, with one switch for each
// fault.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace tesmor::test {

enum class Firmware { grbl, marlin, sangaboard };

// What the board does when it is told to move, or, the last two, while it moves; and from then on until the fault is
// taken back.
enum class BoardFault { none, refuse, silent, halfALine, rubbish, beginAnew, unplug };

class FakeBoard {
public:
    static constexpr double STEPS_PER_MM = 3200;

    explicit FakeBoard(Firmware firmware, std::function<void(std::int64_t)> onPosition = {});
    ~FakeBoard();

    std::string port() const; // the same after it was plugged in anew
    std::int64_t position() const;
    int turns() const; // how often its motor has turned

    void set(BoardFault fault); // none: plugs it in anew, too
    void hold(bool held);       // a motor that is held does not come to the end of its move

private:
    void plugIn();
    void unplug();
    void play();
    void take(const std::string& line);
    void begin(double steps);
    void breakMove();
    void endMove();
    void greet() const;
    void say(const std::string& text) const;

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
