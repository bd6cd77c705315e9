// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/image_series.h"

#include "images/decoder_messages.h"
#include "images/image_files.h"
#include "terminal/errors.h"
#include "terminal/progress_bar.h"
#include "terminal/text.h"

#include <QFuture>
#include <QThread>
#include <QThreadPool>
#include <QtConcurrent>

#include <algorithm>
#include <exception>
#include <functional>
#include <mutex>

namespace tesmor::apps {

namespace {

// Each takes up to 16 bytes per pixel while it decodes: together no more than a fusion takes afterwards.
constexpr int MOST_DECODERS = 3;

struct Decoded {
    QImage image;
    bool grey;
    std::exception_ptr failure;
};

// On a decoder's thread.
using Work = std::function<QImage(const QImage&)>;

Decoded decode(const ImageSource& source, QSize size, const Work& work) noexcept
{
    static thread_local ImageReader reader; // until the thread ends, with its pool
    try {
        const QImage image = reader.read(source, size);
        return {work(image), isGrey(image), {}};
    } catch (...) {
        return {{}, false, std::current_exception()};
    }
}

Frames decodeAll(const ImageSeries& series, const Work& work, const QString& label, LiveLine::Style style)
{
    ProgressBar bar(label, style);
    const DecoderSession session;
    QThreadPool decoders;
    decoders.setMaxThreadCount(std::min(QThread::idealThreadCount(), MOST_DECODERS));
    QFuture<Decoded> decoded = QtConcurrent::mapped(
        &decoders, series.sources, [&](const ImageSource& source) { return decode(source, series.size, work); });
    Frames frames{{}, true};
    const auto count = static_cast<int>(series.sources.size());
    for (int i = 0; i < count; ++i) {
        bar.show(100 * i / count);
        const Decoded next = decoded.resultAt(i); // waits for it
        if (next.failure) {
            decoded.cancel();
            decoded.waitForFinished();
            std::rethrow_exception(next.failure);
        }
        frames.images.push_back(next.image);
        frames.grey = frames.grey && next.grey;
    }
    return frames;
}

DepthRange usedRange(const ImageSeries& series, LiveLine::Style style)
{
    ValueCounts total;
    std::mutex mutex;
    const auto count = [&](const QImage& image) {
        ValueCounts counts;
        counts.add(image);
        const std::lock_guard lock(mutex);
        total.add(counts);
        return QImage();
    };
    decodeAll(series, count, "Finding the range", style);
    return total.usedRange();
}

QImage toFrame(const QImage& image)
{
    QImage frame = image.convertToFormat(QImage::Format_BGR888);
    if (frame.isNull())
        throw std::bad_alloc();
    return frame;
}

// In the unit of deep images.
DepthRange givenRange(const ImageSeries& series, DepthRange range)
{
    if (series.deepCount > 0)
        return range;
    if (range.high > 255)
        throw UserError(
            QString("--range ends at %1, but the images have 8 bits; it must end at 255 or below").arg(range.high));
    return {257 * range.low, 257 * range.high};
}

} // namespace

ImageSeries examineSeries(const std::vector<ImageSource>& sources, int leastSide)
{
    const DecoderSession session;
    const ImageSource& first = sources.front();
    ImageReader reader;
    const QSize size = reader.readHeader(first).size;
    if (std::min(size.width(), size.height()) < leastSide)
        throw UserError(QString("%1: only %2 pixels; the minimum is %3 x %3")
                            .arg(first.name, sizeText(size), QString::number(leastSide)));
    ImageSeries series{sources, size, 0};
    for (const ImageSource& source : sources) {
        const ImageHeader header = reader.readHeader(source);
        if (header.size != size)
            throw UserError(
                QString("%1: %2 pixels, but %3 has %4; all images must have the same size; leave out the others")
                    .arg(source.name, sizeText(header.size), first.name, sizeText(size)));
        series.deepCount += header.deep ? 1 : 0;
    }
    return series;
}

std::optional<DepthRange> findRange(const ImageSeries& series, const RangeChoice& choice, LiveLine::Style style)
{
    const bool allDeep = series.deepCount == series.sources.size();
    switch (choice.kind) {
    case RangeChoice::Kind::GIVEN:
        return givenRange(series, choice.given);
    case RangeChoice::Kind::AUTO:
        return usedRange(series, style);
    case RangeChoice::Kind::UNSET:
        if (allDeep)
            return usedRange(series, style);
        break;
    case RangeChoice::Kind::FULL:
        break;
    }
    return series.deepCount > 0 ? std::optional(FULL_RANGE) : std::nullopt;
}

DepthRange inUnitOf(const ImageSeries& series, DepthRange range)
{
    return series.deepCount > 0 ? range : DepthRange{range.low / 257, range.high / 257};
}

Frames readFrames(const ImageSeries& series, const std::optional<DepthRange>& range, LiveLine::Style style)
{
    const auto work = [&](const QImage& image) { return range ? scaleToFrame(image, *range) : toFrame(image); };
    return decodeAll(series, work, "Reading", style);
}

} // namespace tesmor::apps
