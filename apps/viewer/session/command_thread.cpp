// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/command_thread.h"

#include <utility>

namespace tesmor::apps {

CommandThread::CommandThread() : thread_([this] { run(); }) {}

CommandThread::~CommandThread()
{
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        changed_.notify_one();
    }
    thread_.join();
}

void CommandThread::post(std::function<void()> job)
{
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    changed_.notify_one();
}

void CommandThread::run()
{
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return ending_ || !jobs_.empty(); });
        if (jobs_.empty())
            return;
        const std::function<void()> job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        job();
        lock.lock();
    }
}

} // namespace tesmor::apps
