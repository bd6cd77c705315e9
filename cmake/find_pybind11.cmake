# SPDX-License-Identifier: GPL-2.0-or-later
# Sets pybind11_FOUND. The system's Python has the system's NumPy and pybind11; another one may come first in the PATH.
if(NOT DEFINED Python_EXECUTABLE AND EXISTS /usr/bin/python3)
  set(Python_EXECUTABLE /usr/bin/python3)
endif()
set(PYBIND11_FINDPYTHON ON)
find_package(Python 3.9 COMPONENTS Interpreter Development.Module)
if(Python_FOUND)
  find_package(pybind11 2.10 CONFIG)
endif()
