// SPDX-License-Identifier: GPL-2.0-or-later
// The image file that a program writes. All functions throw UserError, which names the file and the remedy, and
// Interrupted (see interrupt.h).
#pragma once

#include <QImage>
#include <QList>
#include <QSize>
#include <QString>

namespace tesmor::apps {

// Checks in advance that the result can be written: format, folder, permissions. Leaves nothing behind.
void checkOutputFile(const QString& file, QSize size);

// Whether the image's colour profile is one that Qt cannot write in that format: in PNG one of tables, in JPEG that of
// a grey image. BMP has none.
bool losesProfile(const QString& file, const QImage& image);

// In the format given by the file's name, with resolution and, where it fits the image, colour profile. The file
// appears, or replaces an existing one, only once it is complete; after a failure or an interruption nothing has
// changed.
void writeOutputFile(const QString& file, const QImage& image);

// Likewise, as the pages of one TIFF. Needs room for two of it in its folder meanwhile.
//   dotsPerMetre   the resolution of all pages; 0: their own
void writeOutputPages(const QString& file, const QList<QImage>& images, int dotsPerMetre);

} // namespace tesmor::apps
