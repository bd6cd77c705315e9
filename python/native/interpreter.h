// SPDX-License-Identifier: GPL-2.0-or-later
// How this module lives with the interpreter: who holds the GIL, and the order in which things end.
//
// No function of this module runs Python code while it waits, and no thread of the library ever enters the interpreter:
// callbacks leave their reports in Command, and Python asks for them. The one thread that does enter is the virtual
// microscope's camera, which is joined before the interpreter ends.
#pragma once

#include <pybind11/pybind11.h>

namespace tesmor::python {

namespace py = pybind11;

// Gives the GIL to others as long as it lives. A thread that comes back for the GIL after the interpreter has ended
// would be killed in the middle of C++ code, so leaveInterpreter() waits until nobody is inside one. Throws
// std::runtime_error when the module can no longer be used.
class GilReleased {
public:
    GilReleased();
    ~GilReleased();
    GilReleased(const GilReleased&) = delete;
    GilReleased& operator=(const GilReleased&) = delete;

private:
    PyThreadState* state_;
};

// Whether the module can be used: the interpreter is not ending, and this process was not made by fork. With the GIL.
bool isUsable();

// With the GIL. Throws what GilReleased throws.
void requireUsable();

// Throws ImportError in any interpreter but the process's first: library and worker are one for the whole process.
inline constexpr const char* MAIN_INTERPRETER_ONLY =
    "tesmor works in the main interpreter only, not in a sub-interpreter; use processes instead";
void requireMainInterpreter();

// At the interpreter's exit, on its main thread: no new call, no command, no worker, no camera from now on.
void leaveInterpreter();

// In a child made by fork, which must not use the library.
void forbidAfterFork();

} // namespace tesmor::python
