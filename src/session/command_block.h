// SPDX-License-Identifier: GPL-2.0-or-later
// The one record through which the exports hand a command and its parameters to the worker.
#pragma once

#include "tesmor.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace tesmor {

enum CommandCode : std::uint32_t {
    CMD_QUIT = 0,
    CMD_IDLE = 1,
    CMD_AUTOFOCUS = 2,
    CMD_MANUAL = 3,
    CMD_STACK = 4,
    CMD_CAPTURE = 5,
    CMD_FUSION = 6,
    CMD_RESET = 7,
};

inline constexpr std::size_t MAX_IMAGES = 128;

// A post writes the fields of its command only; every other field keeps what the command before left in it.
struct CommandBlock {
    CommandCode command = CMD_IDLE;
    std::uint16_t magnification;
    double angle; // degrees
    std::uint16_t sliceCount;
    std::int32_t sliceSpacing; // in spacing units of the magnification
    double focusValue;         // written by the frame hook
    DoneCallback doneCallback;
    FrameCallback frameCallback;
    void* context;
    std::uint32_t notifyOnly;
    std::array<const std::uint8_t*, MAX_IMAGES> images;
    std::uint8_t* output;
    std::uint64_t imageCount;
    std::uint32_t width;  // pixels
    std::uint32_t height; // pixels
};

} // namespace tesmor
