#include "tesmor/demo/demo_options.h"

#include "host/focus_units.h"
#include "host/fusion_job.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"

#include <QCommandLineParser>

namespace tesmor::apps {

namespace {

constexpr int LARGEST_OFFSET = 1'000'000; // motor steps
constexpr int LARGEST_SEED = 999'999'999;

constexpr const char* DESCRIPTION =
    "Shows a whole session on a simulated microscope: starts out of focus, focuses, captures a focus stack and merges\n"
    "it into one image that is sharp throughout. No camera is needed, and none is used.\n\n"
    "Writes focus-curve.png, focus-trace.csv, slice-01.png and so on, fused.png and comparison.png.\n\n"
    "Examples:\n"
    "  tesmor demo --magnification 40 --offset 3000\n"
    "  tesmor demo --planes photographs/\n\n"
    "Ctrl-C ends it. Exit status: 0 done, 1 failed, 2 wrong usage, 130 stopped.";

// None when the option was not given.
std::optional<int> optionalInteger(const QCommandLineParser& parser, const QString& name, int least, int most)
{
    if (!parser.isSet(name))
        return std::nullopt;
    return static_cast<int>(integerOf("--" + name, parser.value(name), least, most));
}

std::uint16_t magnification(const QCommandLineParser& parser)
{
    const QString text = parser.value("magnification");
    for (const FocusObjective& objective : FOCUS_OBJECTIVES) {
        if (text == QString::number(objective.magnification))
            return objective.magnification;
    }
    throw UsageError(QString("--magnification is '%1'; it must be 4, 10, 20, 40, 60, 80 or 100").arg(text));
}

} // namespace

std::optional<DemoOptions> parseDemoOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(DESCRIPTION);
    parser.addOptions({
        {{"o", "output"}, "Write the files into DIR; made if need be.", "DIR", "tesmor-demo"},
        {"seed", "Another specimen for each N.", "N", "1"},
        {"magnification", "The objective: 4, 10, 20, 40, 60, 80 or 100.", "M", "10"},
        {"offset",
         "Start that many motor steps from the true focus; negative: below it. Default: three depths of field below.",
         "STEPS"},
        {"slices", "Capture N slices, 1 to 128. Default: as many as the specimen's relief needs.", "N"},
        {"spacing",
         "Distance of two slices in the objective's units (4x: 200 motor steps, 10x: 120, 20x: 96, 40x, 60x and 100x: "
         "48, 80x: 100). Default: about half a depth of field.",
         "N"},
        {"planes", "Look at the photographs in DIR, the planes of a specimen in the order of their names.", "DIR"},
    });
    if (!parseCommandLine(parser, arguments))
        return std::nullopt;
    refuseArguments(parser);
    if (parser.value("output").isEmpty())
        throw UsageError("--output: names no folder");

    DemoOptions options{};
    options.output = parser.value("output");
    options.magnification = magnification(parser);
    options.seed = static_cast<std::uint64_t>(integerOf("--seed", parser.value("seed"), 0, LARGEST_SEED));
    options.offset = optionalInteger(parser, "offset", -LARGEST_OFFSET, LARGEST_OFFSET);
    options.slices = optionalInteger(parser, "slices", 1, MOST_FUSED_IMAGES);
    options.spacing = optionalInteger(parser, "spacing", 1, LARGEST_MOVE / stepsPerUnit(options.magnification));
    if (parser.isSet("planes"))
        options.planes = parser.value("planes");
    return options;
}

} // namespace tesmor::apps
