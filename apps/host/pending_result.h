// SPDX-License-Identifier: GPL-2.0-or-later
// The result of a command posted to the library: waits for it, and aborts the command on interruption.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>

namespace tesmor::apps {

class PendingResult {
public:
    // From a callback, on any thread.
    void set(std::int32_t result);

    // Within an InterruptGuard, and on the thread that posted.
    //   eachTick   called about twenty times a second meanwhile
    // Returns the result, or, after an interruption, TESMOR_ABORTED. If the library does not end within a second of an
    // interruption, the program ends here with status 130.
    std::int32_t wait(const std::function<void()>& eachTick);

private:
    std::optional<std::int32_t> waitATick();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::optional<std::int32_t> result_;
};

} // namespace tesmor::apps
