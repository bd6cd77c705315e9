// Makes one allocation fail: of the library's own, or of those that FFTW makes for itself.
// The link replaces the library's calls (see CMakeLists.txt); starting a thread counts as an allocation, too.
#pragma once

namespace tesmor::test {

enum class Owner { library, fftw };

// As long as it lives, allocation number `failing` of `owner`, counted from 1, fails. One at a time.
class FailingMemory {
public:
    FailingMemory(Owner owner, long failing);
    ~FailingMemory();
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;

    bool hasFailed() const;
    long allocations() const; // of the owner so far
};

} // namespace tesmor::test
