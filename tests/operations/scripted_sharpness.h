// Takes the place of the frame wait: the sharpness is a function of the scripted device's position, and a wait can be
// told to fail.
#pragma once

#include <cstdint>
#include <functional>

namespace tesmor::test {

inline std::function<double(std::int64_t position)> sharpness;
inline std::function<std::int32_t(int wait)> waitResult; // of the first wait, the second, ...
inline int waits;

} // namespace tesmor::test
