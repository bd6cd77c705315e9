// The worker thread: takes one command at a time from the shared block, runs it to its end, reports, goes idle.
#pragma once

#include <cstdint>

namespace tesmor {

// Entry of the worker thread; ends by CMD_QUIT only, with 0. The argument is ignored. An exception from a host's
// callback ends the command that called it and goes no further.
std::uint32_t runWorker(void* argument);

} // namespace tesmor
