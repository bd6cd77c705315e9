// SPDX-License-Identifier: GPL-2.0-or-later
// How a frame lies over another one, its reference.
#pragma once

#include <QPointF>

namespace tesmor::apps {

// The reference is turned and scaled about its middle, then shifted. Points are pixels right of and below the middle of
// their own frame.
struct Placement {
    double scale = 1;
    double angle = 0; // radians; positive turns what is on the right downwards
    double right = 0; // pixels
    double down = 0;

    // Where the frame shows this point of the reference.
    QPointF shownAt(QPointF point) const;

    // Of a frame over the reference, when this is its place over `inner`, and `inner` is that one's over the reference.
    Placement over(const Placement& inner) const;
};

} // namespace tesmor::apps
