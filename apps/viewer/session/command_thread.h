// SPDX-License-Identifier: GPL-2.0-or-later
// Runs what may block on a thread of its own, one after another, so that the thread that asks for it never waits.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace tesmor::apps {

class CommandThread {
public:
    CommandThread();

    // Waits for everything that was posted to be done.
    ~CommandThread();
    CommandThread(const CommandThread&) = delete;
    CommandThread& operator=(const CommandThread&) = delete;

    // Returns at once. From any thread. A job must not throw.
    void post(std::function<void()> job);

private:
    void run();

    std::mutex mutex_; // guards what follows
    std::condition_variable changed_;
    std::deque<std::function<void()>> jobs_;
    bool ending_ = false;

    std::thread thread_; // the last to be made
};

} // namespace tesmor::apps
