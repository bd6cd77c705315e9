// Ctrl-C and the request to terminate (SIGINT, SIGTERM): how they end the program within a second, leaving no partial
// file.
//
// Outside an InterruptGuard they end the program at once, with status 130. Inside one they only raise a flag, which the
// guarded work looks at.
#pragma once

namespace tesmor::apps {

// The work was ended by an interruption; main() turns it into status 130. Not derived from std::exception, so that nobody
// takes it for a failure.
struct Interrupted {};

// Call once, before any file is written. Signals that were ignored before stay ignored (nohup).
void installInterruptHandler();

bool interrupted() noexcept;

// Throws Interrupted if the flag is up.
void throwIfInterrupted();

// Ends the program with status 130 in the middle of everything: no destructors, no other thread is waited for. Only
// where no temporary file exists.
[[noreturn]] void leaveInterrupted() noexcept;

// One at a time. The flag, once up, stays up: call throwIfInterrupted before the next piece of work.
class InterruptGuard {
public:
    InterruptGuard() noexcept;
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
};

} // namespace tesmor::apps
