// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/batch_job.h"

#include "images/image_sources.h"
#include "images/picture_folder.h"
#include "terminal/errors.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

namespace tesmor::apps {

namespace {

// Without the ending of a file: "A3" for plate/A3/, plate/A3.tif, plate/A3.ome.tif and plate/A3.tif[3-20].
QString nameOf(const QString& stack)
{
    const QFileInfo info(QDir::cleanPath(QFileInfo(pagesNamedBy(stack).file).absoluteFilePath()));
    if (info.isDir())
        return info.fileName();
    QString name = info.completeBaseName();
    if (name.endsWith(".ome", Qt::CaseInsensitive))
        name.chop(4);
    return name.isEmpty() ? info.fileName() : name;
}

} // namespace

std::vector<BatchJob> batchJobs(const QStringList& stacks, const QString& folder, const QString& format)
{
    std::vector<BatchJob> jobs;
    QHash<QString, QString> stackOf;
    const QString home = QFileInfo(folder).canonicalFilePath();
    for (const QString& stack : stacks) {
        if (!home.isEmpty() && QFileInfo(stack).canonicalFilePath() == home)
            throw UsageError(stack + ": is the folder for the results, too; choose another one with -o");
        const QString output = QDir(folder).filePath(nameOf(stack) + '.' + format);
        if (stackOf.contains(output))
            throw UsageError(
                QString("%1 and %2 would both become %3; merge them apart").arg(stackOf[output], stack, output));
        stackOf[output] = stack;
        jobs.push_back({stack, output});
    }
    return jobs;
}

QStringList imagesOfStack(const QString& stack)
{
    if (!QFileInfo(stack).isDir())
        return {stack};
    const QStringList files = pictureFiles(stack);
    if (files.isEmpty())
        throw UserError(stack + ": holds no PNG, JPEG, TIFF or BMP images; leave it out");
    return files;
}

} // namespace tesmor::apps
