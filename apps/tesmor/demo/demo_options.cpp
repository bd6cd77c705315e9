// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/demo_options.h"

#include "host/focus_units.h"
#include "host/fusion_job.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"

#include <QCommandLineParser>
#include <QStringList>

namespace tesmor::apps {

namespace {

constexpr int LARGEST_OFFSET = 1'000'000; // motor steps
constexpr int LARGEST_SEED = 999'999'999;

constexpr const char* DESCRIPTION =
    "Runs a complete session on a simulated microscope: starts out of focus, focuses, captures a focus stack and "
    "merges\n"
    "it into one image that is sharp throughout. It neither needs nor uses a camera.\n\n"
    "Writes focus-curve.png, focus-trace.csv, slice-01.png and so on, fused.png and comparison.png.\n\n"
    "Examples:\n"
    "  tesmor demo --magnification 40 --offset 3000\n"
    "  tesmor demo --planes photographs/\n\n"
    "Press Ctrl-C to stop. Exit status: 0 done, 1 failed, 2 wrong usage, 130 interrupted.";

// Nothing if the option was not given.
std::optional<int> optionalInteger(const QCommandLineParser& parser, const QString& name, int least, int most)
{
    if (!parser.isSet(name))
        return std::nullopt;
    return static_cast<int>(integerOf("--" + name, parser.value(name), least, most));
}

} // namespace

std::optional<DemoOptions> parseDemoOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(DESCRIPTION);
    parser.addOptions({
        {{"o", "output"},
         "Write the files to the folder DIR, which is created if necessary. Default: tesmor-demo.",
         "DIR",
         "tesmor-demo"},
        {"seed", "The number of the specimen; every N gives a different one. Default: 1.", "N", "1"},
        {"magnification", "Magnification of the objective: " + magnificationList() + ". Default: 10.", "M", "10"},
        {"offset",
         "Start this many motor steps forward of the best focus; negative: on its reverse side. Default: three depths "
         "of "
         "field on the reverse side.",
         "STEPS"},
        {"slices", "Capture N slices, 1 to 128. Default: enough to cover the specimen.", "N"},
        {"spacing",
         "Distance between slices in spacing units of the objective (" + spacingUnitList() +
             "). Default: about half a depth of field.",
         "N"},
        {"size", "Size of the frames in pixels; photographs keep theirs. Default: 1280x960.", "WIDTHxHEIGHT",
         "1280x960"},
        {"planes", "Use the photographs in the folder DIR as the planes of the specimen, in the order of their names.",
         "DIR"},
    });
    if (!parseCommandLine(parser, arguments))
        return std::nullopt;
    refuseArguments(parser);
    if (parser.value("output").isEmpty())
        throw UsageError("--output: no folder named");

    DemoOptions options{};
    options.output = parser.value("output");
    options.magnification = parseMagnification(parser.value("magnification"));
    options.seed = static_cast<std::uint64_t>(integerOf("--seed", parser.value("seed"), 0, LARGEST_SEED));
    options.offset = optionalInteger(parser, "offset", -LARGEST_OFFSET, LARGEST_OFFSET);
    options.slices = optionalInteger(parser, "slices", 1, MOST_FUSED_IMAGES);
    options.spacing = optionalInteger(parser, "spacing", 1, LARGEST_MOVE / stepsPerUnit(options.magnification));
    options.size = sizeOf(parser.value("size"));
    if (parser.isSet("planes"))
        options.planes = parser.value("planes");
    return options;
}

} // namespace tesmor::apps
