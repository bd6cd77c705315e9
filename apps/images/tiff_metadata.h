// SPDX-License-Identifier: GPL-2.0-or-later
// What a TIFF page says beside its pixels.
#pragma once

#include "images/image_source.h"

#include <QImage>

struct tiff;

namespace tesmor::apps {

// Gives the image the resolution and the colour profile of the current page.
void readMetadata(tiff* file, const PixelScale& scale, QImage& image);

// The other way; without a resolution that was never set.
void writeMetadata(tiff* file, const QImage& image);

} // namespace tesmor::apps
