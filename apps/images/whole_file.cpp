// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/whole_file.h"

#include "terminal/interrupt.h"

#include <QFileInfo>
#include <QSaveFile>

namespace tesmor::apps {

namespace {

constexpr qint64 CHUNK = 1 << 20; // bytes written between two checks for an interruption

void open(QSaveFile& output)
{
    const QFileInfo info(output.fileName());
    if (!QFileInfo(info.path()).isDir())
        throw UserError(QString("%1: no such folder: %2; create it first").arg(output.fileName(), info.path()));
    if (info.isDir())
        throw UserError(output.fileName() + ": is a folder; name a file in it");
    if (!output.open(QIODevice::WriteOnly))
        throw writeError(output.fileName(), output);
}

} // namespace

UserError writeError(const QString& file, const QIODevice& failed)
{
    const QFileInfo info(file);
    const auto* device = qobject_cast<const QFileDevice*>(&failed);
    QString reason = failed.errorString();
    QString remedy = "choose another place";
    if (device != nullptr && device->error() == QFileDevice::ResourceError) {
        remedy = "make room, or choose another place";
    } else if (info.exists() && !info.isWritable()) {
        reason = "it is protected";
        remedy = "choose another name";
    } else if (!QFileInfo(info.path()).isWritable()) {
        reason = "no permission to write in " + info.path();
        remedy = "choose another folder";
    }
    return UserError(QString("%1: cannot be written (%2); %3").arg(file, reason, remedy));
}

void writeWhole(const QString& file, QIODevice& content)
{
    InterruptGuard guard;
    QSaveFile output(file);
    open(output);
    for (content.seek(0); !content.atEnd();) {
        const QByteArray chunk = content.read(CHUNK);
        if (chunk.isEmpty())
            throw writeError(file, content);
        for (qint64 done = 0; done < chunk.size();) { // a full disk takes a part before it says why it takes no more
            const qint64 count = output.write(chunk.constData() + done, chunk.size() - done);
            if (count <= 0)
                throw writeError(file, output);
            done += count;
        }
        throwIfInterrupted();
    }
    if (!output.flush() || !output.commit()) // commit() alone misses a failure of its own flush
        throw writeError(file, output);
}

void checkWritable(const QString& file)
{
    InterruptGuard guard;
    QSaveFile output(file);
    open(output);
    output.cancelWriting();
    throwIfInterrupted();
}

} // namespace tesmor::apps
