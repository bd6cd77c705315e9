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

namespace tesmor::apps {

namespace {

// Each takes up to 16 bytes per pixel while it decodes: together no more than a fusion takes afterwards.
constexpr int MOST_DECODERS = 3;

struct Decoded {
    QImage image;
    std::exception_ptr failure;
};

Decoded decode(const QString& file, QSize size) noexcept
{
    try {
        return {readFrame(file, size), {}};
    } catch (...) {
        return {{}, std::current_exception()};
    }
}

} // namespace

QSize readCommonSize(const QStringList& files, int leastSide)
{
    const DecoderSession session;
    const QString& first = files.first();
    const QSize size = readImageSize(first);
    if (std::min(size.width(), size.height()) < leastSide)
        throw UserError(QString("%1: only %2 pixels; the minimum is %3 x %3")
                            .arg(first, sizeText(size), QString::number(leastSide)));
    for (const QString& file : files) {
        const QSize other = readImageSize(file);
        if (other != size)
            throw UserError(QString("%1: %2 pixels, but %3 has %4; all images must have the same size")
                                .arg(file, sizeText(other), first, sizeText(size)));
    }
    return size;
}

std::vector<QImage> readFrames(const QStringList& files, QSize size, LiveLine::Style style)
{
    ProgressBar bar("Reading", style);
    const DecoderSession session;
    QThreadPool decoders;
    decoders.setMaxThreadCount(std::min(QThread::idealThreadCount(), MOST_DECODERS));
    QFuture<Decoded> decoded =
        QtConcurrent::mapped(&decoders, files, [size](const QString& file) { return decode(file, size); });
    std::vector<QImage> images;
    for (int i = 0; i < files.size(); ++i) {
        bar.show(static_cast<int>(100 * i / files.size()));
        const Decoded next = decoded.resultAt(i); // waits for it
        if (next.failure) {
            decoded.cancel();
            decoded.waitForFinished();
            std::rethrow_exception(next.failure);
        }
        images.push_back(next.image);
    }
    return images;
}

} // namespace tesmor::apps
