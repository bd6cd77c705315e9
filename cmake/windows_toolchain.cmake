# SPDX-License-Identifier: GPL-2.0-or-later
# Cross-builds for 64-bit Windows with Debian's MinGW-w64; programs run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static) # no runtime DLLs beside the programs

# FFTW_ROOT: where tools/windows/build_fftw has put FFTW.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES FFTW_ROOT)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${FFTW_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${FFTW_ROOT}/lib/pkgconfig)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/windows/run_in_wine)
