// What a demo came to, in figures.
#pragma once

#include "demo_session.h"

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
    double bestPosition; // the true focus, or with photographs the sharpest plane
    double depthOfField; // or with photographs the distance of two planes
    bool photographs;

    ImageFigures start;
    ImageFigures bestSlice;
    std::size_t bestSliceIndex;
    std::size_t sliceCount;
    ImageFigures fused;

    bool isInFocus() const; // within one depth of field
};

//   truth   null where there is none
ImageFigures measureImage(const QImage& image, const QImage& truth);

// The slice that comes closest to the truth, or without one has the sharpest edges.
std::size_t findBestSlice(const std::vector<ImageFigures>& slices);

// Some lines, ready to be printed.
QString summaryText(const DemoSummary& summary);

// "24.3 dB"; "unknown"
QString decibelText(const std::optional<double>& decibels);

} // namespace tesmor::apps
