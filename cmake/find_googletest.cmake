# SPDX-License-Identifier: GPL-2.0-or-later
# GTest::gtest and GTest::gtest_main: installed ones, or built from the sources in TESMOR_GOOGLETEST_SOURCE.
set(TESMOR_GOOGLETEST_SOURCE "" CACHE PATH "Folder of GoogleTest's sources; empty: use the installed library")

if(TESMOR_GOOGLETEST_SOURCE)
  set(INSTALL_GTEST OFF)
  add_subdirectory(${TESMOR_GOOGLETEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
else()
  find_package(GTest REQUIRED)
endif()
