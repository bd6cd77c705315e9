// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/event.h"

#include <cerrno>
#include <ctime>
#include <new>

namespace tesmor::platform {

namespace {

class MutexGuard {
public:
    explicit MutexGuard(pthread_mutex_t& mutex) noexcept : mutex_(mutex)
    {
        pthread_mutex_lock(&mutex_);
    }
    ~MutexGuard()
    {
        pthread_mutex_unlock(&mutex_);
    }
    MutexGuard(const MutexGuard&) = delete;
    MutexGuard& operator=(const MutexGuard&) = delete;

private:
    pthread_mutex_t& mutex_;
};

timespec monotonicTimeIn(std::uint32_t milliseconds) noexcept
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    time.tv_sec += milliseconds / 1000;
    time.tv_nsec += static_cast<long>(milliseconds % 1000) * 1'000'000;
    if (time.tv_nsec >= 1'000'000'000) {
        time.tv_nsec -= 1'000'000'000;
        time.tv_sec += 1;
    }
    return time;
}

} // namespace

Event::Event(Reset reset, bool signalled) noexcept
    : native_{PTHREAD_MUTEX_INITIALIZER, {}, reset == Reset::automatic, signalled}
{
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&native_.changed, &attributes);
    pthread_condattr_destroy(&attributes);
}

Event::~Event()
{
    pthread_cond_destroy(&native_.changed);
    pthread_mutex_destroy(&native_.mutex);
}

std::unique_ptr<Event> Event::create(Reset reset, bool signalled) noexcept
{
    return std::unique_ptr<Event>(new (std::nothrow) Event(reset, signalled));
}

bool Event::valid() const noexcept
{
    return true;
}

bool Event::set() noexcept
{
    {
        MutexGuard guard(native_.mutex);
        native_.signalled = true;
    }
    // Not under the mutex, on which a woken thread would stop again.
    if (native_.automatic)
        pthread_cond_signal(&native_.changed);
    else
        pthread_cond_broadcast(&native_.changed);
    return true;
}

void Event::reset() noexcept
{
    MutexGuard guard(native_.mutex);
    native_.signalled = false;
}

void Event::wait() noexcept
{
    MutexGuard guard(native_.mutex);
    while (!native_.signalled)
        pthread_cond_wait(&native_.changed, &native_.mutex);
    native_.signalled = !native_.automatic;
}

bool Event::waitFor(std::uint32_t milliseconds) noexcept
{
    const timespec deadline = monotonicTimeIn(milliseconds);
    MutexGuard guard(native_.mutex);
    while (!native_.signalled) {
        if (pthread_cond_timedwait(&native_.changed, &native_.mutex, &deadline) == ETIMEDOUT)
            break;
    }
    const bool signalled = native_.signalled;
    if (signalled && native_.automatic)
        native_.signalled = false;
    return signalled;
}

} // namespace tesmor::platform
