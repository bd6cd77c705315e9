// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/stack_description.h"
#include "terminal/errors.h"

#include <QHash>

#include <algorithm>

namespace tesmor::apps {

StackDescription readImagejLines(const DescribedFile& pages)
{
    DescribedFile file = pages;
    QHash<QByteArray, QByteArray> values;
    for (const QByteArray& line : file.description.split('\n')) {
        const qsizetype equals = line.indexOf('=');
        if (equals > 0)
            values[line.first(equals)] = line.sliced(equals + 1).trimmed();
    }
    const auto count = [&](const char* name) {
        return std::clamp<std::int64_t>(values.value(name).toInt(), 1, MOST_PAGES);
    };
    const std::int64_t channels = count("channels");
    const std::int64_t images = channels * count("slices") * count("frames");
    const bool isBehind = liesBehindOnePage(file, count("images")); // as in files above 4 GB
    if (isBehind)
        file.pageCount = static_cast<int>(count("images"));
    const bool isPart = file.pageCount == 1; // a page taken out of a stack still has the lines of the whole
    if (!isPart && (channels > 1 || count("frames") > 1) && images != file.pageCount)
        throw UserError(QString("%1: says that it has %2 images, but has %3 pages; save it again")
                            .arg(file.name)
                            .arg(images)
                            .arg(file.pageCount));

    StackDescription stack{plainPlanes(file.pageCount), {}, {}, isBehind};
    stack.scale.resolutionUnit = metresOf(QString::fromLatin1(values.value("unit")));
    if (isPart || images != file.pageCount)
        return stack;
    for (Plane& plane : stack.planes) { // channels follow each other fastest, then slices, then times
        plane.channel = static_cast<int>(plane.page % channels);
        plane.slice = static_cast<int>(plane.page / channels % count("slices"));
        plane.time = static_cast<int>(plane.page / channels / count("slices"));
    }
    return stack;
}

} // namespace tesmor::apps
