// SPDX-License-Identifier: GPL-2.0-or-later
#include "interpreter.h"

#include "commands.h"
#include "microscope.h"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace tesmor::python {

namespace {

using namespace std::chrono_literals;

// All of it is read and written with the GIL held.
enum class Use { ALLOWED, ENDING, FORKED };
Use use = Use::ALLOWED;
int threadsWithoutGil = 0;

} // namespace

GilReleased::GilReleased()
{
    requireUsable();
    ++threadsWithoutGil;
    state_ = PyEval_SaveThread();
}

GilReleased::~GilReleased()
{
    PyEval_RestoreThread(state_);
    --threadsWithoutGil;
}

bool isUsable()
{
    return use == Use::ALLOWED;
}

void requireUsable()
{
    if (use == Use::ENDING)
        throw std::runtime_error("Python is exiting; tesmor cannot be called any more");
    if (use == Use::FORKED)
        throw std::runtime_error(
            "tesmor cannot be used in a process created by fork; start a new one, for example with "
            "multiprocessing.get_context(\"spawn\")");
}

void requireMainInterpreter()
{
    if (PyInterpreterState_Get() != PyInterpreterState_Main())
        throw py::import_error(MAIN_INTERPRETER_ONLY);
}

void leaveInterpreter()
{
    if (use != Use::ALLOWED)
        return;
    use = Use::ENDING;
    {
        py::gil_scoped_release release;
        abortCommand();
    }
    while (threadsWithoutGil > 0) {
        py::gil_scoped_release release;
        std::this_thread::sleep_for(1ms);
    }
    {
        py::gil_scoped_release release;
        endWorker();
    }
    stopMicroscopes();
}

void forbidAfterFork()
{
    use = Use::FORKED;
}

} // namespace tesmor::python
