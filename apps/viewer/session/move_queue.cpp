// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/move_queue.h"

#include "host/focus_units.h"

#include <algorithm>
#include <cstdlib>

namespace tesmor::apps {

namespace {

constexpr int MOST_ASKED = 10 * LARGEST_MOVE; // some fifty turns of the focus
constexpr int MOST_HELD_MOVES = 8;            // a move cannot be stopped, so one for a held key is short

} // namespace

void MoveQueue::add(int steps)
{
    asked_ = std::clamp(asked_ + steps, -MOST_ASKED, MOST_ASKED);
}

void MoveQueue::addHeld(int steps)
{
    const int most = MOST_HELD_MOVES * std::abs(steps);
    held_ = std::clamp(held_ + steps, -most, most);
}

void MoveQueue::letGo()
{
    held_ = 0;
}

int MoveQueue::take()
{
    const int all = asked_ + held_;
    const int steps = std::clamp(all, -LARGEST_MOVE, LARGEST_MOVE);
    asked_ = all - steps;
    held_ = 0;
    return steps;
}

void MoveQueue::clear()
{
    *this = {};
}

} // namespace tesmor::apps
