// The picture of an autofocus: contrast over motor position.
#pragma once

#include "tesmor/demo/focus_trace.h"

#include <QImage>
#include <QString>

namespace tesmor::apps {

struct FocusChart {
    QString title;
    FocusTrace trace;
    std::int64_t startPosition;  // motor steps, as all that follow
    std::int64_t chosenPosition; // where the autofocus ended
    double bestPosition;         // the truth
    QString bestLabel;           // what it is
    double margin;               // shaded on either side of it
    QString marginLabel;         // what it is, "one depth of field"
};

// On the left the whole search, on the right what it found, enlarged. Needs a QApplication.
QImage drawFocusChart(const FocusChart& chart);

} // namespace tesmor::apps
