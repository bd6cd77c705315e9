// SPDX-License-Identifier: GPL-2.0-or-later
// Reads PNG, JPEG, TIFF and BMP images, recognised by their content. All functions throw UserError, which names the
// file and the remedy. Any thread, within a DecoderSession (see decoder_messages.h).
#pragma once

#include <QImage>
#include <QSize>
#include <QString>

namespace tesmor::apps {

// From the header alone; with the orientation stored in the file applied.
QSize readImageSize(const QString& file);

// The image in the library's frame layout (QImage::Format_BGR888): constBits() is a frame. Transparency is dropped,
// 16-bit channels become 8-bit. It must have the given size, as returned by readImageSize.
QImage readFrame(const QString& file, QSize size);

} // namespace tesmor::apps
