// Waits for the end of a command that the library was given, and ends it on interruption.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>

namespace tesmor::apps {

// A command's result code on its way from a callback of the library to the thread that waits.
class CommandResult {
public:
    // From a callback, on any thread.
    void set(std::int32_t result);

    // None when 50 ms went by without it.
    std::optional<std::int32_t> waitATick();

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::optional<std::int32_t> result_;
};

// Within an InterruptGuard, and on the thread that posted.
//   eachTick   called about twenty times a second meanwhile
// Returns the result, or, after an interruption, TESMOR_ABORTED. When the library does not end within a second of an
// interruption, it is not waited for: the program ends here with status 130.
std::int32_t waitForResult(CommandResult& result, const std::function<void()>& eachTick);

} // namespace tesmor::apps
