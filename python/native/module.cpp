// SPDX-License-Identifier: GPL-2.0-or-later
// tesmor._native: what the Python files of the package build on. It checks nothing that they have checked.
#include "commands.h"
#include "frames.h"
#include "interpreter.h"
#include "microscope.h"
#include "tesmor.h"

#include <pybind11/stl.h>

namespace {

using namespace tesmor::python;

PYBIND11_MODULE(module, m)
{
    m.attr("__name__") = "tesmor._native";
    m.attr("VERSION") = TESMOR_VERSION;
    m.def("require_main_interpreter", requireMainInterpreter);
    m.def("leave_interpreter", leaveInterpreter);
    m.def("forbid_after_fork", forbidAfterFork);

    py::class_<Picture, std::shared_ptr<Picture>>(m, "Picture").def(py::init<const py::array&>());
    py::class_<Command, std::shared_ptr<Command>>(m, "Command")
        .def("wait", &Command::wait)
        .def("percent", &Command::percent)
        .def("take_frames", &Command::takeFrames)
        .def("fused", &Command::fused);

    m.def("start_autofocus", startAutofocus);
    m.def("start_stack", startStack);
    m.def("start_move", startMove);
    m.def("start_capture", startCapture);
    m.def("start_fusion", startFusion);
    m.def("stop", stop);
    m.def("release", release);
    m.def("video", video);
    bindMicroscope(m);
}

} // namespace

// Before pybind11 keeps types of an interpreter that goes before the process does.
extern "C" PYBIND11_EXPORT PyObject* PyInit__native()
{
    if (PyInterpreterState_Get() == PyInterpreterState_Main())
        return PyInit_module();
    PyErr_SetString(PyExc_ImportError, MAIN_INTERPRETER_ONLY);
    return nullptr;
}
