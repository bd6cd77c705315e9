// SPDX-License-Identifier: GPL-2.0-or-later
// Which values of a stack become black and white when it is scaled to 8 bits: one range for all of its images, since a
// range for each would make some count more than others.
#pragma once

#include <QImage>
#include <QString>

#include <array>
#include <cstdint>
#include <vector>

namespace tesmor::apps {

// Both within 0 to 65535, low below high; 8-bit values count 257-fold.
struct DepthRange {
    int low;
    int high;
};

constexpr DepthRange FULL_RANGE = {0, 65535};

// What the user asks for.
struct RangeChoice {
    enum class Kind { UNSET, AUTO, FULL, GIVEN };
    Kind kind = Kind::UNSET;
    DepthRange given = FULL_RANGE; // in the unit of the images: not yet 257-fold
};

// The value of --range: auto, full, or LOW,HIGH. Throws UsageError.
RangeChoice rangeChoiceOf(const QString& text);

// Counts the values of images, all channels together.
class ValueCounts {
public:
    // Any format.
    void add(const QImage& image);
    void add(const ValueCounts& other);

    // From the 0.1 to the 99.9 percentile; where these are one, from the least to the greatest value; where these are
    // one, FULL_RANGE.
    DepthRange usedRange() const;

private:
    std::vector<std::uint64_t> counts_ = std::vector<std::uint64_t>(65536);
};

// Of format BGR888, with the image's resolution and colour profile. Throws std::bad_alloc.
QImage scaleToFrame(const QImage& image, DepthRange range);

} // namespace tesmor::apps
