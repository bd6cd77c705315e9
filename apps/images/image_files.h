// SPDX-License-Identifier: GPL-2.0-or-later
// Reads PNG, JPEG, TIFF and BMP images, recognised by their content. All functions throw UserError, which names the
// image and the remedy. Any thread, within a DecoderSession (see decoder_messages.h).
#pragma once

#include "images/image_source.h"

#include <QImage>
#include <QSize>
#include <QString>

namespace tesmor::apps {

void requireReadableFile(const QString& file);

// With 16 bits per sample.
bool isDeep(QImage::Format format);

// By its format or palette; a colour image without colours is none.
bool isGrey(const QImage& image);

struct ImageHeader {
    QSize size; // upright
    bool deep;
};

// Without decoding the image.
ImageHeader readImageHeader(const ImageSource& source);

// Upright, in the format that suits what is stored. It must have the given size, as returned by readImageHeader.
QImage readImage(const ImageSource& source, QSize size);

} // namespace tesmor::apps
