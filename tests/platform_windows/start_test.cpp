// SPDX-License-Identifier: GPL-2.0-or-later
// A worker thread that the system creates and then will not resume.
#include "support/library_test.h"

#include <windows.h>

namespace tesmor::test {
namespace {

bool resumeFails = false;

DWORD WINAPI resume(HANDLE thread)
{
    const auto function = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "ResumeThread"));
    return resumeFails ? static_cast<DWORD>(-1) : reinterpret_cast<decltype(&ResumeThread)>(function)(thread);
}

class StartTest : public LibraryTest {};

TEST_F(StartTest, ThatFailsLeavesNothingToWaitFor)
{
    resumeFails = true;
    EXPECT_EQ(tesmor_init(), 0);
    resumeFails = false;
    EXPECT_NE(tesmor_fini(), 0);
}

} // namespace
} // namespace tesmor::test

// What a call of the system's function goes through.
extern "C" decltype(&ResumeThread) __imp_ResumeThread;
decltype(&ResumeThread) __imp_ResumeThread = tesmor::test::resume;
