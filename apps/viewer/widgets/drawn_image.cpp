// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/drawn_image.h"

#include <QPainter>

namespace tesmor::apps {

namespace {

constexpr double CRISP_FROM = 3; // screen pixels per image pixel: above, pixels show as squares

} // namespace

void DrawnImage::set(const QImage& image)
{
    image_ = image;
    drawn_ = QImage();
}

const QImage& DrawnImage::image() const
{
    return image_;
}

void DrawnImage::draw(QPainter& painter, const QRectF& place, double pixels, bool fast)
{
    double share = 1;
    while (!fast && pixels > 0 && pixels <= share / 2)
        share /= 2;
    if (drawn_.isNull() || share_ != share) {
        drawn_ = image_.convertToFormat(QImage::Format_RGB32); // drawing it in another format costs several times more
        if (share < 1)
            drawn_ = drawn_.scaled((image_.size().toSizeF() * share).toSize().expandedTo({1, 1}), Qt::IgnoreAspectRatio,
                                   Qt::SmoothTransformation);
        share_ = share;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, pixels < CRISP_FROM && pixels != 1);
    painter.drawImage(place, drawn_);
}

} // namespace tesmor::apps
