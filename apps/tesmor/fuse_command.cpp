// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/subcommands.h"

#include "host/fusion_memory.h"
#include "host/library_session.h"
#include "images/output_file.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"
#include "terminal/progress_bar.h"
#include "terminal/text.h"
#include "tesmor/fuse_each.h"
#include "tesmor/fuse_stack.h"

#include <QCoreApplication>

#include <cstdio>
#include <optional>

namespace tesmor::apps {

namespace {

constexpr const char* DESCRIPTION =
    "Merges images of one field, taken at different focus positions, into one that is sharp throughout.\n\n"
    "IMAGE... are 1 to 128 PNG, JPEG, TIFF or BMP images of one size, in any order. A TIFF file gives all its pages,\n"
    "and 'stack.tif[3-20]' some of them. The images should show the same field without any shift; otherwise\n"
    "give them in focus order, with --align. Transparency is dropped, and the orientation stored in a file is "
    "applied.\n\n"
    "Examples:\n"
    "  tesmor fuse -o sharp.png slices/*.png\n"
    "  tesmor fuse -o sharp.tif 'stack.tif[3-20]'\n"
    "  tesmor fuse --each -o merged plate/*/\n\n"
    "Ctrl-C stops the run and leaves the output file as it was. Exit status: 0 done, 1 failed, 2 wrong usage,\n"
    "130 interrupted.";

struct Request {
    QStringList arguments;
    QString output;
    bool each;
    QString format;
    bool skipExisting;
    bool quiet;
    bool json;
    FuseOptions options;
};

std::optional<int> numberGiven(const QCommandLineParser& parser, const QString& option)
{
    if (!parser.isSet(option))
        return std::nullopt;
    return static_cast<int>(integerOf("--" + option, parser.value(option), 1, 1'000'000));
}

QString formatOf(const QCommandLineParser& parser)
{
    const QString format = parser.value("format");
    if (!QStringList{"png", "tif", "jpg", "bmp"}.contains(format))
        throw UsageError(QString("--format is '%1'; it must be png, tif, jpg or bmp").arg(format));
    return format;
}

void requireTogether(const QCommandLineParser& parser)
{
    if (parser.isSet("each") && !parser.isSet("output"))
        throw UsageError("--each needs a folder for the results; name it with -o");
    for (const char* const option : {"format", "skip-existing"}) {
        if (parser.isSet(option) && !parser.isSet("each"))
            throw UsageError(QString("--%1 goes with --each").arg(option));
    }
    if (parser.isSet("no-crop") && !parser.isSet("align"))
        throw UsageError("--no-crop does nothing without --align");
}

// Nothing if the user asked for help; it is then printed.
std::optional<Request> parseArguments(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(DESCRIPTION);
    parser.addPositionalArgument("IMAGE", "The images to merge.", "IMAGE...");
    parser.addOptions({
        {{"o", "output"},
         "Write to OUT, in the format given by its name. An existing OUT is replaced. Default: fused.png.",
         "OUT",
         "fused.png"},
        {"each",
         "Every IMAGE is a stack, a folder of images or a multi-page TIFF file, and gives one image of its name in the "
         "folder OUT. A stack that fails does not end the others, and makes the exit status 1."},
        {"skip-existing", "With --each, leave out stacks whose image is there already, from an interrupted run."},
        {"format", "With --each, write png, tif, jpg or bmp files. Default: png.", "FORMAT", "png"},
        {"channel", "Of a TIFF file with several channels, merge the N-th.", "N"},
        {"time", "Of a TIFF file with several points in time, merge the N-th.", "N"},
        {"range",
         "Scale the stack to 8 bits so that LOW becomes black and HIGH white, as in 100,4095; full: whatever the files "
         "can hold; auto: what the stack does hold, from its 0.1 to its 99.9 percentile. Default: auto for 16-bit "
         "images; 8-bit images are left as they are.",
         "RANGE"},
        {"align",
         "Shift, turn and scale the images first so that they lie over the sharpest one, and crop the result to what "
         "all of them show. An image that cannot be aligned is left out."},
        {"no-crop", "With --align, keep the size of the images."},
        {{"q", "quiet"}, "Print nothing but errors."},
        {"json", "Like --quiet, but print the result as one line of JSON, with output, images, leftOut, width, height, "
                 "range and seconds; with --each a line for each stack as it ends, with stack, result and error, too."},
    });
    if (!parseCommandLine(parser, arguments))
        return std::nullopt;
    if (parser.positionalArguments().isEmpty())
        throw UsageError("no images named");
    requireTogether(parser);
    const bool json = parser.isSet("json");
    return Request{parser.positionalArguments(),
                   parser.value("output"),
                   parser.isSet("each"),
                   formatOf(parser),
                   parser.isSet("skip-existing"),
                   json || parser.isSet("quiet"),
                   json,
                   {{numberGiven(parser, "channel"), numberGiven(parser, "time")},
                    parser.isSet("range") ? rangeChoiceOf(parser.value("range")) : RangeChoice{},
                    parser.isSet("align"),
                    !parser.isSet("no-crop"),
                    !json && !parser.isSet("quiet")}};
}

void say(const Request& request, const QString& text)
{
    if (!request.quiet)
        printLine(text);
}

int fuse(const Request& request)
{
    const StackPlan plan = planStack(request.arguments, request.options);
    checkStackOutput(request.output, plan);
    say(request, QString("Merging %1; this takes about %2 of memory").arg(planText(plan), memoryText(plan.memory)));
    requireFusionMemory(plan.memory);

    const LiveLine::Style style = LiveLine::styleOfOutput(request.quiet);
    const ProgressBar total({}, LiveLine::Style::SILENT);
    const LoadedStack stack = loadStack(plan, request.options, style);
    if (stack.range)
        say(request, QString("Scaled to 8 bits: %1 is black, %2 white").arg(stack.range->low).arg(stack.range->high));
    for (const QString& name : stack.leftOut)
        std::fprintf(stderr, "tesmor fuse: %s: left out; it cannot be aligned\n", qPrintable(name));
    if (request.options.align)
        say(request, QString("Aligned with %1").arg(stack.reference));
    if (stack.shift)
        say(request,
            QString("The images are shifted by up to %1 pixels; --align puts them right").arg(*stack.shift, 0, 'f', 0));
    const LibrarySession session;
    const QImage output = mergeStack(plan, stack, style);
    say(request, QString("Writing %1, %2 pixels").arg(request.output, sizeText(output.size())));
    writeOutputFile(request.output, output);
    if (losesProfile(request.output, output))
        say(request, "The images' colour profile is left out, since this format cannot hold it; a TIFF file can");
    say(request, "Done in " + durationText(total.elapsed()));
    if (request.json) {
        QJsonObject result = figuresOf(stack, output);
        result["output"] = request.output;
        result["seconds"] = total.elapsed().count();
        printJson(result);
    }
    return STATUS_DONE;
}

int fuseEach(const Request& request)
{
    return fuseEach(EachRequest{request.arguments, request.output, request.format, request.skipExisting, request.quiet,
                                request.json, request.options});
}

} // namespace

int runFuse(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const auto request = parseArguments(QCoreApplication::arguments());
    if (!request)
        return STATUS_DONE;
    return request->each ? fuseEach(*request) : fuse(*request);
}

} // namespace tesmor::apps
