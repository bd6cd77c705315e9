// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/camera/slice_folder.h"

#include "images/output_file.h"
#include "terminal/errors.h"

#include <QDir>
#include <QFileInfo>

#include <new>

namespace tesmor::apps {

SliceFolder::SliceFolder(const QString& path) : path_(path)
{
    if (!QDir().mkpath(path))
        throw UserError(path + ": the folder cannot be made; choose another with -o");
    const QStringList there = QDir(path).entryList({"slice-*.png"}, QDir::Files, QDir::Name);
    if (!there.isEmpty())
        throw UserError(QString("%1: holds %2 already; choose another folder with -o").arg(path, there.first()));
    checkOutputFile(file(1), {});
}

void SliceFolder::write(const std::vector<QImage>& slices) const
{
    int number = 0;
    for (const QImage& slice : slices) {
        if (slice.isNull())
            throw std::bad_alloc();
        writeOutputFile(file(++number), slice);
    }
}

QString SliceFolder::file(int number) const
{
    return QDir(path_).filePath(QString("slice-%1.png").arg(number, 3, 10, QChar('0')));
}

} // namespace tesmor::apps
