// SPDX-License-Identifier: GPL-2.0-or-later
// Ctrl-C and the request to terminate (SIGINT, SIGTERM): they end the program within a second and leave no partial
// file.
//
// Outside an InterruptGuard they end the program at once, with status 130. Inside one they only raise a flag, which the
// guarded code checks.
#pragma once

namespace tesmor::apps {

// The program was interrupted; runCommand() turns this into status 130. Not derived from std::exception, so that no
// handler mistakes it for a failure.
struct Interrupted {};

// Call once, before any file is written. Signals that were ignored before stay ignored (nohup).
void installInterruptHandler();

bool interrupted() noexcept;

// Throws Interrupted if the flag is raised.
void throwIfInterrupted();

// Ends the program on the spot with status 130: runs no destructors and waits for no thread. Only where no temporary
// file exists.
[[noreturn]] void leaveInterrupted() noexcept;

// One at a time. The flag stays raised: call throwIfInterrupted before the next task.
class InterruptGuard {
public:
    InterruptGuard() noexcept;
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
};

} // namespace tesmor::apps
