// SPDX-License-Identifier: GPL-2.0-or-later
#include "host/pending_result.h"

#include "terminal/interrupt.h"
#include "tesmor.h"

#include <chrono>
#include <thread>

namespace tesmor::apps {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto TICK = 50ms; // between two checks for an interruption
constexpr auto PATIENCE = 500ms;

// Aborts the running command on a separate thread, since tesmor_cancelif waits for it to end.
class Cancellation {
public:
    ~Cancellation()
    {
        if (thread_.joinable())
            thread_.join();
    }

    void startOrGiveUp()
    {
        if (!thread_.joinable()) {
            giveUpTime_ = Clock::now() + PATIENCE;
            thread_ = std::thread(tesmor_cancelif);
        } else if (Clock::now() > giveUpTime_) {
            leaveInterrupted();
        }
    }

private:
    std::thread thread_;
    Clock::time_point giveUpTime_;
};

} // namespace

void PendingResult::set(std::int32_t result)
{
    const std::lock_guard lock(mutex_);
    result_ = result;
    changed_.notify_one();
}

std::optional<std::int32_t> PendingResult::waitATick()
{
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, TICK, [this] { return result_.has_value(); });
    return result_;
}

std::int32_t PendingResult::wait(const std::function<void()>& eachTick)
{
    Cancellation cancellation;
    while (true) {
        if (const auto code = waitATick())
            return interrupted() ? TESMOR_ABORTED : *code;
        eachTick();
        if (interrupted())
            cancellation.startOrGiveUp();
    }
}

} // namespace tesmor::apps
