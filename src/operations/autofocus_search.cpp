// SPDX-License-Identifier: GPL-2.0-or-later
#include "operations/autofocus_search.h"

#include "drive/focus_drive.h"
#include "frames/frames.h"
#include "operations/search_profile.h"
#include "tesmor.h"

#include <array>

namespace tesmor {

namespace {

constexpr int PROBE_REACH = 3; // coarse steps on either side of the start

class AutofocusSearch {
public:
    AutofocusSearch(FocusDrive& drive, Frames& frames, const SearchProfile& profile) noexcept
        : drive_(drive), frames_(frames), step_(profile.searchRange / 10), sweepLimit_(profile.searchRange),
          minStep_(profile.minStep)
    {
    }

    std::int32_t run()
    {
        if (!probeDirection())
            return result_;
        do {
            if (!sweep() || !turnBack())
                return result_;
        } while (step_ > minStep_);
        moveBy((travel_ - bestTravel_) * sweepDirection_);
        return result_;
    }

private:
    // Each of these returns whether the search continues; if not, result_ is its result.

    bool moveBy(std::int32_t displacement)
    {
        if (drive_.moveBy(displacement))
            return true;
        result_ = TESMOR_MOVE_FAILED;
        return false;
    }

    bool takeSample(double& sharpness)
    {
        const FrameReply frame = frames_.next();
        result_ = frame.result;
        if (!frame.sharpness)
            return false;
        sharpness = *frame.sharpness;
        return true;
    }

    bool probeDirection()
    {
        std::array<double, 2 * PROBE_REACH + 1> probe;
        for (int i = 0; i < PROBE_REACH; ++i) {
            if (!moveBy(step_))
                return false;
        }
        if (!takeSample(probe.front()))
            return false;
        for (std::size_t i = 1; i < probe.size(); ++i) {
            if (!moveBy(-step_) || !takeSample(probe[i]))
                return false;
        }
        if (probe.front() < probe.back()) {
            sweepDirection_ = -1;
            return true;
        }
        sweepDirection_ = 1;
        return moveBy(PROBE_REACH * step_);
    }

    bool sweep()
    {
        travel_ = 0;
        bestTravel_ = 0;
        peakPassed_ = false;
        wrongWay_ = false;
        if (!takeSample(bestValue_))
            return false;
        while (!peakPassed_ && travel_ < sweepLimit_) {
            if (!moveBy(step_ * sweepDirection_))
                return false;
            travel_ += step_;
            double sample;
            if (!takeSample(sample))
                return false;
            judge(sample);
        }
        return true;
    }

    void judge(double sample) noexcept
    {
        if (sample >= bestValue_) {
            bestValue_ = sample;
            bestTravel_ = travel_;
        }
        const auto [p1, p2, p3] = samples_;
        const bool previousAreOfThisSweep = travel_ > 3 * step_;
        if (previousAreOfThisSweep) {
            if (sample > p1 && sample > p2 && sample > p3) {
                sweepLimit_ += step_;
            } else if (p1 >= sample && p2 >= sample) {
                peakPassed_ = true;
                wrongWay_ = isFirstComparison_;
            }
            isFirstComparison_ = false;
        }
        samples_ = {sample, p1, p2};
    }

    bool turnBack()
    {
        sweepDirection_ = -sweepDirection_;
        if (!moveBy(2 * step_ * sweepDirection_))
            return false;
        if (!wrongWay_) {
            sweepLimit_ = 2 * step_;
            travel_ -= 2 * step_;
            step_ = sweepLimit_ / 10;
        }
        return true;
    }

    FocusDrive& drive_;
    Frames& frames_;
    std::int32_t result_ = TESMOR_SUCCESS;

    // Motor steps.
    std::int32_t step_;
    std::int32_t sweepLimit_;
    const std::int32_t minStep_;
    std::int32_t travel_ = 0;     // in the current sweep, counted positive from its start
    std::int32_t bestTravel_ = 0; // where bestValue_ was seen; 0 is the sweep's start

    std::int32_t sweepDirection_ = 1;
    double bestValue_ = 0.0;
    std::array<double, 3> samples_{}; // the newest first
    bool peakPassed_ = false;         // this sweep saw the sharpness fall,
    bool wrongWay_ = false;           // and that at the search's very first comparison
    bool isFirstComparison_ = true;
};

} // namespace

std::int32_t autofocusSearch(FocusDrive& drive, Frames& frames, std::uint16_t magnification)
{
    if (!drive.hasDevice())
        return TESMOR_NO_DRIVE;
    return AutofocusSearch(drive, frames, searchProfile(magnification)).run();
}

} // namespace tesmor
