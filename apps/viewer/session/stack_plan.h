// SPDX-License-Identifier: GPL-2.0-or-later
// Where a stack begins, its number of slices and their spacing; and what it costs.
#pragma once

#include <QSize>

#include <cstdint>
#include <optional>

namespace tesmor::apps {

struct StackPlan {
    std::int64_t wayToFirst = 0; // motor steps from where the focus is to the first slice
    std::uint16_t slices = 0;    // 1 to MOST_FUSED_IMAGES
    std::int32_t spacing = 0;    // units of the objective; negative: in reverse
    std::uint16_t magnification = 0;

    std::int64_t stepsPerSlice() const; // signed
    std::int64_t depth() const;         // motor steps from the first slice to the last

    // A stack takes its first slice after its first move: so many steps to where it has to start.
    std::int64_t wayToStart() const
    {
        return wayToFirst - stepsPerSlice();
    }

    bool operator==(const StackPlan&) const = default;
};

// So many slices around the focus.
//   spacing   units, 1 or more
StackPlan planAround(int slices, int spacing, std::uint16_t magnification);

// From one end to the other, which at least the last slice reaches. None if that takes more than MOST_FUSED_IMAGES.
//   wayToFirst, wayToLast   motor steps from where the focus is
std::optional<StackPlan> planBetween(std::int64_t wayToFirst, std::int64_t wayToLast, int spacing,
                                     std::uint16_t magnification);

// The memory for the slices and their fusion, bytes.
std::uint64_t memoryOf(const StackPlan& plan, QSize frameSize);

// How long a stack takes, learnt from the ones before.
class StackPace {
public:
    double secondsFor(const StackPlan& plan) const;
    void learn(const StackPlan& plan, double seconds);

private:
    double secondsPerSlice_ = 0.3; // a typical motor and camera
};

} // namespace tesmor::apps
