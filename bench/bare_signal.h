// SPDX-License-Identifier: GPL-2.0-or-later
// What one thread leaves for another, with nothing around it: the floor of every hand-over.
#pragma once

#include <condition_variable>
#include <mutex>

namespace tesmor::bench {

class BareSignal {
public:
    void set()
    {
        {
            std::lock_guard guard(mutex_);
            set_ = true;
        }
        changed_.notify_one();
    }

    void wait()
    {
        std::unique_lock guard(mutex_);
        changed_.wait(guard, [this] { return set_; });
        set_ = false;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool set_ = false;
};

} // namespace tesmor::bench
