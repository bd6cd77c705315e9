// SPDX-License-Identifier: GPL-2.0-or-later
// What the seam's objects are made of on Linux.
#pragma once

#include <csignal>
#include <pthread.h>

namespace tesmor::platform {

using NativeLock = pthread_mutex_t;

struct NativeEvent {
    pthread_mutex_t mutex;
    pthread_cond_t changed;
    bool automatic;
    bool signalled;
};

struct NativeThread;

using NativeSignals = sigset_t;

struct NativePriority {
    int policy;
    int inheritance; // SCHED_RESET_ON_FORK or 0; only some processes may take it back
    int priority;    // of SCHED_FIFO and SCHED_RR, else 0
    bool lowered;
};

// The library's own module, as the loader knows it.
using ModuleHandle = void*;

} // namespace tesmor::platform
