// A demo's session from beginning to end, and what came out of it.
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

// Says on the standard output what it does. Throws as DemoSession does.
DemoRun runSession(const DemoOptions& options, DemoInstrument& instrument, LiveLine::Style style);

} // namespace tesmor::apps
