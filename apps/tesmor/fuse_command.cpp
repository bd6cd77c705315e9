// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/subcommands.h"

#include "host/fusion_job.h"
#include "host/fusion_memory.h"
#include "host/library_session.h"
#include "images/image_series.h"
#include "images/image_sources.h"
#include "images/output_file.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"
#include "terminal/progress_bar.h"
#include "terminal/text.h"
#include "tesmor.h"
#include "tesmor/fuse_alignment.h"

#include <QColorSpace>
#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>

#include <optional>
#include <vector>

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
    "  tesmor fuse -o sharp.tif 'stack.tif[3-20]'\n\n"
    "Ctrl-C stops the run and leaves the output file as it was. Exit status: 0 done, 1 failed, 2 wrong usage,\n"
    "130 interrupted.";

struct Request {
    QStringList images;
    QString output;
    PlaneChoice planes;
    RangeChoice range;
    bool align;
    bool crop;
    bool quiet;
    bool json;
};

std::optional<int> numberGiven(const QCommandLineParser& parser, const QString& option)
{
    if (!parser.isSet(option))
        return std::nullopt;
    return static_cast<int>(integerOf("--" + option, parser.value(option), 1, 1'000'000));
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
                 "range and seconds."},
    });
    if (!parseCommandLine(parser, arguments))
        return std::nullopt;
    if (parser.positionalArguments().isEmpty())
        throw UsageError("no images named");
    if (parser.isSet("no-crop") && !parser.isSet("align"))
        throw UsageError("--no-crop does nothing without --align");
    const bool json = parser.isSet("json");
    return Request{parser.positionalArguments(),
                   parser.value("output"),
                   PlaneChoice{numberGiven(parser, "channel"), numberGiven(parser, "time")},
                   parser.isSet("range") ? rangeChoiceOf(parser.value("range")) : RangeChoice{},
                   parser.isSet("align"),
                   !parser.isSet("no-crop"),
                   json || parser.isSet("quiet"),
                   json};
}

ImageSeries checkImages(const Request& request)
{
    const std::vector<ImageSource> images = findImages(request.images, request.planes);
    if (images.size() > MOST_FUSED_IMAGES)
        throw UserError(QString("%1 images are too many; the maximum is %2; choose pages as in stack.tif[1-%2]")
                            .arg(images.size())
                            .arg(MOST_FUSED_IMAGES));
    return examineSeries(images, LEAST_FUSED_SIDE);
}

void checkOutput(const Request& request, const ImageSeries& series)
{
    const QString output = QFileInfo(request.output).canonicalFilePath();
    for (const ImageSource& image : series.sources) {
        if (!output.isEmpty() && QFileInfo(image.file).canonicalFilePath() == output)
            throw UserError(request.output + ": is one of the images to merge; choose another name with -o");
    }
    checkOutputFile(request.output, series.size);
}

void say(const Request& request, const QString& text)
{
    if (!request.quiet)
        printLine(text);
}

// With the resolution and the colour profile of the first image.
QImage makeOutput(const QImage& first)
{
    QImage output(first.size(), QImage::Format_BGR888);
    if (output.isNull())
        throw std::bad_alloc();
    output.setDotsPerMeterX(first.dotsPerMeterX());
    output.setDotsPerMeterY(first.dotsPerMeterY());
    output.setColorSpace(first.colorSpace());
    return output;
}

// As far as it is asked for.
AlignedImages align(const Request& request, const ImageSeries& series, std::vector<QImage>& images,
                    LiveLine::Style style)
{
    if (!request.align) {
        if (const auto shift = request.quiet ? std::nullopt : noticeableShift(images))
            say(request,
                QString("The images are shifted by up to %1 pixels; --align puts them right").arg(*shift, 0, 'f', 0));
        return {{}, {}, QRect({}, series.size)};
    }
    QStringList names;
    for (const ImageSource& source : series.sources)
        names.append(source.name);
    const AlignedImages aligned = alignImages(images, names, request.crop, style);
    for (const QString& name : aligned.leftOut)
        std::fprintf(stderr, "tesmor fuse: %s: left out; it cannot be aligned\n", qPrintable(name));
    say(request, QString("Aligned with %1, the sharpest one").arg(aligned.reference));
    return aligned;
}

int fuse(const Request& request)
{
    const ImageSeries series = checkImages(request);
    const QSize size = series.size;
    const auto count = static_cast<qsizetype>(series.sources.size());
    if (request.align)
        requireAlignment(size);
    const std::uint64_t memory = std::max(fusionMemory(size, series.sources.size()),
                                          request.align ? alignmentMemory(size, series.sources.size()) : 0);
    checkOutput(request, series);
    say(request, QString("Merging %1 of %2 pixels; this takes about %3 of memory")
                     .arg(count == 1 ? QString("1 image") : QString("%1 images").arg(count), sizeText(size),
                          memoryText(memory)));
    requireFusionMemory(memory);

    const LiveLine::Style style = LiveLine::styleOfOutput(request.quiet);
    ProgressBar total({}, LiveLine::Style::SILENT);
    const std::optional<DepthRange> range = findRange(series, request.range, style);
    const DepthRange shown = inUnitOf(series, range.value_or(FULL_RANGE));
    if (range)
        say(request, QString("Scaling to 8 bits: %1 becomes black, %2 white").arg(shown.low).arg(shown.high));
    auto [images, grey] = readFrames(series, range, style);
    const AlignedImages aligned = align(request, series, images, style);
    QImage output = makeOutput(images.front());
    std::int32_t result = TESMOR_SUCCESS;
    {
        const LibrarySession session;
        ProgressBar bar("Merging", style);
        result = mergeImages(images, output, [&](int percent) { bar.show(percent); });
    }
    if (result == TESMOR_NO_MEMORY)
        throw fusionMemoryError(memory);
    if (result == TESMOR_ABORTED)
        throw Interrupted();
    if (output.size() != aligned.part.size())
        output = output.copy(aligned.part);
    if (output.isNull())
        throw std::bad_alloc();
    say(request, QString("Writing %1, %2 pixels").arg(request.output, sizeText(output.size())));
    writeOutputFile(request.output, grey ? output.convertToFormat(QImage::Format_Grayscale8) : output);
    say(request, "Done in " + durationText(total.elapsed()));
    if (request.json)
        printJson({{"output", request.output},
                   {"images", static_cast<qint64>(images.size())},
                   {"leftOut", QJsonArray::fromStringList(aligned.leftOut)},
                   {"width", output.width()},
                   {"height", output.height()},
                   {"range", range ? QJsonArray{shown.low, shown.high} : QJsonValue()},
                   {"seconds", total.elapsed().count()}});
    return STATUS_DONE;
}

} // namespace

int runFuse(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const auto request = parseArguments(QCoreApplication::arguments());
    return request ? fuse(*request) : STATUS_DONE;
}

} // namespace tesmor::apps
