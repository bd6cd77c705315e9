// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/thread.h"

#include "platform/event.h"

#include <csignal>
#include <new>

namespace tesmor::platform {

struct NativeThread {
    ThreadEntry entry;
    pthread_t thread{};
    sigset_t creatorSignals{}; // that the creating thread blocks
    Event resumed{Reset::automatic, false};
    bool joined = false;
};

namespace {

// Of a thread of ours; null on any other. Needs no memory, which a thread's first look otherwise may.
[[gnu::tls_model("initial-exec")]] constinit thread_local const sigset_t* creatorSignals = nullptr;

void* runWhenResumed(void* argument)
{
    auto* thread = static_cast<NativeThread*>(argument);
    const ThreadEntry entry = thread->entry;
    const sigset_t signals = thread->creatorSignals;
    creatorSignals = &signals;
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

} // namespace

ThreadHandle createSuspendedThread(ThreadEntry entry) noexcept
{
    auto* thread = new (std::nothrow) NativeThread{entry};
    if (!thread)
        return nullptr;
    const sigset_t blocked = asynchronousSignals();
    pthread_sigmask(SIG_BLOCK, &blocked, &thread->creatorSignals);
    const int failure = pthread_create(&thread->thread, nullptr, runWhenResumed, thread);
    pthread_sigmask(SIG_SETMASK, &thread->creatorSignals, nullptr);
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

CreatorSignals::CreatorSignals() noexcept
{
    if (creatorSignals)
        pthread_sigmask(SIG_SETMASK, creatorSignals, &kept_);
}

CreatorSignals::~CreatorSignals()
{
    if (creatorSignals)
        pthread_sigmask(SIG_SETMASK, &kept_, nullptr);
}

} // namespace tesmor::platform
