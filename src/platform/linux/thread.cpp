#include "platform/thread.h"

#include "platform/event.h"

#include <cerrno>
#include <csignal>
#include <new>
#include <sched.h>
#include <sys/resource.h>

namespace tesmor::platform {

struct NativeThread {
    ThreadEntry entry;
    pthread_t thread{};
    Event resumed{Reset::automatic, false};
    bool joined = false;
};

namespace {

void* runWhenResumed(void* argument)
{
    auto* thread = static_cast<NativeThread*>(argument);
    const ThreadEntry entry = thread->entry;
    thread->resumed.wait();
    entry(nullptr);
    return nullptr;
}

// Signals that a fault of the thread itself raises must stay deliverable to it.
sigset_t asynchronousSignals() noexcept
{
    sigset_t signals;
    sigfillset(&signals);
    for (int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT, SIGPROF})
        sigdelset(&signals, fault);
    return signals;
}

constexpr id_t CALLING_THREAD = 0;
constexpr int HIGHEST_PRIORITY_NICE = -20;

// Leaving SCHED_IDLE takes the right to lower the nice value. Whoever may raise the thread by one step has it, and
// going back down by one step is always allowed. A process without any such right finds out without having lost
// anything.
bool mayReturnFromIdle() noexcept
{
    errno = 0;
    const int nice = getpriority(PRIO_PROCESS, CALLING_THREAD);
    if (errno != 0 || nice <= HIGHEST_PRIORITY_NICE)
        return false;
    if (setpriority(PRIO_PROCESS, CALLING_THREAD, nice - 1) != 0)
        return false;
    setpriority(PRIO_PROCESS, CALLING_THREAD, nice);
    return true;
}

bool setPolicy(int policy) noexcept
{
    const sched_param parameters{};
    return sched_setscheduler(0, policy, &parameters) == 0;
}

} // namespace

ThreadHandle createSuspendedThread(ThreadEntry entry) noexcept
{
    auto* thread = new (std::nothrow) NativeThread{entry};
    if (!thread)
        return nullptr;
    const sigset_t blocked = asynchronousSignals();
    sigset_t kept;
    pthread_sigmask(SIG_BLOCK, &blocked, &kept);
    const int failure = pthread_create(&thread->thread, nullptr, runWhenResumed, thread);
    pthread_sigmask(SIG_SETMASK, &kept, nullptr);
    if (failure) {
        delete thread;
        return nullptr;
    }
    return thread;
}

std::int32_t resumeThread(ThreadHandle thread) noexcept
{
    return thread->resumed.set() ? 1 : 0;
}

void waitForThread(ThreadHandle thread) noexcept
{
    thread->joined = pthread_join(thread->thread, nullptr) == 0;
}

std::int32_t closeThread(ThreadHandle thread) noexcept
{
    const bool closed = thread->joined || pthread_detach(thread->thread) == 0;
    delete thread;
    return closed ? 1 : 0;
}

IdlePriority::IdlePriority() noexcept : kept_{false, sched_getscheduler(0)}
{
    if (kept_.policy == SCHED_OTHER)
        kept_.lowered = setPolicy(mayReturnFromIdle() ? SCHED_IDLE : SCHED_BATCH);
}

IdlePriority::~IdlePriority()
{
    if (kept_.lowered)
        setPolicy(kept_.policy);
}

} // namespace tesmor::platform
