#include "images/image_series.h"

#include "images/image_files.h"
#include "terminal/errors.h"
#include "terminal/progress_bar.h"
#include "terminal/text.h"

#include <algorithm>

namespace tesmor::apps {

QSize readCommonSize(const QStringList& files, int leastSide)
{
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
    std::vector<QImage> images;
    for (const QString& file : files) {
        bar.show(static_cast<int>(100 * images.size() / static_cast<std::size_t>(files.size())));
        images.push_back(readFrame(file, size));
    }
    return images;
}

} // namespace tesmor::apps
