// SPDX-License-Identifier: GPL-2.0-or-later
// Reads PNG, JPEG, TIFF and BMP images, recognised by their content. All functions throw UserError, which names the
// image and the remedy.
#pragma once

#include "images/image_source.h"

#include <QImage>
#include <QSize>
#include <QString>

#include <memory>

namespace tesmor::apps {

class TiffFile;

void requireReadableFile(const QString& file);

// With 16 bits per sample.
bool isDeep(QImage::Format format);

// By its format or palette; a colour image without colours is none.
bool isGrey(const QImage& image);

struct ImageHeader {
    QSize size; // upright
    bool deep;
};

// Keeps a TIFF file open for its next page, since the way to a late one is long. Any thread, one at a time, within a
// DecoderSession (see decoder_messages.h).
class ImageReader {
public:
    ImageReader();
    ~ImageReader();

    // Without decoding the image.
    ImageHeader readHeader(const ImageSource& source);

    // Upright, in the format that suits what is stored. It must have the given size, as returned by readHeader.
    QImage read(const ImageSource& source, QSize size);

private:
    TiffFile* tiffOf(const ImageSource& source);

    QString file_;
    std::unique_ptr<TiffFile> tiff_; // null: not a TIFF file
};

} // namespace tesmor::apps
