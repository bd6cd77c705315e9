#include "platform/clock.h"

#include "native.h"

namespace tesmor::platform {

std::uint32_t tickMilliseconds() noexcept
{
    return GetTickCount();
}

void sleepMilliseconds(std::uint32_t milliseconds) noexcept
{
    Sleep(milliseconds);
}

} // namespace tesmor::platform
