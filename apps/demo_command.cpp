#include "demo_command.h"

#include "comparison_picture.h"
#include "demo_folder.h"
#include "demo_options.h"
#include "demo_session.h"
#include "demo_summary.h"
#include "focus_chart.h"
#include "interrupt.h"
#include "plane_folder.h"
#include "stack_plan.h"
#include "subcommand.h"
#include "text.h"

#include <QApplication>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <new>

namespace tesmor::apps {

namespace {

using microscope::VirtualMicroscope;

constexpr double DEFAULT_OFFSET = 3; // depths of field

void say(const QString& text)
{
    std::fputs(qPrintable(text + "\n"), stdout);
    std::fflush(stdout);
}

microscope::Settings settingsFor(const DemoOptions& options, LiveLine::Style style)
{
    microscope::Settings settings;
    settings.seed = options.seed;
    settings.magnification = options.magnification;
    if (options.planes) {
        const auto distance = static_cast<double>(stepsPerPlane(options.magnification));
        settings.photos = microscope::PhotoPlanes{readPlanes(*options.planes, style), distance, true};
    }
    return settings;
}

// Motor steps. Photographs show nothing new outside their planes, so the start lies on the longer side of the best one.
std::int64_t startPosition(const DemoOptions& options, const VirtualMicroscope& microscope, std::size_t planeCount)
{
    const double best = microscope.bestFocus();
    double offset = -DEFAULT_OFFSET * microscope.depthOfField();
    if (planeCount > 0) {
        const double below = best;
        const double above =
            static_cast<double>(planeCount - 1) * static_cast<double>(stepsPerPlane(options.magnification)) - best;
        offset = below >= above ? std::max(-below, offset) : std::min(above, -offset);
    }
    return std::llround(best + options.offset.value_or(offset));
}

QImage imageOf(const microscope::Image& image)
{
    return image.pixels.empty() ? QImage() : copyOfFrame(image.pixels.data(), image.width, image.height);
}

void introduce(const VirtualMicroscope& microscope, std::size_t planeCount)
{
    say(QString::fromStdString(microscope.description()));
    const double offset = static_cast<double>(microscope.position()) - microscope.bestFocus();
    const QString side = offset < 0 ? "below" : "above";
    const QString target = planeCount > 0 ? "the plane of greatest contrast" : "the true focus";
    say(QString("It runs in real time, with %1 frames of %2 pixels a second. It starts out of focus: %3 motor steps\n"
                "(%4 depths of field) %5 %6.\n")
            .arg(microscope.settings().framesPerSecond)
            .arg(sizeText({microscope.settings().width, microscope.settings().height}))
            .arg(std::lround(std::abs(offset)))
            .arg(std::abs(offset) / microscope.depthOfField(), 0, 'f', 1)
            .arg(side, target));
}

struct Session {
    QImage start;
    FocusTrace trace;
    std::vector<QImage> slices;
    QImage fused;
    std::int64_t startPosition;
    std::int64_t chosenPosition;
    std::vector<OperationCost> costs;
};

Session runSession(const DemoOptions& options, VirtualMicroscope& microscope, std::size_t planeCount,
                   LiveLine::Style style)
{
    Session result;
    result.startPosition = microscope.position();
    DemoSession session(microscope, style);
    result.start = session.firstImage();
    if (result.start.isNull())
        throw std::bad_alloc();
    result.trace = session.focus();
    result.chosenPosition = microscope.position();
    say(QString("Focused at position %1.").arg(result.chosenPosition));

    const StackPlan plan = planStack(options, microscope, planeCount);
    session.moveTo(plan.firstPosition - plan.stepsPerSlice);
    say(QString("Moved to position %1, one slice before the stack.").arg(microscope.position()));
    result.slices = session.captureStack(plan.slices, plan.spacing);
    say(QString("Captured %1 slices, %2 motor steps apart.").arg(result.slices.size()).arg(plan.stepsPerSlice));
    result.fused = session.merge(result.slices);
    say("Merged them.");
    result.costs = session.costs();
    return result;
}

DemoSummary summarise(const Session& session, const VirtualMicroscope& microscope, const QImage& truth, double margin)
{
    std::vector<ImageFigures> slices;
    for (const QImage& slice : session.slices)
        slices.push_back(measureImage(slice, truth));
    DemoSummary summary{};
    summary.costs = session.costs;
    summary.startPosition = session.startPosition;
    summary.chosenPosition = session.chosenPosition;
    summary.bestPosition = microscope.bestFocus();
    summary.depthOfField = margin;
    summary.photographs = !microscope.hasTruth();
    summary.start = measureImage(session.start, truth);
    summary.bestSliceIndex = findBestSlice(slices);
    summary.bestSlice = slices[summary.bestSliceIndex];
    summary.sliceCount = slices.size();
    summary.fused = measureImage(session.fused, truth);
    return summary;
}

QImage drawComparison(const Session& session, const DemoSummary& summary, const QImage& truth)
{
    const auto note = [&](const ImageFigures& figures) {
        return truth.isNull() ? QString("sharpness %1").arg(figures.sharpness, 0, 'f', 2)
                              : "PSNR " + decibelText(figures.psnr);
    };
    const QImage& bestSlice = session.slices[summary.bestSliceIndex];
    std::vector<ComparedPicture> pictures = {
        {"Start", note(summary.start), session.start},
        {QString("Best slice (%1 of %2)").arg(summary.bestSliceIndex + 1).arg(summary.sliceCount),
         note(summary.bestSlice), bestSlice},
        {"Fused", note(summary.fused), session.fused},
    };
    if (!truth.isNull())
        pictures.push_back({"Truth", "sharp everywhere, without noise", truth});
    return compare(pictures, mostDifferentPart(bestSlice, truth.isNull() ? session.fused : truth));
}

QImage drawCurve(const Session& session, const DemoSummary& summary, const QString& title)
{
    const bool photographs = summary.photographs;
    return drawFocusChart({title, session.trace, session.startPosition, session.chosenPosition, summary.bestPosition,
                           photographs ? "plane of greatest contrast" : "true focus", summary.depthOfField,
                           photographs ? "one plane" : "one depth of field"});
}

int demonstrate(const DemoOptions& options)
{
    const DemoFolder folder(options.output);
    const LiveLine::Style style = LiveLine::styleOfOutput(false);
    microscope::Settings settings = settingsFor(options, style);
    const std::size_t planeCount = settings.photos ? settings.photos->images.size() : 0;
    VirtualMicroscope microscope(std::move(settings));
    microscope.setPosition(startPosition(options, microscope, planeCount));
    introduce(microscope, planeCount);

    const Session session = runSession(options, microscope, planeCount, style);
    const QImage truth = imageOf(microscope.truth());
    const double margin =
        planeCount > 0 ? static_cast<double>(stepsPerPlane(options.magnification)) : microscope.depthOfField();
    const DemoSummary summary = summarise(session, microscope, truth, margin);

    say("Writing the pictures.");
    folder.writeTrace(traceAsCsv(session.trace));
    folder.writeSlices(session.slices);
    folder.writePicture("fused.png", session.fused);
    folder.writePicture("focus-curve.png", drawCurve(session, summary,
                                                     QString("Autofocus on %1, %2x objective: %3 moves")
                                                         .arg(planeCount > 0 ? "photographs" : "the virtual microscope")
                                                         .arg(options.magnification)
                                                         .arg(session.trace.size())));
    folder.writePicture("comparison.png", drawComparison(session, summary, truth));

    say("\n" + summaryText(summary));
    say(QString("The pictures are in %1\n  focus-curve.png   the search (its figures: focus-trace.csv)\n"
                "  slice-01.png ...  the stack\n  fused.png         the result\n  comparison.png    start, best slice "
                "and result side by side")
            .arg(folder.path()));
    return STATUS_DONE;
}

} // namespace

int runDemo(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen"); // charts are drawn, but no window is opened
    const QApplication application(argc, argv);
    installInterruptHandler();
    const auto options = parseDemoOptions(QCoreApplication::arguments());
    return options ? demonstrate(*options) : STATUS_DONE;
}

} // namespace tesmor::apps
