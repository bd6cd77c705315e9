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
        throw UserError(file + ": does not exist; check the name");
    if (info.isDir())
        throw UserError(file + ": is a folder; name the images in it, as in " + file + "/*.png");
    if (!info.isFile())
        throw UserError(file + ": is no regular file; copy the image to one");
    if (!QFile(file).open(QIODevice::ReadOnly))
        throw UserError(file + ": cannot be read; check its permissions");
}

// Throws unless the file is an image of a known format.
void open(QImageReader& reader, const QString& file)
{
    requireReadableFile(file);
    QImageReader::setAllocationLimit(0); // the caller compares with the memory that there is
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    reader.setFileName(file);
    if (!QList<QByteArray>{"png", "jpg", "jpeg", "tif", "tiff", "bmp"}.contains(reader.format()))
        throw UserError(file + ": is no PNG, JPEG, TIFF or BMP image; convert it, or leave it out");
    if (reader.imageCount() > 1)
        throw UserError(QString("%1: holds %2 images; save each as a file of its own")
                            .arg(file, QString::number(reader.imageCount())));
}

UserError damaged(const QString& file, const QString& detail)
{
    return UserError(QString("%1: is damaged (%2); copy or save it anew").arg(file, detail));
}

// Qt takes the missing end of a BMP file for black pixels.
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
    const DecoderMessages messages;
    QImageReader reader;
    open(reader, file);
    const QSize size = reader.size();
    if (size.isEmpty())
        throw damaged(file, "its size cannot be read");
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
        throw damaged(file, "its end is missing");
    if (image.size() != size)
        throw UserError(QString("%1: has changed from %2 to %3 pixels meanwhile; start again")
                            .arg(file, sizeText(size), sizeText(image.size())));
    image.convertTo(QImage::Format_BGR888);
    if (image.isNull())
        throw std::bad_alloc();
    return image;
}

} // namespace tesmor::apps
