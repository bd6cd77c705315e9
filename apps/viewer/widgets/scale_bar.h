// SPDX-License-Identifier: GPL-2.0-or-later
// The bar that tells how large a specimen is.
#pragma once

#include <QString>

class QPainter;
class QRectF;

namespace tesmor::apps {

struct ScaleBar {
    double length; // view pixels
    QString text;  // "50 µm"
};

// 1, 2 or 5 times a power of ten micrometres, the longest that is not above `most` view pixels.
//   micrometresPerViewPixel   above 0
ScaleBar roundScaleBar(double micrometresPerViewPixel, double most);

// In words, with the unit that suits it: "0.5 µm", "200 µm", "1.2 mm".
QString lengthText(double micrometres);

// In the bottom right corner of `place`, readable on any image.
void drawScaleBar(QPainter& painter, const QRectF& place, double micrometresPerViewPixel);

} // namespace tesmor::apps
