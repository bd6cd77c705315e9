// What a demo came to, in figures.
#pragma once

#include "tesmor/demo/demo_run.h"

#include <QImage>
#include <QString>

#include <optional>
#include <vector>

namespace tesmor::apps {

struct ImageFigures {
    double sharpness;           // of edges, grey levels a pixel
    std::optional<double> psnr; // decibels against the truth, where there is one
    std::optional<double> ssim;
};

struct DemoSummary {
    std::vector<OperationCost> costs;

    // Motor steps.
    std::int64_t startPosition;
    std::int64_t chosenPosition;
    double bestPosition;   // the true focus, or with photographs the plane of greatest contrast
    double unitOfDistance; // one depth of field, or with photographs from one to the next
    bool photographs;

    ImageFigures start;
    ImageFigures bestSlice;
    std::size_t bestSliceIndex; // the closest to the truth; without one, that with the sharpest edges
    std::size_t sliceCount;
    ImageFigures fused;

    bool isInFocus() const; // within one such unit
};

//   truth   null where there is none
DemoSummary summarise(const DemoRun& run, const DemoInstrument& instrument, const QImage& truth);

// Some lines, ready to be printed.
QString summaryText(const DemoSummary& summary);

// "24.3 dB"; "unknown"
QString decibelText(const std::optional<double>& decibels);

} // namespace tesmor::apps
