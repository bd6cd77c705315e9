// SPDX-License-Identifier: GPL-2.0-or-later
// Loops over pixels that use what the processor at hand has.
#pragma once

// Before a free function: the compiler makes a copy of it for each generation of x86-64 processors, and the loader
// takes the one that fits. The loops stay plain: the compiler makes vector code of them. The results are the same, bit
// for bit. Nothing where compiler or system cannot do that; src/CMakeLists.txt tries.
#ifdef TESMOR_HAS_CPU_CLONES
#define TESMOR_CPU_CLONES __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define TESMOR_CPU_CLONES
#endif
