# SPDX-License-Identifier: GPL-2.0-or-later
# FFTW3::fftw3, the double-precision library, from FFTW's own package file where there is one, else from pkg-config.
find_package(FFTW3 CONFIG QUIET)
if(NOT TARGET FFTW3::fftw3)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(fftw3 REQUIRED IMPORTED_TARGET fftw3)
  add_library(FFTW3::fftw3 ALIAS PkgConfig::fftw3)
endif()
