// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/drawn_image.h"

#include "viewer/widgets/shrink.h"

#include <QPainter>

#include <cmath>

namespace tesmor::apps {

namespace {

constexpr double CRISP_FROM = 3; // screen pixels per image pixel: above, pixels show as squares

} // namespace

void DrawnImage::set(const QImage& image)
{
    image_ = image.convertToFormat(QImage::Format_BGR888); // which it is as a rule
    drawn_ = QImage();
}

const QImage& DrawnImage::image() const
{
    return image_;
}

void DrawnImage::draw(QPainter& painter, const QRectF& place)
{
    const double ratio = painter.device()->devicePixelRatioF();
    const QRect pixels((place.topLeft() * ratio).toPoint(), (place.size() * ratio).toSize());
    if (pixels.width() < image_.width() && pixels.height() < image_.height())
        drawShrunk(painter, pixels, ratio);
    else
        drawEnlarged(painter, place, ratio);
}

void DrawnImage::drawShrunk(QPainter& painter, const QRect& place, double ratio)
{
    const QRect view(QPoint(0, 0), QSize(painter.device()->width(), painter.device()->height()) * ratio);
    const QRect part = place.intersected(view).translated(-place.topLeft());
    if (part.isEmpty())
        return;
    if (drawn_.isNull() || size_ != place.size() || part_ != part) {
        drawn_ = shrunk(image_, place.size(), part);
        size_ = place.size();
        part_ = part;
    }
    drawn_.setDevicePixelRatio(ratio);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage((place.topLeft() + part.topLeft()).toPointF() / ratio, drawn_);
}

void DrawnImage::drawEnlarged(QPainter& painter, const QRectF& place, double ratio)
{
    if (drawn_.isNull() || size_ != image_.size()) {
        drawn_ = image_.convertToFormat(QImage::Format_RGB32); // drawing it in another format costs several times more
        size_ = image_.size();
    }
    const double pixels = place.width() * ratio / image_.width();
    const bool isActual = std::abs(pixels - 1) * image_.width() < 0.5;
    painter.setRenderHint(QPainter::SmoothPixmapTransform, pixels < CRISP_FROM && !isActual);
    const QPointF corner = (place.topLeft() * ratio).toPoint().toPointF() / ratio;
    painter.drawImage(isActual ? QRectF(corner, image_.size().toSizeF() / ratio) : place, drawn_);
}

} // namespace tesmor::apps
