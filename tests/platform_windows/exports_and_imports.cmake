# SPDX-License-Identifier: GPL-2.0-or-later
# The DLL exports the twelve functions under their ordinals and nothing else, and needs kernel32, the C runtime and FFTW
# only.
execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)

string(REGEX MATCH "Ordinal Base[ \t]+1\n" base "${headers}")
string(REGEX MATCHALL "\\[ *[0-9]+\\] tesmor_[a-z]+" exports "${headers}")
string(REPLACE " " "" exports "${exports}")
set(expected
  [0]tesmor_cancelif [1]tesmor_capture [2]tesmor_doing [3]tesmor_fini [4]tesmor_fusion [5]tesmor_init [6]tesmor_manual
  [7]tesmor_reset [8]tesmor_start [9]tesmor_startif [10]tesmor_stop [11]tesmor_video)
string(REGEX MATCH "Export Address Table[ \t]+0000000c" count "${headers}")
if(NOT base OR NOT count OR NOT "${exports}" STREQUAL "${expected}")
  message(FATAL_ERROR "exports: ${exports}")
endif()

string(REGEX MATCHALL "DLL Name: [^\n]+" imports "${headers}")
list(TRANSFORM imports REPLACE "DLL Name: " "")
list(TRANSFORM imports TOLOWER)
list(SORT imports)
if(NOT "${imports}" MATCHES "^kernel32\\.dll;libfftw3-3\\.dll;(msvcrt|ucrtbase)\\.dll$")
  message(FATAL_ERROR "imports: ${imports}")
endif()
