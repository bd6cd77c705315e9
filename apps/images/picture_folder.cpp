// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/picture_folder.h"

#include "terminal/errors.h"

#include <QCollator>
#include <QDir>

#include <algorithm>

namespace tesmor::apps {

QStringList pictureFiles(const QString& folder)
{
    const QFileInfo info(folder);
    if (!info.exists())
        throw UserError(folder + ": no such folder; check the name");
    if (!info.isDir())
        throw UserError(folder + ": not a folder; name the folder with the photographs");
    const QDir directory(folder);
    if (!info.isReadable() || !info.isExecutable())
        throw UserError(folder + ": cannot be read; check its permissions");
    QStringList names =
        directory.entryList({"*.png", "*.jpg", "*.jpeg", "*.tif", "*.tiff", "*.bmp"}, QDir::Files, QDir::NoSort);
    QCollator collator(QLocale::c());
    collator.setNumericMode(true);
    std::ranges::sort(names, [&](const QString& a, const QString& b) {
        const int order = collator.compare(a, b);
        return order != 0 ? order < 0 : a < b;
    });
    QStringList files;
    for (const QString& name : names)
        files.append(directory.filePath(name));
    return files;
}

} // namespace tesmor::apps
