#include "memory/failing_memory.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <pthread.h>

namespace tesmor::test {

namespace {

std::atomic<bool> watching{false};
long failingAllocation;
std::atomic<long> allocationCount;

bool fails()
{
    return watching && ++allocationCount == failingAllocation;
}

} // namespace

FailingMemory::FailingMemory(long failing)
{
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

} // namespace tesmor::test

using tesmor::test::fails;

extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_fftw_malloc(std::size_t size);
void* __real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept;
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument);

void* __wrap_malloc(std::size_t size)
{
    return fails() ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size)
{
    return fails() ? nullptr : __real_calloc(count, size);
}

void* __wrap_fftw_malloc(std::size_t size)
{
    return fails() ? nullptr : __real_fftw_malloc(size);
}

void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept
{
    return fails() ? nullptr : __real__ZnwmRKSt9nothrow_t(size, tag);
}

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument)
{
    return fails() ? EAGAIN : __real_pthread_create(thread, attributes, run, argument);
}

} // extern "C"
