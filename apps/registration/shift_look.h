// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QImage>

#include <vector>

namespace tesmor::apps {

// By how many pixels frames in focus order are shifted against one another, at most. A quick look at their shifts from
// neighbour to neighbour, much cheaper than their registration, that misses turns and growth.
//   frames   of format QImage::Format_BGR888 and one size
double shiftBetweenFrames(const std::vector<QImage>& frames);

} // namespace tesmor::apps
