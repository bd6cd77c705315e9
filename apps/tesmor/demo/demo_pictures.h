// SPDX-License-Identifier: GPL-2.0-or-later
// The two images that explain a demo. They need a QApplication.
#pragma once

#include "tesmor/demo/demo_run.h"
#include "tesmor/demo/demo_summary.h"

#include <QImage>

namespace tesmor::apps {

QImage drawFocusCurve(const DemoRun& run, const DemoSummary& summary, std::uint16_t magnification);

// Start, best slice, fused image and, unless it is null, the truth.
QImage drawComparison(const DemoRun& run, const DemoSummary& summary, const QImage& truth);

} // namespace tesmor::apps
