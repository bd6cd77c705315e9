// SPDX-License-Identifier: GPL-2.0-or-later
// One phase of a search in a chart of sharpness over motor position: a line through points whose shape and colour tell
// the phase.
#pragma once

#include "charts/search_phase.h"

#include <QPointF>

class QChart;
class QLineSeries;
class QScatterSeries;
class QValueAxis;

namespace tesmor::apps {

// Those that have points: all but the return.
inline constexpr SearchPhase CHARTED_PHASES[] = {SearchPhase::PROBE, SearchPhase::COARSE, SearchPhase::FINE};

class PhaseSeries {
public:
    // Adds the phase to the chart, which owns what it shows and outlives this. One of CHARTED_PHASES.
    PhaseSeries(QChart* chart, QValueAxis* positionAxis, QValueAxis* sharpnessAxis, SearchPhase phase);

    void append(QPointF point);
    void clear();

private:
    QLineSeries* line_;
    QScatterSeries* points_;
};

} // namespace tesmor::apps
