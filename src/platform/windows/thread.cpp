// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/thread.h"

#include <process.h>

namespace tesmor::platform {

namespace {

constexpr DWORD RESUME_FAILED = static_cast<DWORD>(-1);

unsigned __stdcall runEntry(void* entry)
{
    return reinterpret_cast<ThreadEntry>(entry)(nullptr);
}

} // namespace

// The runtime library's start, not CreateThread, so that the thread has the runtime's state of its own.
ThreadHandle createSuspendedThread(ThreadEntry entry) noexcept
{
    void* const argument = reinterpret_cast<void*>(entry);
    return reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, runEntry, argument, CREATE_SUSPENDED, nullptr));
}

std::int32_t resumeThread(ThreadHandle thread) noexcept
{
    const DWORD suspensions = ResumeThread(thread);
    if (suspensions != RESUME_FAILED)
        return static_cast<std::int32_t>(suspensions);
    TerminateThread(thread, 0); // safe for a thread that holds nothing yet
    CloseHandle(thread);
    return 0;
}

void waitForThread(ThreadHandle thread) noexcept
{
    WaitForSingleObject(thread, INFINITE);
}

std::int32_t closeThread(ThreadHandle thread) noexcept
{
    return CloseHandle(thread);
}

CreatorSignals::CreatorSignals() noexcept = default;

CreatorSignals::~CreatorSignals() = default;

} // namespace tesmor::platform
