// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/subcommands.h"

#include "host/focus_units.h"
#include "host/library_session.h"
#include "host/pending_result.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"
#include "terminal/live_line.h"
#include "terminal/text.h"
#include "tesmor.h"
#include "tesmor/camera/live_camera.h"
#include "tesmor/camera/outcome.h"

#include <QCoreApplication>

#include <chrono>

namespace tesmor::apps {

namespace {

using Clock = std::chrono::steady_clock;

const QString DESCRIPTION =
    QString("Turns the focus drive until the camera's image is sharpest, starting from where the focus is.\n\n"
            "%1\n\n"
            "Examples:\n"
            "  tesmor focus --magnification 40\n"
            "  tesmor focus --camera virtual          without a camera and a drive\n\n"
            "Ctrl-C cancels it; the focus stays where it is. Exit status: 0 in focus, 1 failed, 2 wrong usage, 130 "
            "interrupted.")
        .arg(CAMERA_HELP);

std::int32_t focus(const LiveCamera& camera, std::uint16_t magnification, bool quiet)
{
    const InterruptGuard guard;
    LiveLine line(LiveLine::styleOfOutput(quiet), std::chrono::seconds(1));
    const auto start = Clock::now();
    PendingResult result;
    tesmor_start(
        magnification, [](void* context, std::int32_t code) { static_cast<PendingResult*>(context)->set(code); },
        &result);
    return result.wait([&] {
        line.show(QString("Focusing: %1, %2 frames").arg(durationText(Clock::now() - start)).arg(camera.frameCount()));
    });
}

} // namespace

int runFocus(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(DESCRIPTION);
    addMagnificationOption(parser);
    addCameraOptions(parser, "{\"camera\":\"virtual\",\"result\":0,\"seconds\":9.1,\"text\":\"...\"}");
    if (!parseCommandLine(parser, QCoreApplication::arguments()))
        return STATUS_DONE;
    refuseArguments(parser);
    const CameraOptions options = cameraOptionsOf(parser);
    const std::uint16_t magnification = parseMagnification(parser.value("magnification"));

    const LibrarySession session;
    const LiveCamera camera(options, magnification);
    const auto start = Clock::now();
    const std::int32_t result = focus(camera, magnification, options.json);
    const std::chrono::duration<double> time = Clock::now() - start;
    const QString text = result == TESMOR_SUCCESS ? "The image is in focus, after " + durationText(time) + "."
                                                  : failureText(result, camera);
    return tellOutcome(options, result, text, {{"camera", camera.name()}, {"seconds", time.count()}});
}

} // namespace tesmor::apps
