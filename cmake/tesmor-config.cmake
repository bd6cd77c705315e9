# SPDX-License-Identifier: GPL-2.0-or-later
# find_package(tesmor CONFIG): the target tesmor::tesmor.
include(${CMAKE_CURRENT_LIST_DIR}/tesmor-targets.cmake)
