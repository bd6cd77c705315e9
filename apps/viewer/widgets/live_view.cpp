// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/live_view.h"

#include "protocol/central_region.h"
#include "viewer/widgets/scale_bar.h"

#include <QKeyEvent>
#include <QLineF>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>

namespace tesmor::apps {

namespace {

const QColor REGION_COLOUR(90, 200, 255);
const QColor RULER_COLOUR(255, 220, 60);

// Drawn twice, so that it is seen on any image.
void drawTwice(QPainter& painter, const QColor& colour, auto draw)
{
    painter.setPen(QPen(QColor(0, 0, 0, 160), 4));
    draw();
    painter.setPen(QPen(colour, 2));
    draw();
}

} // namespace

LiveView::LiveView(QWidget* parent) : ImageView(parent)
{
    setAccessibleName(tr("Live image"));
}

void LiveView::setFrame(const QImage& frame)
{
    setImage(frame);
}

void LiveView::setMagnification(std::uint16_t magnification)
{
    magnification_ = magnification;
    update();
}

bool LiveView::isRulerActive() const
{
    return rulerActive_;
}

void LiveView::setRegionVisible(bool visible)
{
    regionVisible_ = visible;
    update();
}

void LiveView::setRulerActive(bool active)
{
    rulerStart_.reset();
    rulerDone_ = false;
    update();
    if (active == rulerActive_)
        return;
    rulerActive_ = active;
    emit rulerActiveChanged(active);
}

void LiveView::drawOverlay(QPainter& painter)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    if (regionVisible_)
        drawRegion(painter);
    if (rulerActive_)
        drawRuler(painter);
}

void LiveView::drawRegion(QPainter& painter)
{
    const Region region = centralRegion(image().width(), image().height(), magnification_);
    const QRectF frame(geometryOfImage().toView(QPointF(region.left, region.top)),
                       QSizeF(region.width, region.height) * geometryOfImage().scale());
    drawTwice(painter, REGION_COLOUR, [&] { painter.drawRect(frame); });
}

void LiveView::drawRuler(QPainter& painter)
{
    if (!rulerStart_)
        return;
    constexpr double END = 7; // half of an end's line, view pixels
    const QLineF image(*rulerStart_, rulerEnd_);
    const QLineF line(geometryOfImage().toView(image.p1()), geometryOfImage().toView(image.p2()));
    QLineF across = line.normalVector();
    if (line.length() > 0)
        across.setLength(END);
    const QPointF end(across.dx(), across.dy());
    drawTwice(painter, RULER_COLOUR, [&] {
        painter.drawLine(line);
        painter.drawLine(line.p1() - end, line.p1() + end);
        painter.drawLine(line.p2() - end, line.p2() + end);
    });
    QString text = tr("%1 px").arg(QLocale().toString(image.length(), 'f', 1));
    if (micrometresPerPixel() > 0)
        text = lengthText(image.length() * micrometresPerPixel()) + "  (" + text + ")";
    QRectF box = painter.fontMetrics().boundingRect(text).toRectF().adjusted(-8, -4, 8, 4);
    box.moveCenter(line.center() - QPointF(0, 24));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 180));
    painter.drawRoundedRect(box, 4, 4);
    painter.setPen(RULER_COLOUR);
    painter.drawText(box, Qt::AlignCenter, text);
}

bool LiveView::clicked(QPointF imagePoint)
{
    if (!rulerActive_)
        return false;
    if (rulerStart_ && !rulerDone_) {
        rulerEnd_ = imagePoint;
        rulerDone_ = true;
        emit rulerMeasured(QLineF(*rulerStart_, rulerEnd_).length());
    } else {
        rulerStart_ = rulerEnd_ = imagePoint;
        rulerDone_ = false;
    }
    update();
    return true;
}

void LiveView::mouseMoveEvent(QMouseEvent* event)
{
    ImageView::mouseMoveEvent(event);
    if (rulerActive_ && rulerStart_ && !rulerDone_) {
        rulerEnd_ = geometryOfImage().toImage(event->position());
        update();
    }
    if (rulerActive_)
        setCursor(Qt::CrossCursor);
}

void LiveView::keyPressEvent(QKeyEvent* event)
{
    if (rulerActive_ && event->key() == Qt::Key_Escape)
        setRulerActive(rulerStart_ && !rulerDone_);
    else
        ImageView::keyPressEvent(event);
}

} // namespace tesmor::apps
