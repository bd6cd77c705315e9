// SPDX-License-Identifier: GPL-2.0-or-later
// Where an image lies in a view: zoom and place. Plain arithmetic, no widget.
#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

namespace tesmor::apps {

// What two views have in common when they show the same place of two images.
struct Zoom {
    bool fit = true;          // to the view, whatever its size; the rest counts only without it
    double scale = 1;         // view pixels per image pixel
    QPointF centre{0.5, 0.5}; // of the view, as a share of the image's width and height

    bool operator==(const Zoom&) const = default;
};

// All in the view's logical pixels, and in image pixels from the image's top left corner.
class ViewGeometry {
public:
    static constexpr double LARGEST_SCALE = 32;

    void setImageSize(QSizeF size);
    void setViewSize(QSizeF size);
    void setZoom(const Zoom& zoom);

    Zoom zoom() const;
    double scale() const;     // view pixels per image pixel; 0 without an image
    QRectF imageRect() const; // the image in the view; may be larger
    QPointF toView(QPointF imagePoint) const;
    QPointF toImage(QPointF viewPoint) const;

    void fit();
    // The image point under `viewPoint` stays there. Between a scale at which the image is a tenth of the view (or 1,
    // if that is smaller) and LARGEST_SCALE; an image smaller than the view stays in its middle.
    void scaleAround(QPointF viewPoint, double scale);
    void panBy(QPointF viewDistance);

private:
    double fitScale() const;
    void keepInView();

    QSizeF imageSize_;
    QSizeF viewSize_;
    Zoom zoom_;
};

} // namespace tesmor::apps
