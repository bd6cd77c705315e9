// SPDX-License-Identifier: GPL-2.0-or-later
// The result of a demo in figures.
#pragma once

#include "tesmor/demo/demo_run.h"

#include <QImage>
#include <QString>

#include <optional>
#include <vector>

namespace tesmor::apps {

struct ImageFigures {
    double sharpness;           // of edges, grey levels per pixel
    std::optional<double> psnr; // decibels, compared with the truth, if known
    std::optional<double> ssim;
};

struct DemoSummary {
    std::vector<OperationCost> costs;

    // Motor steps.
    std::int64_t startPosition;
    std::int64_t chosenPosition;
    double bestPosition;   // the best focus; with photographs, the plane of highest contrast
    double unitOfDistance; // one depth of field; with photographs, from one to the next
    bool photographs;

    ImageFigures start;
    ImageFigures bestSlice;
    std::size_t bestSliceIndex; // the closest to the truth; if that is unknown, the one with the sharpest edges
    std::size_t sliceCount;
    ImageFigures fused;

    bool isInFocus() const; // within one unitOfDistance
};

//   truth   null if unknown
DemoSummary summarise(const DemoRun& run, const DemoInstrument& instrument, const QImage& truth);

// Several lines, ready to print.
QString summaryText(const DemoSummary& summary);

// "24.3 dB"; "unknown"
QString decibelText(const std::optional<double>& decibels);

} // namespace tesmor::apps
