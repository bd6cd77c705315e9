// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/subcommands.h"

#include "host/library_session.h"
#include "host/pending_result.h"
#include "images/frame_image.h"
#include "images/output_file.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"
#include "terminal/text.h"
#include "tesmor.h"
#include "tesmor/camera/live_camera.h"
#include "tesmor/camera/outcome.h"

#include <QCoreApplication>
#include <QImage>

#include <chrono>
#include <new>

namespace tesmor::apps {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds LIMIT(5); // a capture without an image ends after 4 seconds, and says nothing
constexpr std::uint16_t VIRTUAL_MAGNIFICATION = 10;

const QString DESCRIPTION = QString("Takes one image: the camera's next frame. Needs no focus drive.\n\n"
                                    "%1\n\n"
                                    "Examples:\n"
                                    "  tesmor snap -o image.png\n"
                                    "  tesmor snap --camera virtual -o image.tif\n\n"
                                    "Exit status: 0 taken, 1 failed, 2 wrong usage, 130 interrupted.")
                                .arg(CAMERA_HELP);

struct Capture {
    PendingResult result;
    QImage image;

    static void receive(const std::uint8_t* pixels, std::int32_t width, std::int32_t height, void* context,
                        std::int32_t)
    {
        auto& capture = *static_cast<Capture*>(context);
        capture.image = copyOfFrame(pixels, width, height);
        capture.result.set(TESMOR_SUCCESS);
    }
};

std::int32_t takeImage(Capture& capture)
{
    const InterruptGuard guard;
    const auto limit = Clock::now() + LIMIT;
    tesmor_capture(Capture::receive, &capture);
    return capture.result.wait([&] {
        if (Clock::now() > limit)
            capture.result.set(TESMOR_NO_FRAME);
    });
}

} // namespace

int runSnap(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(DESCRIPTION);
    parser.addOption({{"o", "output"}, "Write to FILE, in the format of its name: .png, .jpg, .tif or .bmp.", "FILE"});
    addCameraOptions(parser, "{\"camera\":\"virtual\",\"height\":480,\"output\":\"image.png\",\"result\":0,"
                             "\"text\":\"...\",\"width\":640}");
    if (!parseCommandLine(parser, QCoreApplication::arguments()))
        return STATUS_DONE;
    refuseArguments(parser);
    const CameraOptions options = cameraOptionsOf(parser);
    const QString file = parser.value("output");
    if (file.isEmpty())
        throw UsageError("name the file to write with -o");
    checkOutputFile(file, {});

    Capture capture; // outlives all that may call it
    const LibrarySession session;
    const LiveCamera camera(options, VIRTUAL_MAGNIFICATION);
    const std::int32_t result = takeImage(capture);
    if (result != TESMOR_SUCCESS)
        return tellOutcome(options, result, failureText(result, camera), {{"camera", camera.name()}});
    if (capture.image.isNull())
        throw std::bad_alloc();
    writeOutputFile(file, capture.image);
    const QSize size = capture.image.size();
    return tellOutcome(
        options, result, QString("%1: %2 pixels").arg(file, sizeText(size)),
        {{"camera", camera.name()}, {"output", file}, {"width", size.width()}, {"height", size.height()}});
}

} // namespace tesmor::apps
