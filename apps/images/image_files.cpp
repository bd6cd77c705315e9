// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/image_files.h"

#include "images/decoder_messages.h"
#include "images/tiff_file.h"
#include "terminal/errors.h"
#include "terminal/text.h"

#include <QFileInfo>
#include <QImageReader>
#include <QtEndian>

namespace tesmor::apps {

namespace {

// Throws unless the file is an image of a known format. TIFF files are not for Qt: see TiffFile.
void open(QImageReader& reader, const QString& file)
{
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    reader.setFileName(file);
    if (!QList<QByteArray>{"png", "jpg", "jpeg", "bmp"}.contains(reader.format()))
        throw UserError(file + ": not a PNG, JPEG, TIFF or BMP image; convert it, or leave it out");
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

ImageHeader readHeader(const QString& file)
{
    QImageReader reader;
    open(reader, file);
    const QSize size = reader.size();
    if (size.isEmpty())
        throw damaged(file, "cannot read its size");
    const bool lies = reader.transformation() & QImageIOHandler::TransformationRotate90;
    return {lies ? size.transposed() : size, isDeep(reader.imageFormat())};
}

QImage decode(const QString& file)
{
    const DecoderMessages messages;
    QImageReader reader;
    open(reader, file);
    QImage image = reader.read();
    if (image.isNull())
        throw damaged(file, reader.errorString());
    if (messages.tellOfCutFile() || isCutBmp(file))
        throw damaged(file, "the end is missing");
    return image;
}

} // namespace

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

bool isDeep(QImage::Format format)
{
    return format == QImage::Format_Grayscale16 || format == QImage::Format_RGBX64 || format == QImage::Format_RGBA64 ||
           format == QImage::Format_RGBA64_Premultiplied;
}

bool isGrey(const QImage& image)
{
    return image.depth() <= 8 ? image.allGray() : image.format() == QImage::Format_Grayscale16;
}

ImageReader::ImageReader() = default;
ImageReader::~ImageReader() = default;

// Null if the source is not in a TIFF file.
TiffFile* ImageReader::tiffOf(const ImageSource& source)
{
    if (tiff_ && file_ == source.file)
        return tiff_.get();
    requireReadableFile(source.file);
    tiff_ = TiffFile::isTiff(source.file) ? std::make_unique<TiffFile>(source.file) : nullptr;
    file_ = source.file;
    return tiff_.get();
}

ImageHeader ImageReader::readHeader(const ImageSource& source)
{
    TiffFile* const tiff = tiffOf(source);
    return tiff != nullptr ? tiff->readHeader(source) : apps::readHeader(source.file);
}

QImage ImageReader::read(const ImageSource& source, QSize size)
{
    TiffFile* const tiff = tiffOf(source);
    QImage image = tiff != nullptr ? tiff->read(source) : decode(source.file);
    if (image.size() != size)
        throw UserError(QString("%1: changed from %2 to %3 pixels in the meantime; try again")
                            .arg(source.name, sizeText(size), sizeText(image.size())));
    return image;
}

} // namespace tesmor::apps
