// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/subcommands.h"

#include "host/fusion_job.h"
#include "host/fusion_memory.h"
#include "host/library_session.h"
#include "images/image_series.h"
#include "images/output_file.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"
#include "terminal/progress_bar.h"
#include "terminal/text.h"
#include "tesmor.h"

#include <QColorSpace>
#include <QCoreApplication>
#include <QFileInfo>

#include <optional>
#include <vector>

namespace tesmor::apps {

namespace {

constexpr const char* DESCRIPTION =
    "Merges images of one field, taken at different focus positions, into one that is sharp throughout.\n\n"
    "IMAGE... are 1 to 128 PNG, JPEG, TIFF or BMP files of one size, in any order. They should show the same field\n"
    "without any shift. Transparency is dropped, 16-bit images are reduced to 8 bits, and the orientation stored in\n"
    "a file is applied.\n\n"
    "Example:\n"
    "  tesmor fuse -o sharp.png slices/*.png\n\n"
    "Ctrl-C stops the run and leaves the output file as it was. Exit status: 0 done, 1 failed, 2 wrong usage,\n"
    "130 interrupted.";

struct Request {
    QStringList files;
    QString output;
    bool quiet;
    bool json;
};

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
        {{"q", "quiet"}, "Print nothing but errors."},
        {"json",
         "Like --quiet, but print the result as one line of JSON, with output, images, width, height and seconds."},
    });
    if (!parseCommandLine(parser, arguments))
        return std::nullopt;
    if (parser.positionalArguments().isEmpty())
        throw UsageError("no images named");
    const bool json = parser.isSet("json");
    return Request{parser.positionalArguments(), parser.value("output"), json || parser.isSet("quiet"), json};
}

// The size that all images share.
QSize checkImages(const QStringList& files)
{
    if (files.size() > MOST_FUSED_IMAGES)
        throw UserError(QString("%1 images are too many; the maximum is %2").arg(files.size()).arg(MOST_FUSED_IMAGES));
    return readCommonSize(files, LEAST_FUSED_SIDE);
}

void checkOutput(const Request& request, QSize size)
{
    const QString output = QFileInfo(request.output).canonicalFilePath();
    for (const QString& file : request.files) {
        if (!output.isEmpty() && QFileInfo(file).canonicalFilePath() == output)
            throw UserError(request.output + ": is one of the images to merge; choose another name with -o");
    }
    checkOutputFile(request.output, size);
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

int fuse(const Request& request)
{
    const QSize size = checkImages(request.files);
    const std::uint64_t memory = fusionMemory(size, static_cast<std::size_t>(request.files.size()));
    checkOutput(request, size);
    say(request,
        QString("Merging %1 of %2 pixels; this takes about %3 of memory")
            .arg(request.files.size() == 1 ? QString("1 image") : QString("%1 images").arg(request.files.size()),
                 sizeText(size), memoryText(memory)));
    requireFusionMemory(memory);

    const LiveLine::Style style = LiveLine::styleOfOutput(request.quiet);
    ProgressBar total({}, LiveLine::Style::SILENT);
    const std::vector<QImage> images = readFrames(request.files, size, style);
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
    say(request, "Writing " + request.output);
    writeOutputFile(request.output, output);
    say(request, "Done in " + durationText(total.elapsed()));
    if (request.json)
        printJson({{"output", request.output},
                   {"images", request.files.size()},
                   {"width", size.width()},
                   {"height", size.height()},
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
