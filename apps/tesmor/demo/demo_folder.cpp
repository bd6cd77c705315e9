// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/demo_folder.h"

#include "images/output_file.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace tesmor::apps {

namespace {

constexpr const char* TRACE = "focus-trace.csv";

QStringList sliceNames(const QString& folder)
{
    return QDir(folder).entryList({"slice-*.png"}, QDir::Files, QDir::Name);
}

} // namespace

DemoFolder::DemoFolder(const QString& path, const std::optional<QString>& planes)
    : path_(path.endsWith('/') ? path : path + "/")
{
    if (QFileInfo(path).exists() && !QFileInfo(path).isDir())
        throw UserError(path + ": not a folder; choose another with -o");
    if (!QDir().mkpath(path))
        throw UserError(path + ": cannot be created; check the permissions, or choose another folder with -o");
    if (planes && QDir(path) == QDir(*planes))
        throw UserError(path + ": contains the photographs, which might be overwritten; choose another folder with -o");
    checkOutputFile(file("fused.png"), {});
    const QStringList slices = sliceNames(path_);
    if (!slices.isEmpty() && !QFileInfo::exists(file(TRACE)))
        throw UserError(file(slices.first()) +
                        ": not written by a demo, and would be overwritten; choose another folder with -o");
}

void DemoFolder::writeTrace(const QByteArray& csv) const
{
    const InterruptGuard guard;
    QSaveFile output(file(TRACE));
    if (!output.open(QIODevice::WriteOnly) || output.write(csv) != csv.size() || !output.commit())
        throw UserError(QString("%1: cannot be written (%2); choose another folder with -o")
                            .arg(file(TRACE), output.errorString()));
    throwIfInterrupted();
}

void DemoFolder::writeSlices(const std::vector<QImage>& slices) const
{
    for (const QString& name : sliceNames(path_)) {
        if (!QFile::remove(file(name)))
            throw UserError(file(name) +
                            ": cannot be removed; check its permissions, or choose another folder with -o");
    }
    int number = 0;
    for (const QImage& slice : slices)
        writePicture(QString("slice-%1.png").arg(++number, 2, 10, QChar('0')), slice);
}

void DemoFolder::writePicture(const QString& name, const QImage& picture) const
{
    writeOutputFile(file(name), picture);
    throwIfInterrupted();
}

} // namespace tesmor::apps
