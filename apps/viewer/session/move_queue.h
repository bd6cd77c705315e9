// SPDX-License-Identifier: GPL-2.0-or-later
// Moves that the user asked for and the motor has not begun. They add up to one, so the focus never lags behind by more
// than a move; what a held key asked for is forgotten when it is let go.
#pragma once

namespace tesmor::apps {

class MoveQueue {
public:
    // Motor steps, signed: a click, a turn of the wheel, a key pressed.
    void add(int steps);

    // A key that repeats because it is held.
    void addHeld(int steps);

    // The key was let go.
    void letGo();

    // All that is asked for as one move, at most LARGEST_MOVE; what is beyond stays. 0: nothing.
    int take();

    void clear();

    bool isEmpty() const
    {
        return asked_ == 0 && held_ == 0;
    }

private:
    int asked_ = 0;
    int held_ = 0;
};

} // namespace tesmor::apps
