// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/clock.h"

#include "platform/event.h"

#include <cerrno>
#include <ctime>

namespace tesmor::platform {

namespace {

class SystemClock final : public Clock {
public:
    std::uint32_t tickMilliseconds() noexcept override
    {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return static_cast<std::uint32_t>(static_cast<std::uint64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1'000'000);
    }

    void sleepMilliseconds(std::uint32_t milliseconds) noexcept override
    {
        timespec left{static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1'000'000};
        while (clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR) {
        }
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
