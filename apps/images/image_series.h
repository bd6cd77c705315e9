// SPDX-License-Identifier: GPL-2.0-or-later
// Several images of one size. Both functions throw UserError, which names the file and the remedy.
#pragma once

#include "terminal/live_line.h"

#include <QImage>
#include <QSize>
#include <QStringList>

#include <vector>

namespace tesmor::apps {

// The size that all images share, from their headers alone.
//   leastSide   minimum width and height, pixels
QSize readCommonSize(const QStringList& files, int leastSide);

// In the library's frame layout (QImage::Format_BGR888) and in order, with a progress bar; decodes on several threads.
// They must have the given size, as returned by readCommonSize.
std::vector<QImage> readFrames(const QStringList& files, QSize size, LiveLine::Style style);

} // namespace tesmor::apps
