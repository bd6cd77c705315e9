// Runs the load-time set-up when the shared object is loaded.
#include "api/library.h"

#include <dlfcn.h>

namespace {

__attribute__((constructor)) void attach()
{
    Dl_info self{};
    dladdr(reinterpret_cast<void*>(&attach), &self);
    tesmor::setUpLibrary(self.dli_fbase);
}

} // namespace
