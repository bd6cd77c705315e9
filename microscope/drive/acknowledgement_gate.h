// SPDX-License-Identifier: GPL-2.0-or-later
// Keeps frames and acknowledgements in order: a frame that is delivered after a move was acknowledged was exposed after
// that. Camera and drive share one gate. Any thread.
#pragma once

#include <cstdint>
#include <mutex>

namespace tesmor::microscope {

class AcknowledgementGate {
public:
    // To be called before the exposure of a frame; `deliver` takes the result.
    std::uint64_t beginExposure() const
    {
        std::lock_guard guard(mutex_);
        return acknowledgements_;
    }

    // Runs `deliver` unless a move was acknowledged since the exposure began, and returns whether it did. An
    // acknowledgement waits until `deliver` has returned.
    template <class Deliver>
    bool deliver(std::uint64_t exposure, Deliver deliver)
    {
        std::lock_guard guard(mutex_);
        if (exposure != acknowledgements_)
            return false;
        deliver();
        return true;
    }

    template <class Acknowledge>
    void acknowledge(Acknowledge acknowledge)
    {
        std::lock_guard guard(mutex_);
        ++acknowledgements_;
        acknowledge();
    }

private:
    mutable std::mutex mutex_;
    std::uint64_t acknowledgements_ = 0;
};

} // namespace tesmor::microscope
