// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/image_sources.h"

#include "images/image_files.h"
#include "images/tiff_file.h"
#include "terminal/errors.h"

#include <QFileInfo>

namespace tesmor::apps {

namespace {

void appendPages(const PagedName& name, const PlaneChoice& choice, std::vector<ImageSource>& images)
{
    TiffFile reader(name.file);
    const DescribedFile file = reader.describe();
    const StackDescription stack = describeStack(file);
    const std::vector<Plane> planes = choosePlanes(name.file, stack, choice);
    const auto count = static_cast<int>(planes.size());
    const PageRange pages = name.pages.value_or(PageRange{1, count});
    const int last = pages.last.value_or(count);
    if (last > count || pages.first > count)
        throw UserError(QString("%1: there %2; choose from them, as in %1[1-%3]")
                            .arg(name.file, count == 1 ? QString("is only 1 page") : QString("are %1 pages").arg(count))
                            .arg(count));
    for (int i = pages.first - 1; i < last; ++i) {
        const int page = planes[static_cast<std::size_t>(i)].page;
        const bool isOnly = file.pageCount == 1 && !stack.behindOnePage;
        const QString text = isOnly ? name.file : QString("%1, page %2").arg(name.file).arg(page + 1);
        if (stack.behindOnePage)
            images.push_back({name.file, 0, text, stack.scale, page});
        else
            images.push_back({name.file, reader.find(page, text), text, stack.scale});
    }
}

} // namespace

PagedName pagesNamedBy(const QString& argument)
{
    return QFileInfo::exists(argument) ? PagedName{argument, {}} : pagedNameOf(argument);
}

std::vector<ImageSource> findImages(const QStringList& arguments, const PlaneChoice& choice)
{
    std::vector<ImageSource> images;
    for (const QString& argument : arguments) {
        const PagedName name = pagesNamedBy(argument);
        requireReadableFile(name.file);
        if (TiffFile::isTiff(name.file)) {
            appendPages(name, choice, images);
        } else if (name.pages) {
            throw UserError(argument + ": only TIFF files have pages; leave the range out");
        } else {
            choosePlanes(name.file, {plainPlanes(1), {}, {}}, choice);
            images.push_back({name.file, 0, name.file});
        }
    }
    return images;
}

} // namespace tesmor::apps
