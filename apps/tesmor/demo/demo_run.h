// SPDX-License-Identifier: GPL-2.0-or-later
// A demo's session from beginning to end, and its results.
#pragma once

#include "terminal/live_line.h"
#include "tesmor/demo/demo_instrument.h"
#include "tesmor/demo/demo_options.h"
#include "tesmor/demo/demo_session.h"

#include <QImage>

#include <cstdint>
#include <vector>

namespace tesmor::apps {

struct DemoRun {
    QImage start; // the first frame
    FocusTrace trace;
    std::int64_t chosenPosition; // motor steps: where the autofocus ended
    std::vector<QImage> slices;
    QImage fused;
    std::vector<OperationCost> costs;
};

// Reports its progress on standard output. Throws like DemoSession.
DemoRun runSession(const DemoOptions& options, DemoInstrument& instrument, LiveLine::Style style);

} // namespace tesmor::apps
