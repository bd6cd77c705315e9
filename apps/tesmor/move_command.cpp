// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/subcommands.h"

#include "host/focus_units.h"
#include "host/library_session.h"
#include "microscope/virtual_microscope.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"
#include "tesmor.h"

#include <QCoreApplication>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <system_error>

namespace tesmor::apps {

namespace {

constexpr double MOST_DEGREES = 1843; // LARGEST_MOVE

constexpr const char* DESCRIPTION =
    "Turns the focus by hand: ANGLE degrees, positive forward, at most 1843 either way.\n\n"
    "This is the first thing to try with a new camera: watch the focus knob, and the image in your viewer.\n"
    "A turn of 360 degrees is 12800 motor steps; fractions of a step are dropped.\n\n"
    "Examples:\n"
    "  tesmor move 90\n"
    "  tesmor move -4.5\n"
    "  tesmor move --virtual 90      without a camera, on a simulated drive\n\n"
    "Exit status: 0 done, 1 failed, 2 wrong usage, 130 interrupted.";

// An angle such as -90 would be taken for options, so it is moved behind the "--" that ends them.
QStringList markAngles(const QStringList& arguments)
{
    QStringList options, angles;
    for (const QString& argument : arguments) {
        bool isNumber = false;
        argument.toDouble(&isNumber);
        (isNumber ? angles : options).append(argument);
    }
    return options.contains("--") ? arguments : options + QStringList("--") + angles;
}

std::unique_ptr<microscope::VirtualMicroscope> startVirtualDrive()
{
    microscope::Settings settings;
    settings.width = settings.height = 64;
    settings.framesPerSecond = 0;
    auto microscope = std::make_unique<microscope::VirtualMicroscope>(settings);
    try {
        microscope->start({});
    } catch (const std::system_error&) {
        throw UserError(
            "unit 0 is taken by another drive service; stop that service, or turn its drive without --virtual");
    }
    std::fprintf(stderr, "This drive is simulated: no motor turns.\n");
    return microscope;
}

std::int32_t move(double angle)
{
    std::promise<std::int32_t> promise;
    const auto onDone = [](void* context, std::int32_t result) {
        static_cast<std::promise<std::int32_t>*>(context)->set_value(result);
    };
    const LibrarySession session;
    tesmor_manual(angle, onDone, &promise);
    return promise.get_future().get();
}

QString textFor(std::int32_t result, std::int32_t steps)
{
    if (result == TESMOR_NO_DRIVE)
        return "no focus drive found; connect a camera that has one and start its drive service, or try --virtual";
    if (result == TESMOR_MOVE_FAILED)
        return "the drive did not carry out the move; check with tesmor devices whether another program is using it";
    if (steps == 0)
        return "The drive responded to a move of 0 steps.";
    return QString("Turned %1 degrees %2: %3 steps.")
        .arg(QString::number(std::abs(steps) * DEGREES_PER_STEP), steps > 0 ? "forward" : "in reverse")
        .arg(std::abs(steps));
}

} // namespace

int runMove(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(DESCRIPTION);
    parser.addPositionalArgument("ANGLE", "Degrees; positive is forward.");
    parser.addOptions({
        {"virtual", "Turn a simulated drive."},
        {"json", "Print the result as one line of JSON: {\"degrees\":90,\"result\":0,\"steps\":3200,\"text\":\"...\"}, "
                 "with the "
                 "library's result code; also if the move fails."},
    });
    if (!parseCommandLine(parser, markAngles(QCoreApplication::arguments())))
        return STATUS_DONE;
    if (parser.positionalArguments().size() != 1)
        throw UsageError("name one angle, in degrees");
    const double angle = numberOf("ANGLE", parser.positionalArguments().first(), -MOST_DEGREES, MOST_DEGREES);

    const auto microscope = parser.isSet("virtual") ? startVirtualDrive() : nullptr;
    const auto steps = static_cast<std::int32_t>(angle * STEPS_PER_TURN / 360.0);
    const std::int32_t result = move(angle);
    const QString text = textFor(result, steps);
    if (parser.isSet("json"))
        printJson({{"degrees", angle}, {"steps", steps}, {"result", result}, {"text", text}});
    else if (result == TESMOR_SUCCESS)
        std::printf("%s\n", qPrintable(text));
    else
        throw UserError(text);
    return result == TESMOR_SUCCESS ? STATUS_DONE : STATUS_FAILED;
}

} // namespace tesmor::apps
