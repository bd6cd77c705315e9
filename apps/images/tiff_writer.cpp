// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/tiff_writer.h"

#include "images/image_files.h"
#include "images/tiff_messages.h"
#include "images/tiff_metadata.h"
#include "terminal/errors.h"

#include <tiffio.h>

#include <cstdio>
#include <new>
#include <vector>

namespace tesmor::apps {

namespace {

constexpr std::uint64_t CLASSIC_LIMIT = 4'000'000'000; // bytes; offsets have 32 bits
constexpr int DEFLATE_LEVEL = 4;                       // half the time of the default for files 3 % larger

QIODevice& deviceOf(thandle_t handle)
{
    return *static_cast<QIODevice*>(handle);
}

tmsize_t readDevice(thandle_t handle, void* bytes, tmsize_t size)
{
    return deviceOf(handle).read(static_cast<char*>(bytes), size);
}

tmsize_t writeDevice(thandle_t handle, void* bytes, tmsize_t size)
{
    return deviceOf(handle).write(static_cast<const char*>(bytes), size);
}

toff_t seekDevice(thandle_t handle, toff_t offset, int whence)
{
    QIODevice& device = deviceOf(handle);
    const auto from = static_cast<std::uint64_t>(whence == SEEK_CUR   ? device.pos()
                                                 : whence == SEEK_END ? device.size()
                                                                      : 0);
    return device.seek(static_cast<qint64>(from + offset)) ? from + offset : static_cast<toff_t>(-1);
}

int closeDevice(thandle_t)
{
    return 0;
}

toff_t sizeOfDevice(thandle_t handle)
{
    return static_cast<toff_t>(deviceOf(handle).size());
}

// In one of the formats that are written as they lie in memory.
QImage writable(const QImage& image)
{
    QImage::Format format = isGrey(image) ? QImage::Format_Grayscale8 : QImage::Format_RGB888;
    if (isDeep(image.format()))
        format = isGrey(image) ? QImage::Format_Grayscale16 : QImage::Format_RGBX64;
    QImage result = image.convertToFormat(format);
    if (result.isNull())
        throw std::bad_alloc();
    return result;
}

// A row as libtiff wants it: its own to change, and without a fourth channel.
std::vector<std::uint8_t> rowOf(const QImage& page, int y)
{
    const uchar* from = page.constScanLine(y);
    if (page.format() != QImage::Format_RGBX64)
        return {from, from + page.bytesPerLine()};
    constexpr int COLOUR_BYTES = 6;
    std::vector<std::uint8_t> row;
    row.reserve(static_cast<std::size_t>(COLOUR_BYTES) * static_cast<std::size_t>(page.width()));
    for (int x = 0; x < page.width(); ++x, from += COLOUR_BYTES + 2)
        row.insert(row.end(), from, from + COLOUR_BYTES);
    return row;
}

} // namespace

TiffWriter::TiffWriter(QIODevice& device, const QString& name, std::uint64_t mostBytes)
    : device_(device), name_(name), messages_(std::make_unique<TiffMessages>())
{
    tiff_ = TIFFClientOpenExt(name.toUtf8().constData(), mostBytes < CLASSIC_LIMIT ? "w" : "w8", &device, readDevice,
                              writeDevice, seekDevice, closeDevice, sizeOfDevice, nullptr, nullptr,
                              optionsWith(*messages_).get());
    require(tiff_ != nullptr);
}

TiffWriter::~TiffWriter()
{
    if (tiff_ != nullptr)
        TIFFClose(tiff_);
}

void TiffWriter::addPage(const QImage& image)
{
    const QImage page = writable(image);
    const bool grey = page.format() == QImage::Format_Grayscale8 || page.format() == QImage::Format_Grayscale16;
    const bool deep = isDeep(page.format());
    TIFFSetField(tiff_, TIFFTAG_IMAGEWIDTH, page.width());
    TIFFSetField(tiff_, TIFFTAG_IMAGELENGTH, page.height());
    TIFFSetField(tiff_, TIFFTAG_BITSPERSAMPLE, deep ? 16 : 8);
    TIFFSetField(tiff_, TIFFTAG_SAMPLESPERPIXEL, grey ? 1 : 3);
    TIFFSetField(tiff_, TIFFTAG_PHOTOMETRIC, grey ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    TIFFSetField(tiff_, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff_, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
    TIFFSetField(tiff_, TIFFTAG_ZIPQUALITY, DEFLATE_LEVEL);
    TIFFSetField(tiff_, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    TIFFSetField(tiff_, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff_, 0));
    TIFFSetField(tiff_, TIFFTAG_SOFTWARE, "tesmor");
    writeMetadata(tiff_, image);
    for (int y = 0; y < page.height(); ++y) {
        std::vector<std::uint8_t> row = rowOf(page, y);
        require(TIFFWriteScanline(tiff_, row.data(), static_cast<std::uint32_t>(y), 0) > 0);
    }
    require(TIFFWriteDirectory(tiff_) != 0);
}

void TiffWriter::finish()
{
    require(TIFFFlush(tiff_) != 0);
    TIFFClose(tiff_);
    tiff_ = nullptr;
}

void TiffWriter::require(bool done) const
{
    if (done)
        return;
    const QString reason = messages_->error.isEmpty() ? device_.errorString() : messages_->error;
    throw UserError(QString("%1: cannot be written (%2); choose another place").arg(name_, reason));
}

} // namespace tesmor::apps
