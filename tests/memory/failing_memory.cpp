#include "memory/failing_memory.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <new>
#include <pthread.h>

namespace tesmor::test {

namespace {

std::atomic<bool> watching{false};
Owner watched;
long failingAllocation;
std::atomic<long> allocationCount;

// Inside the library's own call of fftw_malloc.
thread_local bool isOwnCall = false;

bool fails(Owner owner)
{
    return watching && watched == owner && ++allocationCount == failingAllocation;
}

} // namespace

FailingMemory::FailingMemory(Owner owner, long failing)
{
    watched = owner;
    failingAllocation = failing;
    allocationCount = 0;
    watching = true;
}

FailingMemory::~FailingMemory()
{
    watching = false;
}

bool FailingMemory::hasFailed() const
{
    return allocationCount >= failingAllocation;
}

long FailingMemory::allocations() const
{
    return allocationCount;
}

} // namespace tesmor::test

using tesmor::test::fails;
using tesmor::test::isOwnCall;
using tesmor::test::Owner;

extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_fftw_malloc(std::size_t size);
void* __real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept;
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument);

void* __wrap_malloc(std::size_t size)
{
    return fails(Owner::library) ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size)
{
    return fails(Owner::library) ? nullptr : __real_calloc(count, size);
}

void* __wrap_fftw_malloc(std::size_t size)
{
    if (fails(Owner::library))
        return nullptr;
    isOwnCall = true;
    void* memory = __real_fftw_malloc(size);
    isOwnCall = false;
    return memory;
}

void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept
{
    return fails(Owner::library) ? nullptr : __real__ZnwmRKSt9nothrow_t(size, tag);
}

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument)
{
    return fails(Owner::library) ? EAGAIN : __real_pthread_create(thread, attributes, run, argument);
}

// FFTW calls this one wherever it needs memory; the program's takes the place of its own.
__attribute__((visibility("default"))) void* fftw_kernel_malloc(std::size_t size)
{
    using Allocate = void* (*)(std::size_t);
    static const auto allocate = reinterpret_cast<Allocate>(dlsym(RTLD_NEXT, "fftw_kernel_malloc"));
    return !isOwnCall && fails(Owner::fftw) ? nullptr : allocate(size);
}

} // extern "C"
