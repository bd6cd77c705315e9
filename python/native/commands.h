// SPDX-License-Identifier: GPL-2.0-or-later
// Commands of the library: posted here, asked for their outcome by whoever waits. One worker for the process; it starts
// with the first command and ends with the interpreter.
//
// A command's context in the library is a number, not an address: a report that comes late finds no command of its
// number and is dropped. What the library reads and writes is kept until the command has ended, whatever becomes of the
// waiting thread.
#pragma once

#include "frames.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace tesmor::python {

// A frame of a stack or capture, in the library's layout.
struct TakenFrame {
    std::unique_ptr<std::uint8_t[]> pixels; // null: no memory
    std::size_t width, height;
    bool grey;
};

// Made and destroyed with the GIL; its members are guarded by the reports' lock.
class Command {
public:
    // Waits 50 ms at most. None when the command has not ended by then.
    std::optional<std::int32_t> wait();

    std::int32_t percent() const; // of a fusion

    // Once it has ended.
    py::list takeFrames();   // of a stack or capture; throws std::bad_alloc when one is missing
    py::array fused() const; // of a fusion

private:
    friend class Reports;
    friend std::shared_ptr<Command> startFusion(std::vector<std::shared_ptr<Picture>>, std::uint32_t, std::uint32_t,
                                                bool);

    bool posted_ = false; // the library has it
    std::optional<std::int32_t> result_;
    std::int32_t percent_ = 0;
    std::vector<TakenFrame> frames_;
    std::vector<std::shared_ptr<Picture>> images_;
    std::unique_ptr<std::uint8_t[]> output_;
    std::size_t width_ = 0, height_ = 0;
    bool grey_ = false;
};

// Each posts a command, after waiting until the worker is idle. With the GIL, which is released meanwhile. Throw
// std::runtime_error when there is no thread for the worker.
std::shared_ptr<Command> startAutofocus(std::uint16_t magnification);
std::shared_ptr<Command> startStack(std::uint16_t magnification, std::uint16_t count, std::int32_t spacing);
std::shared_ptr<Command> startMove(double degrees);
std::shared_ptr<Command>
startCapture(); // has no result of its own until stop() gives it TESMOR_ABORTED, unless it succeeds
std::shared_ptr<Command> startFusion(std::vector<std::shared_ptr<Picture>> images, std::uint32_t width,
                                     std::uint32_t height, bool grey); // images of one size

// Aborts the running command and returns when it has ended.
void stop();

// The same, and gives the drive back.
void release();

// Hands a frame to the library if a command runs. The array as for Picture.
void video(const py::array& frame);

// For leaveInterpreter, without the GIL.
void abortCommand();
void endWorker();

} // namespace tesmor::python
