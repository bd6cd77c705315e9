// An array on the heap whose elements start as zero, for which running out of memory is a result and not an exception.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace tesmor {

struct FreeMemory {
    void operator()(void* memory) const noexcept
    {
        std::free(memory);
    }
};

template <class T>
using ZeroedArray = std::unique_ptr<T[], FreeMemory>;

// Null when the memory could not be obtained.
template <class T>
ZeroedArray<T> makeZeroedArray(std::size_t count) noexcept
{
    return ZeroedArray<T>(static_cast<T*>(std::calloc(count, sizeof(T))));
}

} // namespace tesmor
