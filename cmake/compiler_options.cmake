# SPDX-License-Identifier: GPL-2.0-or-later
# Options of everything that is ours: warnings, exact floating-point arithmetic, sanitizers.
add_library(tesmor_options INTERFACE)

if(MSVC)
  target_compile_options(tesmor_options INTERFACE /W4 /fp:precise $<$<BOOL:${TESMOR_WARNINGS_AS_ERRORS}>:/WX>)
else()
  target_compile_options(tesmor_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wundef -Wconversion -Wno-sign-conversion $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
    # A fused multiply-add or a reordered sum would change the focus measure and the gain, also where a viewer that adds
    # this folder likes its own arithmetic fast.
    -fno-fast-math -ffp-contract=off
    # Nobody reads errno after a square root, and keeping it would keep the loop from vector code.
    -fno-math-errno
    $<$<BOOL:${TESMOR_WARNINGS_AS_ERRORS}>:-Werror>)
endif()

if(TESMOR_SANITIZERS)
  target_compile_options(tesmor_options INTERFACE
    -fsanitize=${TESMOR_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tesmor_options INTERFACE -fsanitize=${TESMOR_SANITIZERS})
endif()
