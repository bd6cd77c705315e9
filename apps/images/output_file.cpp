// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/output_file.h"

#include "images/image_files.h"
#include "images/tiff_writer.h"
#include "images/whole_file.h"
#include "terminal/errors.h"

#include <QBuffer>
#include <QColorSpace>
#include <QFileInfo>
#include <QImageWriter>
#include <QTemporaryFile>

#include <algorithm>

namespace tesmor::apps {

namespace {

constexpr int JPEG_QUALITY = 95;
constexpr int PNG_COMPRESSION = 45;      // zlib's level 4: half the time of its default for files 3 % larger
constexpr int JPEG_LONGEST_SIDE = 65500; // pixels

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

// A profile for colours says nothing about a grey image, and the other way round.
QImage withFittingProfile(QImage image)
{
    constexpr qsizetype KIND_OFFSET = 16; // in an ICC profile
    const QByteArray kind = image.colorSpace().iccProfile().mid(KIND_OFFSET, 4);
    if (kind != (isGrey(image) ? "GRAY" : "RGB "))
        image.setColorSpace({});
    return image;
}

QByteArray encode(const QString& file, const QImage& given)
{
    const QImage image = withFittingProfile(given);
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

} // namespace

void checkOutputFile(const QString& file, QSize size)
{
    if (formatOf(file) == "jpeg" && std::max(size.width(), size.height()) > JPEG_LONGEST_SIDE)
        throw UserError(
            QString("%1: JPEG allows only %2 pixels per side; choose .png or .tif").arg(file).arg(JPEG_LONGEST_SIDE));
    checkWritable(file);
}

bool losesProfile(const QString& file, const QImage& image)
{
    const QColorSpace profile = withFittingProfile(image).colorSpace();
    const QByteArray format = formatOf(file);
    return !profile.iccProfile().isEmpty() &&
           (format == "bmp" || (format == "png" && !profile.isValid()) || (format == "jpeg" && isGrey(image)));
}

void writeOutputFile(const QString& file, const QImage& image)
{
    QByteArray bytes = encode(file, image);
    QBuffer content(&bytes);
    content.open(QIODevice::ReadOnly);
    writeWhole(file, content);
}

void writeOutputPages(const QString& file, const QList<QImage>& images, int dotsPerMetre)
{
    if (formatOf(file) != "tiff")
        throw UserError(file + ": only a TIFF holds several images; choose a name that ends in .tif");
    checkWritable(file);
    QTemporaryFile scratch(QFileInfo(file).path() + "/XXXXXX"); // pages are read while they are written
    if (!scratch.open())
        throw writeError(file, scratch);
    std::uint64_t mostBytes = 0;
    for (const QImage& image : images)
        mostBytes += static_cast<std::uint64_t>(image.sizeInBytes());
    try {
        TiffWriter writer(scratch, file, mostBytes);
        for (QImage image : images) {
            image.setDotsPerMeterX(dotsPerMetre);
            image.setDotsPerMeterY(dotsPerMetre);
            writer.addPage(image);
        }
        writer.finish();
    } catch (const UserError&) {
        if (scratch.error() != QFileDevice::NoError)
            throw writeError(file, scratch);
        throw;
    }
    writeWhole(file, scratch);
}

} // namespace tesmor::apps
