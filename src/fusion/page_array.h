// SPDX-License-Identifier: GPL-2.0-or-later
// A large array of plain values, for which running out of memory is a result and not an exception.
#pragma once

#include "platform/memory.h"

#include <cstddef>
#include <memory>

namespace tesmor {

struct ReturnPages {
    std::size_t bytes = 0;

    void operator()(void* memory) const noexcept
    {
        platform::returnPages(memory, bytes);
    }
};

template <class T>
using PageArray = std::unique_ptr<T[], ReturnPages>;

// All elements zero, aligned to a page. Null when the memory could not be obtained.
template <class T>
PageArray<T> makePageArray(std::size_t count) noexcept
{
    const std::size_t bytes = count * sizeof(T);
    return PageArray<T>(static_cast<T*>(platform::obtainPages(bytes)), ReturnPages{bytes});
}

} // namespace tesmor
