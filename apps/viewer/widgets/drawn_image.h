// SPDX-License-Identifier: GPL-2.0-or-later
// An image as a painter draws it fastest: pixel for pixel of the screen, and without moiré when it is made smaller.
#pragma once

#include <QImage>
#include <QRect>

class QPainter;
class QRectF;

namespace tesmor::apps {

class DrawnImage {
public:
    void set(const QImage& image); // shares its pixels
    const QImage& image() const;

    //   place   of the whole image, in the painter's coordinates; to the nearest pixel of the screen when it is made
    //           smaller
    void draw(QPainter& painter, const QRectF& place);

private:
    void drawShrunk(QPainter& painter, const QRect& place, double ratio);
    void drawEnlarged(QPainter& painter, const QRectF& place, double ratio);

    QImage image_;
    QImage drawn_; // null until it is drawn
    QSize size_;   // of what drawn_ is a part
    QRect part_;
};

} // namespace tesmor::apps
