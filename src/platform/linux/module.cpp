// SPDX-License-Identifier: GPL-2.0-or-later
// Runs the load-time set-up when the shared object is loaded.
#include "platform/module.h"

#include <dlfcn.h>

namespace {

__attribute__((constructor)) void attach()
{
    Dl_info self{};
    dladdr(reinterpret_cast<void*>(&attach), &self);
    tesmor::platform::onLoad(self.dli_fbase);
}

} // namespace
