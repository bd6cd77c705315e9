# SPDX-License-Identifier: GPL-2.0-or-later
# The shared object exports the twelve functions and nothing else, and calls nothing that reads the environment, opens a
# file or starts a program.
execute_process(COMMAND ${NM} -D --defined-only --format=just-symbols ${LIBRARY}
                OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" symbols "${symbols}")
list(SORT symbols)
set(expected tesmor_cancelif tesmor_capture tesmor_doing tesmor_fini tesmor_fusion tesmor_init tesmor_manual
             tesmor_reset tesmor_start tesmor_startif tesmor_stop tesmor_video)
if(NOT symbols STREQUAL expected)
  message(FATAL_ERROR "exports: ${symbols}")
endif()

execute_process(COMMAND ${NM} -D --undefined-only --format=just-symbols ${LIBRARY}
                OUTPUT_VARIABLE needed COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n@]+[@\n]" needed "${needed}")
foreach(symbol ${needed})
  if(symbol MATCHES "^(getenv|secure_getenv|environ|__environ|f?open(at)?(64)?|creat|mk(s|d)?temp|tmp(nam|file)|system|popen|exec.*|posix_spawn.*)[@\n]")
    message(FATAL_ERROR "the library calls ${symbol}")
  endif()
endforeach()
