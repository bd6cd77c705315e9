// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/demo_pictures.h"

#include "tesmor/demo/comparison_picture.h"
#include "tesmor/demo/focus_chart.h"

namespace tesmor::apps {

QImage drawFocusCurve(const DemoRun& run, const DemoSummary& summary, std::uint16_t magnification)
{
    const bool photographs = summary.photographs;
    FocusChart chart;
    chart.title = QString("Autofocus on %1, %2x objective: %3 moves")
                      .arg(photographs ? "photographs" : "the virtual microscope")
                      .arg(magnification)
                      .arg(run.trace.size());
    chart.trace = run.trace;
    chart.startPosition = summary.startPosition;
    chart.chosenPosition = summary.chosenPosition;
    chart.bestPosition = summary.bestPosition;
    chart.bestLabel = photographs ? "plane of highest contrast" : "best focus";
    chart.margin = summary.unitOfDistance;
    chart.marginLabel = photographs ? "one plane" : "one depth of field";
    return drawFocusChart(chart);
}

QImage drawComparison(const DemoRun& run, const DemoSummary& summary, const QImage& truth)
{
    const auto note = [&](const ImageFigures& figures) {
        return truth.isNull() ? QString("sharpness %1").arg(figures.sharpness, 0, 'f', 2)
                              : "PSNR " + decibelText(figures.psnr);
    };
    const QImage& bestSlice = run.slices[summary.bestSliceIndex];
    std::vector<ComparedPicture> pictures = {
        {"Start", note(summary.start), run.start},
        {QString("Best slice (%1 of %2)").arg(summary.bestSliceIndex + 1).arg(summary.sliceCount),
         note(summary.bestSlice), bestSlice},
        {"Fused", note(summary.fused), run.fused},
    };
    if (!truth.isNull())
        pictures.push_back({"Truth", "sharp everywhere, without noise", truth});
    return compare(pictures, mostDifferentPart(bestSlice, truth.isNull() ? run.fused : truth));
}

} // namespace tesmor::apps
