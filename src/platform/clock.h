// Time that only moves forward.
#pragma once

#include <cstdint>

namespace tesmor::platform {

// Milliseconds since some moment; wraps after 49.7 days, so differences are taken unsigned. Does not block.
std::uint32_t tickMilliseconds() noexcept;

// Blocks for at least `milliseconds`; a signal does not cut it short.
void sleepMilliseconds(std::uint32_t milliseconds) noexcept;

} // namespace tesmor::platform
