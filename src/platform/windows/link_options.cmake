# SPDX-License-Identifier: GPL-2.0-or-later
# tesmor.dll, whose only other libraries are kernel32, the C runtime and FFTW.
set_target_properties(tesmor PROPERTIES PREFIX "")
target_sources(tesmor PRIVATE api/exports.def)
if(MINGW)
  target_link_options(tesmor PRIVATE -static)
endif()
