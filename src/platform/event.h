// SPDX-License-Identifier: GPL-2.0-or-later
// An event: a signal that one thread sets and another waits for.
#pragma once

#include "native.h"

#include <cstdint>
#include <memory>

namespace tesmor::platform {

enum class Reset {
    automatic, // a wait that succeeds consumes the signal; one waiter is released per set
    manual,    // the signal stays until reset
};

class Event {
public:
    // Does not block. An event that the system could not create is not valid; every wait on it fails.
    Event(Reset reset, bool signalled) noexcept;
    ~Event();
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    // On the heap; null when the system could not create it.
    static std::unique_ptr<Event> create(Reset reset, bool signalled) noexcept;

    bool valid() const noexcept;

    // Sets the signal; it is kept until it is consumed or reset. Does not block. False when the system failed.
    bool set() noexcept;

    // Does not block.
    void reset() noexcept;

    // Blocks until the event is signalled, without limit.
    void wait() noexcept;

    // Blocks until the event is signalled, but at most `milliseconds`, by the monotonic clock. True when it was
    // signalled.
    bool waitFor(std::uint32_t milliseconds) noexcept;

    // The system's event, for the seam's own use.
    NativeEvent& native() noexcept
    {
        return native_;
    }

private:
    NativeEvent native_;
};

} // namespace tesmor::platform
