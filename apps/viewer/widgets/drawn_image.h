// SPDX-License-Identifier: GPL-2.0-or-later
// An image as a painter draws it fastest, and without moiré when it is made smaller.
#pragma once

#include <QImage>

class QPainter;
class QRectF;

namespace tesmor::apps {

class DrawnImage {
public:
    void set(const QImage& image); // shares its pixels
    const QImage& image() const;

    //   pixels   of the screen per image pixel, above 0
    //   fast     the image is soon replaced: made smaller, it is drawn fast rather than smoothly
    void draw(QPainter& painter, const QRectF& place, double pixels, bool fast);

private:
    QImage image_;
    QImage drawn_;     // null until it is drawn
    double share_ = 1; // drawn_ of image_'s width and height
};

} // namespace tesmor::apps
