// Makes one of the library's own allocations fail.
// The link replaces the library's calls (see CMakeLists.txt); starting a thread counts as an allocation, too.
#pragma once

namespace tesmor::test {

// As long as it lives, allocation number `failing`, counted from 1, fails. One at a time.
class FailingMemory {
public:
    explicit FailingMemory(long failing);
    ~FailingMemory();
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;

    bool hasFailed() const;
};

} // namespace tesmor::test
