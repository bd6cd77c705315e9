// An array on the heap whose elements start as zero, for which running out of memory is a result and not an exception.
#pragma once

#include "platform/memory.h"

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
    ZeroedArray<T> array(static_cast<T*>(std::calloc(count, sizeof(T))));
    platform::preferLargePages(array.get(), count * sizeof(T));
    return array;
}

} // namespace tesmor
