// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/demo_summary.h"

#include "images/image_quality.h"

#include <algorithm>
#include <cmath>

namespace tesmor::apps {

namespace {

ImageFigures measureImage(const QImage& image, const QImage& truth)
{
    ImageFigures figures{edgeSharpness(image), {}, {}};
    if (!truth.isNull()) {
        figures.psnr = psnr(image, truth);
        figures.ssim = ssim(image, truth);
    }
    return figures;
}

QString cell(const QString& text, int width)
{
    return text.rightJustified(width);
}

QString costLine(const OperationCost& cost)
{
    return "  " + cost.name.leftJustified(22) + cell(QString::number(cost.moves), 9) +
           cell(QString::number(cost.frames), 9) + cell(QString::number(cost.seconds, 'f', 1), 10) + "\n";
}

QString costTable(const std::vector<OperationCost>& costs)
{
    QString text = "  " + QString(22, ' ') + cell("moves", 9) + cell("frames", 9) + cell("seconds", 10) + "\n";
    OperationCost total{"total", 0, 0, 0};
    for (const OperationCost& cost : costs) {
        text += costLine(cost);
        total.moves += cost.moves;
        total.frames += cost.frames;
        total.seconds += cost.seconds;
    }
    return text + costLine(total);
}

QString imageLine(const QString& name, const ImageFigures& figures)
{
    return "  " + name.leftJustified(22) + cell(QString::number(figures.sharpness, 'f', 2), 9) +
           cell(decibelText(figures.psnr), 12) +
           cell(figures.ssim ? QString::number(*figures.ssim, 'f', 3) : "unknown", 10) + "\n";
}

QString imageTable(const DemoSummary& summary)
{
    QString text = "  " + QString(22, ' ') + cell("sharpness", 9) + cell("PSNR", 12) + cell("SSIM", 10) + "\n";
    text += imageLine("start", summary.start);
    text += imageLine(QString("best slice (%1 of %2)").arg(summary.bestSliceIndex + 1).arg(summary.sliceCount),
                      summary.bestSlice);
    text += imageLine("fused image", summary.fused);
    text += "  (sharpness: of edges, in grey levels per pixel; PSNR and SSIM: compared with the truth";
    return text + (summary.photographs ? ",\n  which is unknown for photographs)\n" : ")\n");
}

double distance(const DemoSummary& summary)
{
    return static_cast<double>(summary.chosenPosition) - summary.bestPosition;
}

QString likelyCause(const DemoSummary& summary)
{
    if (summary.photographs)
        return "the contrast in the middle of these photographs does not rise to one clear peak, and before the\n"
               "  first and after the last of them it does not change";
    constexpr double FAR = 10; // depths of field; any closer, the view of the virtual microscope shows the way
    const double startDistance = std::abs(static_cast<double>(summary.startPosition) - summary.bestPosition);
    if (startDistance > FAR * summary.unitOfDistance)
        return QString("the start is %1 depths of field away, where the view is so blurred that noise hides the\n"
                       "  rise towards the focus; start closer, with a smaller --offset")
            .arg(startDistance / summary.unitOfDistance, 0, 'f', 1);
    return "the contrast of this view has more than one peak, and the search climbs the first one it meets;\n"
           "  try another --offset or --seed";
}

QString focusLines(const DemoSummary& summary)
{
    const double steps = distance(summary);
    const double depths = std::abs(steps) / summary.unitOfDistance;
    const QString unit = summary.photographs ? "planes" : "depths of field";
    QString text = QString("  The autofocus stopped at %1; %2 at %3.\n")
                       .arg(summary.chosenPosition)
                       .arg(summary.photographs ? "the plane of highest contrast is" : "the best focus is")
                       .arg(std::lround(summary.bestPosition));
    text += QString("  Distance: %1 motor steps = %2 %3; within one %4: %5\n")
                .arg(std::lround(std::abs(steps)))
                .arg(depths, 0, 'f', 2)
                .arg(unit, summary.photographs ? "plane" : "depth of field", summary.isInFocus() ? "yes" : "NO");
    if (!summary.isInFocus())
        text += "  Likely cause: " + likelyCause(summary) + ".\n";
    return text;
}

} // namespace

bool DemoSummary::isInFocus() const
{
    return std::abs(distance(*this)) <= unitOfDistance;
}

DemoSummary summarise(const DemoRun& run, const DemoInstrument& instrument, const QImage& truth)
{
    std::vector<ImageFigures> slices;
    for (const QImage& slice : run.slices)
        slices.push_back(measureImage(slice, truth));
    const auto best = std::ranges::max_element(
        slices, {}, [](const ImageFigures& figures) { return figures.psnr.value_or(figures.sharpness); });
    DemoSummary summary{};
    summary.costs = run.costs;
    summary.startPosition = instrument.startPosition();
    summary.chosenPosition = run.chosenPosition;
    summary.bestPosition = instrument.microscope().bestFocus();
    summary.unitOfDistance = instrument.unitOfDistance();
    summary.photographs = instrument.planeCount() > 0;
    summary.start = measureImage(run.start, truth);
    summary.bestSlice = *best;
    summary.bestSliceIndex = static_cast<std::size_t>(best - slices.begin());
    summary.sliceCount = slices.size();
    summary.fused = measureImage(run.fused, truth);
    return summary;
}

QString summaryText(const DemoSummary& summary)
{
    return costTable(summary.costs) + "\n" + focusLines(summary) + "\n" + imageTable(summary);
}

QString decibelText(const std::optional<double>& decibels)
{
    return decibels ? QString("%1 dB").arg(*decibels, 0, 'f', 1) : QString("unknown");
}

} // namespace tesmor::apps
