# SPDX-License-Identifier: GPL-2.0-or-later
# nodelete: an unload must not pull the code from under a live worker.
target_link_options(tesmor PRIVATE
  LINKER:--version-script=${CMAKE_CURRENT_SOURCE_DIR}/api/exports.map
  LINKER:-z,nodelete)
if(NOT TESMOR_SANITIZERS) # whose symbols come from the program
  target_link_options(tesmor PRIVATE LINKER:-z,defs)
endif()
set_property(TARGET tesmor APPEND PROPERTY LINK_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/api/exports.map)
