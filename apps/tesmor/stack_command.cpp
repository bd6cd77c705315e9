// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/subcommands.h"

#include "host/focus_units.h"
#include "host/fusion_job.h"
#include "host/library_session.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"
#include "tesmor.h"
#include "tesmor/camera/live_camera.h"
#include "tesmor/camera/outcome.h"
#include "tesmor/camera/slice_folder.h"
#include "tesmor/camera/stack_capture.h"

#include <QCoreApplication>

namespace tesmor::apps {

namespace {

const QString DESCRIPTION =
    QString(
        "Captures a focus stack: moves the focus forward by one spacing and captures an image, again and again, then\n"
        "drives it back. Writes slice-001.png and so on.\n\n"
        "%1\n\n"
        "Examples:\n"
        "  tesmor stack --magnification 40 --slices 20 -o slices\n"
        "  tesmor fuse -o sharp.png slices/*.png\n\n"
        "Ctrl-C cancels it; the focus stays where it is, and nothing is written. Exit status: 0 captured, 1 failed,\n"
        "2 wrong usage, 130 interrupted.")
        .arg(CAMERA_HELP);

void addOptions(QCommandLineParser& parser)
{
    parser.addOptions({
        {{"o", "output"}, "Write the images to the folder DIR, which is created if necessary.", "DIR"},
        {"slices", "Capture N slices, 1 to 128.", "N", "10"},
        {"spacing",
         "Distance between slices in spacing units of the objective (" + spacingUnitList() + "); negative: in reverse.",
         "N", "1"},
    });
}

QString successText(std::size_t count, const QString& folder)
{
    return QString("%1: %2; the focus is back where it was")
        .arg(folder, count == 1 ? "1 slice" : QString("%1 slices").arg(count));
}

QString keptText(std::size_t count, std::uint16_t slices, const QString& folder)
{
    return count == 0 ? QString() : QString(" (%1 of %2 slices are in %3)").arg(count).arg(slices).arg(folder);
}

} // namespace

int runStack(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(DESCRIPTION);
    addOptions(parser);
    addMagnificationOption(parser);
    addCameraOptions(parser,
                     "{\"camera\":\"virtual\",\"output\":\"slices\",\"result\":1,\"slices\":10,\"text\":\"...\"}");
    if (!parseCommandLine(parser, QCoreApplication::arguments()))
        return STATUS_DONE;
    refuseArguments(parser);
    const CameraOptions options = cameraOptionsOf(parser);
    const std::uint16_t magnification = parseMagnification(parser.value("magnification"));
    const int farthest = LARGEST_MOVE / stepsPerUnit(magnification);
    const auto slices = static_cast<std::uint16_t>(integerOf("--slices", parser.value("slices"), 1, MOST_FUSED_IMAGES));
    const auto spacing =
        static_cast<std::int32_t>(integerOf("--spacing", parser.value("spacing"), -farthest, farthest));
    if (parser.value("output").isEmpty())
        throw UsageError("name the folder for the slices with -o");
    const SliceFolder folder(parser.value("output"));

    StackCapture capture; // outlives all that may call it
    const LibrarySession session;
    const LiveCamera camera(options, magnification);
    const std::int32_t result = capture.run(magnification, slices, spacing, options.json);
    const std::vector<QImage> images = capture.takeImages();
    if (result != TESMOR_ABORTED)
        folder.write(images);
    QString text = successText(images.size(), parser.value("output"));
    if (result != TESMOR_STACK_DONE && result != TESMOR_ABORTED)
        text = failureText(result, camera) + keptText(images.size(), slices, parser.value("output"));
    return tellOutcome(options, result, text,
                       {{"camera", camera.name()},
                        {"output", parser.value("output")},
                        {"slices", static_cast<qint64>(images.size())}});
}

} // namespace tesmor::apps
