// SPDX-License-Identifier: GPL-2.0-or-later
// An image with another laid over its right part, up to an edge that the user drags, or moves by the keys comma
// and full stop.
#pragma once

#include "viewer/widgets/image_view.h"

namespace tesmor::apps {

class WipeView : public ImageView {
    Q_OBJECT

public:
    explicit WipeView(QWidget* parent = nullptr);

    // Of the image's size; a null one lays nothing over it. The captions name the two parts.
    void setOverlaid(const QImage& image, const QString& leftCaption, const QString& rightCaption);

protected:
    void drawOverlay(QPainter& painter) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void moveEdge(double share);
    bool isNearEdge(QPointF viewPoint) const;

    DrawnImage overlaid_;
    QString leftCaption_;
    QString rightCaption_;
    double edge_ = 0.5; // as a share of the view's width
    bool moving_ = false;
};

} // namespace tesmor::apps
