# The shared object exports the twelve functions and nothing else.
execute_process(COMMAND ${NM} -D --defined-only --format=just-symbols ${LIBRARY}
                OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" symbols "${symbols}")
list(SORT symbols)
set(expected tesmor_cancelif tesmor_capture tesmor_doing tesmor_fini tesmor_fusion tesmor_init tesmor_manual
             tesmor_reset tesmor_start tesmor_startif tesmor_stop tesmor_video)
if(NOT symbols STREQUAL expected)
  message(FATAL_ERROR "exports: ${symbols}")
endif()
