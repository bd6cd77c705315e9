#include "tesmor/subcommands.h"

#include "microscope/virtual_microscope.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"

#include <QCoreApplication>
#include <QRegularExpression>

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

constexpr auto TICK = 20ms; // between two looks at the reader and the interruption

constexpr const char* DESCRIPTION =
    "Runs a SIMULATED microscope for those who write a viewer, or try one, without a camera at hand.\n\n"
    "Its focus drive answers like a real one, so every program that uses the library finds it. Its live frames go to\n"
    "the standard output as raw pixels, in the library's frame layout: 3 bytes a pixel (blue, green, red), each row\n"
    "padded to a multiple of 4 bytes, one frame behind the other without anything between. It runs until its reader\n"
    "ends or Ctrl-C is pressed, and then tells where the focus stands.\n\n"
    "Examples:\n"
    "  tesmor microscope --magnification 40 | ./autofocus 40\n"
    "  tesmor microscope > /dev/null &        for the drive alone\n\n"
    "Exit status: 0 the reader has ended, 1 failed, 2 wrong usage, 130 stopped.";

void addOptions(QCommandLineParser& parser)
{
    parser.addOptions({
        {"magnification", "Of the objective: 4, 10, 20, 40, 60, 80 or 100.", "M", "10"},
        {"offset", "Where the focus stands at first: motor steps forward of the best focus.", "STEPS", "-1000"},
        {"size", "Of a frame, in pixels.", "WIDTHxHEIGHT", "640x480"},
        {"fps", "Frames per second.", "F", "30"},
        {"seed", "Another number gives another specimen; the same number gives the same one.", "N", "1"},
        {"unit", "Of the drive, 0 to 15; the library takes the lowest one that is there.", "U", "0"},
    });
}

void setSize(microscope::Settings& settings, const QString& text)
{
    const auto match = QRegularExpression("^(\\d{1,5})x(\\d{1,5})$").match(text);
    if (!match.hasMatch())
        throw UsageError(QString("the size is '%1'; it must look like 640x480").arg(text));
    settings.width = match.captured(1).toInt();
    settings.height = match.captured(2).toInt();
}

microscope::Settings settingsOf(const QCommandLineParser& parser)
{
    constexpr auto MOST_STEPS = static_cast<int>(microscope::MotorSettings{}.highEnd);
    microscope::Settings settings;
    settings.magnification = static_cast<std::uint16_t>(
        integerOf("the magnification", parser.value("magnification"), 1, std::numeric_limits<std::uint16_t>::max()));
    settings.startOffset = integerOf("the offset", parser.value("offset"), -MOST_STEPS, MOST_STEPS);
    setSize(settings, parser.value("size"));
    settings.framesPerSecond = numberOf("the number of frames per second", parser.value("fps"), 0.1, 1000);
    settings.seed = static_cast<std::uint64_t>(
        integerOf("the seed", parser.value("seed"), 0, std::numeric_limits<std::int64_t>::max()));
    settings.unit = static_cast<unsigned>(integerOf("the unit", parser.value("unit"), 0, 15));
    return settings;
}

// The rows lie one behind the other in memory as they do in the stream.
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

void tellFocus(const VirtualMicroscope& microscope)
{
    const double distance = static_cast<double>(microscope.position()) - microscope.bestFocus();
    const bool within = std::abs(distance) <= microscope.depthOfField() / 2;
    std::fprintf(stderr, "The simulated focus stands %.0f steps %s the best focus, %s the depth of field.\n",
                 std::abs(distance), distance < 0 ? "behind" : "forward of", within ? "within" : "outside");
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
        throw UserError(QString("unit %1 is taken by another drive service; end that, or choose another with --unit")
                            .arg(microscope.settings().unit));
    }
    std::fprintf(stderr, "%s\nIts drive is unit %u.\n", microscope.description().c_str(), microscope.settings().unit);
    while (!readerEnded && !interrupted())
        std::this_thread::sleep_for(TICK);
    tellFocus(microscope);
    if (!readerEnded)
        leaveInterrupted(); // the camera may stand in a write that nobody reads
    microscope.stop();      // no frame comes once readerEnded has gone
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
        throw UserError("the frames are not for a terminal; put | ./autofocus behind it, or > /dev/null");
    try {
        VirtualMicroscope microscope(settings);
        return run(microscope);
    } catch (const std::invalid_argument& error) {
        throw UsageError(error.what());
    }
}

} // namespace tesmor::apps
