// Takes the place of the platform's clock: time can run fast, and sleeps are remembered.
#pragma once

#include <atomic>
#include <cstdint>

namespace tesmor::test {

// How many milliseconds pass for the library in one of ours.
inline std::atomic<std::uint32_t> clockSpeed{1};

} // namespace tesmor::test
