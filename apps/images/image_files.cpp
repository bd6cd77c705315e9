// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/image_files.h"

#include "images/decoder_messages.h"
#include "terminal/errors.h"
#include "terminal/text.h"

#include <QFileInfo>
#include <QImageReader>
#include <QtEndian>

namespace tesmor::apps {

namespace {

void requireReadableFile(const QString& file)
{
    const QFileInfo info(file);
    if (!info.exists())
        throw UserError(file + ": no such file; check the name");
    if (info.isDir())
        throw UserError(file + ": is a folder; name the images in it, such as " + file + "/*.png");
    if (!info.isFile())
        throw UserError(file + ": not a regular file; copy the image to one");
    if (!QFile(file).open(QIODevice::ReadOnly))
        throw UserError(file + ": cannot be read; check its permissions");
}

// Throws unless the file is an image of a known format.
void open(QImageReader& reader, const QString& file)
{
    requireReadableFile(file);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    reader.setFileName(file);
    if (!QList<QByteArray>{"png", "jpg", "jpeg", "tif", "tiff", "bmp"}.contains(reader.format()))
        throw UserError(file + ": not a PNG, JPEG, TIFF or BMP image; convert it, or leave it out");
    if (reader.imageCount() > 1)
        throw UserError(QString("%1: contains %2 images; save each to its own file")
                            .arg(file, QString::number(reader.imageCount())));
}

UserError damaged(const QString& file, const QString& detail)
{
    return UserError(QString("%1: damaged (%2); copy or save it again").arg(file, detail));
}

// Qt reads the missing end of a truncated BMP file as black pixels.
bool isCutBmp(const QString& name)
{
    constexpr qint64 SIZE_OFFSET = 2; // of the file size in the header: 4 bytes after the letters BM
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const QByteArray start = file.read(SIZE_OFFSET + 4);
    return start.startsWith("BM") && file.size() < qFromLittleEndian<quint32>(start.constData() + SIZE_OFFSET);
}

} // namespace

QSize readImageSize(const QString& file)
{
    QImageReader reader;
    open(reader, file);
    const QSize size = reader.size();
    if (size.isEmpty())
        throw damaged(file, "cannot read its size");
    return reader.transformation() & QImageIOHandler::TransformationRotate90 ? size.transposed() : size;
}

QImage readFrame(const QString& file, QSize size)
{
    const DecoderMessages messages;
    QImageReader reader;
    open(reader, file);
    QImage image = reader.read();
    if (image.isNull())
        throw damaged(file, reader.errorString());
    if (messages.tellOfCutFile() || isCutBmp(file))
        throw damaged(file, "the end is missing");
    if (image.size() != size)
        throw UserError(QString("%1: changed from %2 to %3 pixels in the meantime; try again")
                            .arg(file, sizeText(size), sizeText(image.size())));
    image.convertTo(QImage::Format_BGR888);
    if (image.isNull())
        throw std::bad_alloc();
    return image;
}

} // namespace tesmor::apps
