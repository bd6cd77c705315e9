// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/image_sources.h"

#include "images/image_files.h"
#include "images/page_range.h"
#include "images/tiff_file.h"
#include "terminal/errors.h"

#include <QFileInfo>

#include <algorithm>

namespace tesmor::apps {

namespace {

// A file may be called "a[1].tif", and even "a.tif[1]".
PagedName splitName(const QString& argument)
{
    return QFileInfo::exists(argument) ? PagedName{argument, {}} : pagedNameOf(argument);
}

void appendPages(const PagedName& name, std::vector<ImageSource>& images)
{
    const int count = TiffFile(name.file).pageCount();
    const PageRange pages = name.pages.value_or(PageRange{});
    if (pages.first > count || (name.pages && pages.last > count && pages.last != PageRange{}.last))
        throw UserError(QString("%1: has %2; choose from them, as in %1[1-%3]")
                            .arg(name.file, count == 1 ? QString("1 page") : QString("%1 pages").arg(count))
                            .arg(count));
    for (int page = pages.first; page <= std::min(pages.last, count); ++page)
        images.push_back(
            {name.file, page - 1, count == 1 ? name.file : QString("%1, page %2").arg(name.file).arg(page)});
}

} // namespace

std::vector<ImageSource> findImages(const QStringList& arguments)
{
    std::vector<ImageSource> images;
    for (const QString& argument : arguments) {
        const PagedName name = splitName(argument);
        requireReadableFile(name.file);
        if (TiffFile::isTiff(name.file))
            appendPages(name, images);
        else if (!name.pages)
            images.push_back({name.file, 0, name.file});
        else
            throw UserError(argument + ": only TIFF files have pages; leave the range out");
    }
    return images;
}

} // namespace tesmor::apps
