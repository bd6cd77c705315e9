// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/clock.h"

#include "platform/event.h"

namespace tesmor::platform {

namespace {

class SystemClock final : public Clock {
public:
    std::uint32_t tickMilliseconds() noexcept override
    {
        return GetTickCount();
    }

    void sleepMilliseconds(std::uint32_t milliseconds) noexcept override
    {
        Sleep(milliseconds);
    }

    bool waitFor(Event& event, std::uint32_t milliseconds) noexcept override
    {
        return event.waitFor(milliseconds);
    }
};

constinit SystemClock instance;

} // namespace

Clock& systemClock() noexcept
{
    return instance;
}

} // namespace tesmor::platform
