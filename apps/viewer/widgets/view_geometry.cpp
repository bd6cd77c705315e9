// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/view_geometry.h"

#include <algorithm>

namespace tesmor::apps {

namespace {

constexpr double SMALLEST_SHARE = 0.1; // of the view

// The centre of the view along one side, so that no empty border shows beside an image that is larger than the view.
double keptCentre(double centre, double imageLength, double viewLength)
{
    if (imageLength <= viewLength)
        return 0.5;
    const double half = viewLength / imageLength / 2;
    return std::clamp(centre, half, 1 - half);
}

} // namespace

void ViewGeometry::setImageSize(QSizeF size)
{
    imageSize_ = size;
    keepInView();
}

void ViewGeometry::setViewSize(QSizeF size)
{
    viewSize_ = size;
    keepInView();
}

void ViewGeometry::setZoom(const Zoom& zoom)
{
    zoom_ = zoom;
    keepInView();
}

Zoom ViewGeometry::zoom() const
{
    return zoom_;
}

double ViewGeometry::fitScale() const
{
    if (imageSize_.isEmpty() || viewSize_.isEmpty())
        return 0;
    return std::min(viewSize_.width() / imageSize_.width(), viewSize_.height() / imageSize_.height());
}

double ViewGeometry::scale() const
{
    return zoom_.fit || imageSize_.isEmpty() ? fitScale() : zoom_.scale;
}

QRectF ViewGeometry::imageRect() const
{
    const QPointF centre = zoom_.fit ? QPointF(0.5, 0.5) : zoom_.centre;
    const QSizeF size = imageSize_ * scale();
    return {
        QPointF(viewSize_.width() / 2 - centre.x() * size.width(), viewSize_.height() / 2 - centre.y() * size.height()),
        size};
}

QPointF ViewGeometry::toView(QPointF imagePoint) const
{
    return imageRect().topLeft() + imagePoint * scale();
}

QPointF ViewGeometry::toImage(QPointF viewPoint) const
{
    const double now = scale();
    return now > 0 ? (viewPoint - imageRect().topLeft()) / now : QPointF();
}

void ViewGeometry::fit()
{
    zoom_ = Zoom();
}

void ViewGeometry::scaleAround(QPointF viewPoint, double scale)
{
    const double least = std::min(1.0, fitScale() * SMALLEST_SHARE);
    if (least <= 0)
        return;
    const QPointF kept = toImage(viewPoint);
    zoom_.fit = false;
    zoom_.scale = std::clamp(scale, least, LARGEST_SCALE);
    const QPointF middle = kept + (QPointF(viewSize_.width(), viewSize_.height()) / 2 - viewPoint) / zoom_.scale;
    zoom_.centre = QPointF(middle.x() / imageSize_.width(), middle.y() / imageSize_.height());
    keepInView();
}

void ViewGeometry::panBy(QPointF viewDistance)
{
    if (zoom_.fit || imageSize_.isEmpty())
        return;
    const QSizeF size = imageSize_ * zoom_.scale;
    zoom_.centre -= QPointF(viewDistance.x() / size.width(), viewDistance.y() / size.height());
    keepInView();
}

void ViewGeometry::keepInView()
{
    if (zoom_.fit || imageSize_.isEmpty() || viewSize_.isEmpty())
        return;
    const QSizeF size = imageSize_ * zoom_.scale;
    zoom_.centre = {keptCentre(zoom_.centre.x(), size.width(), viewSize_.width()),
                    keptCentre(zoom_.centre.y(), size.height(), viewSize_.height())};
}

} // namespace tesmor::apps
