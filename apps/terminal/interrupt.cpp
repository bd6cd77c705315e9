// SPDX-License-Identifier: GPL-2.0-or-later
#include "terminal/interrupt.h"

#include "terminal/errors.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

namespace tesmor::apps {

namespace {

std::atomic<bool> raised{false};
std::atomic<bool> guarded{false};
static_assert(std::atomic<bool>::is_always_lock_free, "used in a signal handler");

extern "C" void handleInterrupt(int)
{
    raised = true;
    if (!guarded)
        leaveInterrupted();
}

void handle(int signal)
{
    if (std::signal(signal, handleInterrupt) == SIG_IGN)
        std::signal(signal, SIG_IGN);
}

} // namespace

void installInterruptHandler()
{
    handle(SIGINT);
    handle(SIGTERM);
}

bool interrupted() noexcept
{
    return raised;
}

void throwIfInterrupted()
{
    if (interrupted())
        throw Interrupted();
}

void leaveInterrupted() noexcept
{
    std::_Exit(STATUS_INTERRUPTED);
}

InterruptGuard::InterruptGuard() noexcept
{
    guarded = true;
}

InterruptGuard::~InterruptGuard()
{
    guarded = false;
}

} // namespace tesmor::apps
