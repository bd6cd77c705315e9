#include "support/scripted_clock.h"

#include "platform/clock.h"
#include "support/scripted_device.h"

#include <chrono>

namespace tesmor::platform {

std::uint32_t tickMilliseconds() noexcept
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    return static_cast<std::uint32_t>(milliseconds) * test::clockSpeed;
}

void sleepMilliseconds(std::uint32_t milliseconds) noexcept
{
    test::device.sleep(milliseconds);
}

} // namespace tesmor::platform
