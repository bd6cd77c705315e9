// SPDX-License-Identifier: GPL-2.0-or-later
// The virtual microscope for Python.
#pragma once

#include <pybind11/pybind11.h>

namespace tesmor::python {

namespace py = pybind11;

void bindMicroscope(py::module_& module);

// For leaveInterpreter, with the GIL, which is released meanwhile: ends all cameras.
void stopMicroscopes();

} // namespace tesmor::python
