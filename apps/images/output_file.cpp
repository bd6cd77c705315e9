// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/output_file.h"

#include "images/tiff_writer.h"
#include "terminal/errors.h"
#include "terminal/interrupt.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>

#include <algorithm>

namespace tesmor::apps {

namespace {

constexpr int JPEG_QUALITY = 95;
constexpr int PNG_COMPRESSION = 45;      // zlib's level 4: half the time of its default for files 3 % larger
constexpr int JPEG_LONGEST_SIDE = 65500; // pixels
constexpr qint64 CHUNK = 1 << 20;        // bytes written between two checks for an interruption

QByteArray formatOf(const QString& file)
{
    const QByteArray suffix = QFileInfo(file).suffix().toLower().toLatin1();
    if (suffix == "jpg" || suffix == "jpeg")
        return "jpeg";
    if (suffix == "tif" || suffix == "tiff")
        return "tiff";
    if (suffix == "png" || suffix == "bmp")
        return suffix;
    throw UserError(file + ": unknown image format; choose a name that ends in .png, .jpg, .tif or .bmp");
}

QByteArray encode(const QString& file, const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (formatOf(file) == "tiff") {
        buffer.open(QIODevice::ReadWrite);
        TiffWriter writer(buffer, file, static_cast<std::uint64_t>(image.sizeInBytes()));
        writer.addPage(image);
        writer.finish();
        return bytes;
    }
    QImageWriter writer(&buffer, formatOf(file));
    if (writer.format() == "jpeg")
        writer.setQuality(JPEG_QUALITY);
    else if (writer.format() == "png")
        writer.setCompression(PNG_COMPRESSION);
    if (!writer.write(image))
        throw UserError(QString("%1: cannot be encoded (%2); choose another format").arg(file, writer.errorString()));
    return bytes;
}

UserError writeError(const QString& file, const QSaveFile& output)
{
    return UserError(
        QString("%1: cannot be written (%2); choose another place with -o").arg(file, output.errorString()));
}

} // namespace

void checkOutputFile(const QString& file, QSize size)
{
    if (formatOf(file) == "jpeg" && std::max(size.width(), size.height()) > JPEG_LONGEST_SIDE)
        throw UserError(
            QString("%1: JPEG allows only %2 pixels per side; choose .png or .tif").arg(file).arg(JPEG_LONGEST_SIDE));
    const QFileInfo info(file);
    if (!QFileInfo(info.path()).isDir())
        throw UserError(QString("%1: no such folder: %2; create it first").arg(file, info.path()));
    if (info.isDir())
        throw UserError(file + ": is a folder; name a file in it with -o");
    InterruptGuard guard;
    QSaveFile output(file);
    if (!output.open(QIODevice::WriteOnly))
        throw writeError(file, output);
    output.cancelWriting();
    throwIfInterrupted();
}

void writeOutputFile(const QString& file, const QImage& image)
{
    const QByteArray bytes = encode(file, image);
    InterruptGuard guard;
    QSaveFile output(file);
    if (!output.open(QIODevice::WriteOnly))
        throw writeError(file, output);
    for (qint64 done = 0; done < bytes.size();) {
        const qint64 count = output.write(bytes.constData() + done, std::min<qint64>(CHUNK, bytes.size() - done));
        if (count <= 0)
            throw writeError(file, output);
        done += count;
        throwIfInterrupted();
    }
    if (!output.flush() || !output.commit()) // commit() alone misses a failure of its own flush
        throw writeError(file, output);
}

} // namespace tesmor::apps
