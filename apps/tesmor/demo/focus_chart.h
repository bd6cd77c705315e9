// SPDX-License-Identifier: GPL-2.0-or-later
// The chart of an autofocus: contrast over motor position.
#pragma once

#include "focusing/focus_trace.h"

#include <QImage>
#include <QString>

namespace tesmor::apps {

struct FocusChart {
    QString title;
    FocusTrace trace;
    std::int64_t startPosition;  // motor steps, like all that follow
    std::int64_t chosenPosition; // where the autofocus ended
    double bestPosition;         // the best focus
    QString bestLabel;           // what it is
    double margin;               // shaded on either side of it
    QString marginLabel;         // what it is, "one depth of field"
};

// Left the whole search, right its end, enlarged. Needs a QApplication.
QImage drawFocusChart(const FocusChart& chart);

} // namespace tesmor::apps
