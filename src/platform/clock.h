// SPDX-License-Identifier: GPL-2.0-or-later
// Time that only moves forward. An interface, so that whoever waits can be handed another clock than the system's.
#pragma once

#include <cstdint>

namespace tesmor::platform {

class Event;

class Clock {
public:
    // Milliseconds since some moment; wraps after 49.7 days, so differences are taken unsigned. Does not block.
    virtual std::uint32_t tickMilliseconds() noexcept = 0;

    // Blocks for at least `milliseconds`; a signal does not cut it short.
    virtual void sleepMilliseconds(std::uint32_t milliseconds) noexcept = 0;

    // Blocks until the event is signalled, but at most `milliseconds`. True when it was signalled.
    virtual bool waitFor(Event& event, std::uint32_t milliseconds) noexcept = 0;

protected:
    ~Clock() = default;
};

Clock& systemClock() noexcept;

} // namespace tesmor::platform
