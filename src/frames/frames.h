// SPDX-License-Identifier: GPL-2.0-or-later
// Live frames, for the operations.
#pragma once

#include <cstdint>
#include <optional>

namespace tesmor {

struct FrameReply {
    std::int32_t result;             // TESMOR_SUCCESS, TESMOR_ABORTED or TESMOR_NO_FRAME
    std::optional<double> sharpness; // of a frame that came for an autofocus, as long as that is the posted command
};

class Frames {
public:
    // Asks for the next live frame and waits until it has been served. An abort or a timeout ends the whole command.
    virtual FrameReply next() = 0;

protected:
    ~Frames() = default;
};

} // namespace tesmor
