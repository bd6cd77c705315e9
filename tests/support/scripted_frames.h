// SPDX-License-Identifier: GPL-2.0-or-later
// Frames whose sharpness is a function of where a scripted drive stands, and which a test can let fail.
#pragma once

#include "frames/frames.h"
#include "support/scripted_system.h"
#include "tesmor.h"

namespace tesmor::test {

class ScriptedFrames final : public Frames {
public:
    explicit ScriptedFrames(const ScriptedSystem& system) : system_(system) {}

    std::function<double(std::int64_t position)> sharpness = [](std::int64_t) { return 1.0; };
    int goodWaits = INT32_MAX; // so many waits succeed; from then on
    FrameReply then{TESMOR_SUCCESS, std::nullopt};
    std::vector<std::int64_t> positions; // of each wait

    FrameReply next() override
    {
        positions.push_back(system_.position());
        if (positions.size() > static_cast<std::size_t>(goodWaits))
            return then;
        return {TESMOR_SUCCESS, sharpness(positions.back())};
    }

private:
    const ScriptedSystem& system_;
};

} // namespace tesmor::test
