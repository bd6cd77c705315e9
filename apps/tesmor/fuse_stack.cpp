// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/fuse_stack.h"

#include "host/fusion_job.h"
#include "host/fusion_memory.h"
#include "images/image_sources.h"
#include "images/output_file.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"
#include "terminal/progress_bar.h"
#include "terminal/text.h"
#include "tesmor.h"
#include "tesmor/fuse_alignment.h"

#include <QColorSpace>
#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>
#include <new>

namespace tesmor::apps {

StackPlan planStack(const QStringList& arguments, const FuseOptions& options)
{
    const std::vector<ImageSource> images = findImages(arguments, options.planes);
    if (images.size() > MOST_FUSED_IMAGES)
        throw UserError(QString("%1 images are too many; the maximum is %2; choose pages as in stack.tif[1-%2]")
                            .arg(images.size())
                            .arg(MOST_FUSED_IMAGES));
    const ImageSeries series = examineSeries(images, LEAST_FUSED_SIDE);
    const std::uint64_t memory = fusionMemory(series.size, images.size());
    if (!options.align)
        return {series, memory};
    requireAlignment(series.sources.front().name, series.size);
    return {series, std::max(memory, alignmentMemory(series.size, images.size()))};
}

QString planText(const StackPlan& plan)
{
    const std::size_t count = plan.series.sources.size();
    return QString("%1 of %2 pixels")
        .arg(count == 1 ? QString("1 image") : QString("%1 images").arg(count), sizeText(plan.series.size));
}

void checkStackOutput(const QString& file, const StackPlan& plan)
{
    const QString output = QFileInfo(file).canonicalFilePath();
    for (const ImageSource& image : plan.series.sources) {
        if (!output.isEmpty() && QFileInfo(image.file).canonicalFilePath() == output)
            throw UserError(file + ": is one of the images to merge; choose another name with -o");
    }
    checkOutputFile(file, plan.series.size);
}

LoadedStack loadStack(const StackPlan& plan, const FuseOptions& options, LiveLine::Style style)
{
    const std::optional<DepthRange> range = findRange(plan.series, options.range, style);
    Frames frames = readFrames(plan.series, range, style);
    LoadedStack stack{std::move(frames.images), frames.grey, {}, {}, {}, QRect({}, plan.series.size), {}};
    if (range)
        stack.range = inUnitOf(plan.series, *range);
    if (!options.align) {
        stack.shift = options.lookForShift ? noticeableShift(stack.images) : std::nullopt;
        return stack;
    }
    QStringList names;
    for (const ImageSource& source : plan.series.sources)
        names.append(source.name);
    AlignedImages aligned = alignImages(stack.images, names, options.crop, style);
    stack.reference = aligned.reference;
    stack.leftOut = aligned.leftOut;
    stack.part = aligned.part;
    return stack;
}

QImage mergeStack(const StackPlan& plan, const LoadedStack& stack, LiveLine::Style style)
{
    const QImage& first = stack.images.front();
    QImage output(first.size(), QImage::Format_BGR888);
    if (output.isNull())
        throw std::bad_alloc();
    output.setDotsPerMeterX(first.dotsPerMeterX());
    output.setDotsPerMeterY(first.dotsPerMeterY());
    output.setColorSpace(first.colorSpace());
    std::int32_t result = TESMOR_SUCCESS;
    {
        ProgressBar bar("Merging", style);
        result = mergeImages(stack.images, output, [&](int percent) { bar.show(percent); });
    }
    if (result == TESMOR_NO_MEMORY)
        throw fusionMemoryError(plan.memory);
    if (result == TESMOR_ABORTED)
        throw Interrupted();
    if (output.size() != stack.part.size())
        output = output.copy(stack.part);
    if (stack.grey)
        output.convertTo(QImage::Format_Grayscale8);
    if (output.isNull())
        throw std::bad_alloc();
    return output;
}

QJsonObject figuresOf(const LoadedStack& stack, const QImage& output)
{
    return {{"images", static_cast<qsizetype>(stack.images.size())},
            {"leftOut", QJsonArray::fromStringList(stack.leftOut)},
            {"width", output.width()},
            {"height", output.height()},
            {"range", stack.range ? QJsonArray{stack.range->low, stack.range->high} : QJsonValue()}};
}

} // namespace tesmor::apps
