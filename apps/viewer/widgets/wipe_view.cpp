// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/wipe_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tesmor::apps {

WipeView::WipeView(QWidget* parent) : ImageView(parent) {}

void WipeView::moveEdge(double share)
{
    edge_ = std::clamp(share, 0.0, 1.0);
    update();
}

void WipeView::setOverlaid(const QImage& image, const QString& leftCaption, const QString& rightCaption)
{
    overlaid_.set(image);
    leftCaption_ = leftCaption;
    rightCaption_ = rightCaption;
    update();
}

bool WipeView::isNearEdge(QPointF viewPoint) const
{
    constexpr double NEAR = 8; // view pixels
    return !overlaid_.image().isNull() && std::abs(viewPoint.x() - edge_ * width()) <= NEAR;
}

void WipeView::drawOverlay(QPainter& painter)
{
    if (overlaid_.image().isNull())
        return;
    const double x = edge_ * width();
    painter.save();
    painter.setClipRect(QRectF(x, 0, width() - x, height()));
    drawImage(painter, overlaid_);
    painter.restore();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0, 0, 0, 160), 4));
    painter.drawLine(QPointF(x, 0), QPointF(x, height()));
    painter.setPen(QPen(Qt::white, 2));
    painter.drawLine(QPointF(x, 0), QPointF(x, height()));
    painter.setBrush(Qt::white);
    painter.setPen(QPen(QColor(0, 0, 0, 160), 2));
    const QPointF middle(x, height() / 2.0);
    painter.drawEllipse(middle, 13, 13);
    painter.setPen(QPen(Qt::black, 2));
    for (const double side : {-1.0, 1.0}) {
        painter.drawLine(middle + QPointF(side * 8, 0), middle + QPointF(side * 4, -4));
        painter.drawLine(middle + QPointF(side * 8, 0), middle + QPointF(side * 4, 4));
    }
    QFont bold = painter.font();
    bold.setBold(true);
    painter.setFont(bold);
    const auto caption = [&](const QString& text, bool isLeft) {
        const double boxWidth = painter.fontMetrics().horizontalAdvance(text) + 24;
        const QRectF box(isLeft ? x - boxWidth - 10 : x + 10, 12, boxWidth, painter.fontMetrics().height() * 1.6);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 150));
        painter.drawRoundedRect(box, 4, 4);
        painter.setPen(Qt::white);
        painter.drawText(box, Qt::AlignCenter, text);
    };
    caption(leftCaption_, true);
    caption(rightCaption_, false);
}

void WipeView::mousePressEvent(QMouseEvent* event)
{
    moving_ = event->button() == Qt::LeftButton && isNearEdge(event->position());
    if (!moving_)
        ImageView::mousePressEvent(event);
}

void WipeView::mouseMoveEvent(QMouseEvent* event)
{
    if (moving_) {
        moveEdge(event->position().x() / width());
        return;
    }
    ImageView::mouseMoveEvent(event);
    if (!(event->buttons() & Qt::LeftButton)) {
        if (isNearEdge(event->position()))
            setCursor(Qt::SplitHCursor);
        else if (cursor().shape() == Qt::SplitHCursor)
            updateCursor();
    }
}

void WipeView::mouseReleaseEvent(QMouseEvent* event)
{
    if (!moving_)
        ImageView::mouseReleaseEvent(event);
    moving_ = false;
}

void WipeView::keyPressEvent(QKeyEvent* event)
{
    constexpr double STEP = 0.05;
    const bool isLeft = event->key() == Qt::Key_Comma;
    if (!overlaid_.image().isNull() && (isLeft || event->key() == Qt::Key_Period))
        moveEdge(edge_ + (isLeft ? -STEP : STEP));
    else
        ImageView::keyPressEvent(event);
}

} // namespace tesmor::apps
