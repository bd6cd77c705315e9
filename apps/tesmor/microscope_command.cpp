// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/subcommands.h"

#include "host/focus_units.h"
#include "microscope/virtual_microscope.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"

#include <QCoreApplication>

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace tesmor::apps {

namespace {

using namespace std::chrono_literals;
using microscope::VirtualMicroscope;

constexpr auto TICK = 20ms; // between two checks for the reader's end and an interruption

constexpr const char* DESCRIPTION =
    "Runs a SIMULATED microscope, for writing or trying out a viewer without a camera.\n\n"
    "Its focus drive responds like a real one, so every program that uses the library finds it. Its live frames go to\n"
    "standard output as raw pixels in the library's frame layout: 3 bytes per pixel (blue, green, red), each row "
    "padded\n"
    "to a multiple of 4 bytes, one frame directly after another. It runs until its reader ends or you press Ctrl-C, "
    "and\n"
    "then reports where the focus is.\n\n"
    "Examples:\n"
    "  tesmor microscope --magnification 40 | ./autofocus 40\n"
    "  tesmor microscope > /dev/null &        just the drive\n\n"
    "Exit status: 0 the reader ended, 1 failed, 2 wrong usage, 130 interrupted.";

void addOptions(QCommandLineParser& parser)
{
    parser.addOptions({
        {"magnification", "Magnification of the objective: " + magnificationList() + ". Default: 10.", "M", "10"},
        {"offset",
         "Start this many motor steps forward of the best focus; negative: on its reverse side. Default: -1000.",
         "STEPS", "-1000"},
        {"size", "Size of the frames in pixels. Default: 640x480.", "WIDTHxHEIGHT", "640x480"},
        {"fps", "Frames per second. Default: 30.", "F", "30"},
        {"drift",
         "Let the image drift by up to this many pixels to each side within a few seconds, 0 to 64. Default: 0.",
         "PIXELS", "0"},
        {"breathing", "Let the image grow by this many percent per depth of field, -1 to 1. Default: 0.", "PERCENT",
         "0"},
        {"seed", "The number of the specimen; every N gives a different one. Default: 1.", "N", "1"},
        {"unit", "Unit number of the drive, 0 to 15; the library uses the lowest one. Default: 0.", "U", "0"},
    });
}

microscope::Settings settingsOf(const QCommandLineParser& parser)
{
    constexpr auto MOST_STEPS = static_cast<int>(microscope::MotorSettings{}.highEnd);
    microscope::Settings settings;
    settings.magnification = parseMagnification(parser.value("magnification"));
    settings.startOffset = integerOf("--offset", parser.value("offset"), -MOST_STEPS, MOST_STEPS);
    const QSize size = sizeOf(parser.value("size"));
    settings.width = size.width();
    settings.height = size.height();
    settings.framesPerSecond = numberOf("--fps", parser.value("fps"), 0.1, 1000);
    settings.motion.drift = numberOf("--drift", parser.value("drift"), 0, 64);
    settings.motion.breathing = numberOf("--breathing", parser.value("breathing"), -1, 1) / 100;
    settings.seed = static_cast<std::uint64_t>(
        integerOf("--seed", parser.value("seed"), 0, std::numeric_limits<std::int64_t>::max()));
    settings.unit = static_cast<unsigned>(integerOf("--unit", parser.value("unit"), 0, 15));
    return settings;
}

// The rows follow one another in memory as they do in the stream.
bool writeFrame(const microscope::Frame& frame)
{
    const std::uint8_t* next = frame.pixels;
    std::size_t left = microscope::rowBytes(frame.width) * static_cast<std::size_t>(frame.height);
    while (left > 0) {
        const ssize_t written = write(STDOUT_FILENO, next, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        next += written;
        left -= static_cast<std::size_t>(written);
    }
    return true;
}

void reportFocus(const VirtualMicroscope& microscope)
{
    const double distance = static_cast<double>(microscope.position()) - microscope.bestFocus();
    const bool within = std::abs(distance) <= microscope.depthOfField() / 2;
    std::fprintf(stderr,
                 "The simulated focus is %.0f steps from the best focus, on the %s side: %s the depth of field.\n",
                 std::abs(distance), distance < 0 ? "reverse" : "forward", within ? "within" : "outside");
}

int run(VirtualMicroscope& microscope)
{
    std::signal(SIGPIPE, SIG_IGN);
    const InterruptGuard guard;
    std::atomic<bool> readerEnded{false};
    try {
        microscope.start([&](const microscope::Frame& frame) {
            if (!readerEnded && !writeFrame(frame))
                readerEnded = true;
        });
    } catch (const std::system_error&) {
        throw UserError(
            QString("unit %1 is taken by another drive service; stop that service, or choose another unit with --unit")
                .arg(microscope.settings().unit));
    }
    std::fprintf(stderr, "%s\nIts drive is unit %u.\n", microscope.description().c_str(), microscope.settings().unit);
    while (!readerEnded && !interrupted())
        std::this_thread::sleep_for(TICK);
    reportFocus(microscope);
    if (!readerEnded)
        leaveInterrupted(); // the camera may be stuck in a write that nobody reads
    microscope.stop();      // no frame comes after this, so readerEnded may go
    return STATUS_DONE;
}

} // namespace

int runMicroscope(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(DESCRIPTION);
    addOptions(parser);
    if (!parseCommandLine(parser, QCoreApplication::arguments()))
        return STATUS_DONE;
    refuseArguments(parser);
    const microscope::Settings settings = settingsOf(parser);
    if (isatty(STDOUT_FILENO) != 0)
        throw UserError("frames cannot go to a terminal; append | ./autofocus, or > /dev/null");
    try {
        VirtualMicroscope microscope(settings);
        return run(microscope);
    } catch (const std::invalid_argument& error) {
        throw UsageError(error.what());
    }
}

} // namespace tesmor::apps
