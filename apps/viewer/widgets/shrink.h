// SPDX-License-Identifier: GPL-2.0-or-later
// Makes an image smaller without false patterns: each pixel becomes the mean of the area that it covers. It costs what
// drawing the image with interpolation does, or less; Qt's own smooth scaling costs twice as much.
#pragma once

#include <QImage>

namespace tesmor::apps {

//   image    Format_BGR888
//   size     of the whole smaller image; neither side is 0 or longer than the image's
//   part     the part of it that is wanted, inside
//   returns  Format_RGB32, as large as the part
QImage shrunk(const QImage& image, QSize size, const QRect& part);

} // namespace tesmor::apps
