// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/image_view.h"

#include "viewer/widgets/scale_bar.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace tesmor::apps {

namespace {

constexpr double KEY_FACTOR = 1.25;
constexpr double WHEEL_FACTOR = 1.2;   // a notch
constexpr double WHEEL_NOTCH = 120;    // of QWheelEvent::angleDelta
constexpr double MARK_MARGIN = 12;     // view pixels
const QColor MARK_COLOUR(255, 196, 0); // as of a warning sign, on black

} // namespace

ImageView::ImageView(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(tr("Image"));
}

void ImageView::setImage(const QImage& image)
{
    if (image.size() != image_.image().size()) {
        geometry_.setImageSize(image.size());
        updateCursor();
    }
    image_.set(image);
    update();
}

const QImage& ImageView::image() const
{
    return image_.image();
}

void ImageView::drawImage(QPainter& painter, DrawnImage& image) const
{
    image.draw(painter, geometry_.imageRect());
}

void ImageView::setPlaceholder(const QString& text)
{
    placeholder_ = text;
    update();
}

void ImageView::setMicrometresPerPixel(double micrometres)
{
    micrometresPerPixel_ = micrometres;
    update();
}

double ImageView::micrometresPerPixel() const
{
    return micrometresPerPixel_;
}

void ImageView::setSimulated(bool simulated)
{
    simulated_ = simulated;
    update();
}

void ImageView::setCaption(const QString& caption)
{
    caption_ = caption;
    update();
}

Zoom ImageView::zoom() const
{
    return geometry_.zoom();
}

const ViewGeometry& ImageView::geometryOfImage() const
{
    return geometry_;
}

QSize ImageView::sizeHint() const
{
    return {960, 720};
}

QSize ImageView::minimumSizeHint() const
{
    return {160, 120};
}

void ImageView::setZoom(const Zoom& zoom)
{
    geometry_.setZoom(zoom);
    updateCursor();
    update();
}

void ImageView::fitToView()
{
    setZoom(Zoom());
    emit zoomChanged(zoom());
}

void ImageView::showActualSize()
{
    scaleAround(rect().toRectF().center(), actualScale());
}

void ImageView::zoomIn()
{
    scaleAround(rect().toRectF().center(), geometry_.scale() * KEY_FACTOR);
}

void ImageView::zoomOut()
{
    scaleAround(rect().toRectF().center(), geometry_.scale() / KEY_FACTOR);
}

void ImageView::scaleAround(QPointF viewPoint, double scale)
{
    geometry_.scaleAround(viewPoint, scale);
    updateCursor();
    update();
    emit zoomChanged(zoom());
}

double ImageView::actualScale() const
{
    return 1 / devicePixelRatioF();
}

void ImageView::updateCursor()
{
    const QRectF shown = geometry_.imageRect();
    const bool canPan = shown.width() > width() + 1 || shown.height() > height() + 1;
    setCursor(dragging_ ? Qt::ClosedHandCursor : canPan ? Qt::OpenHandCursor : Qt::ArrowCursor);
}

void ImageView::drawMarks(QPainter& painter, const QRectF& place)
{
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font = painter.font();
    font.setBold(true);
    if (!caption_.isEmpty()) {
        painter.setFont(font);
        const double width = painter.fontMetrics().horizontalAdvance(caption_) + 2 * MARK_MARGIN;
        const QRectF box(place.right() - MARK_MARGIN - width, place.top() + MARK_MARGIN, width,
                         painter.fontMetrics().height() * 1.6);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 150));
        painter.drawRoundedRect(box, 4, 4);
        painter.setPen(Qt::white);
        painter.drawText(box, Qt::AlignCenter, caption_);
    }
    if (simulated_) {
        font.setPointSizeF(font.pointSizeF() * 1.3);
        font.setLetterSpacing(QFont::AbsoluteSpacing, 2);
        painter.setFont(font);
        const QString text = tr("SIMULATED");
        const double width = painter.fontMetrics().horizontalAdvance(text) + 2 * MARK_MARGIN;
        const QRectF box(place.left() + MARK_MARGIN, place.top() + MARK_MARGIN, width,
                         painter.fontMetrics().height() * 1.5);
        painter.setPen(QPen(Qt::black, 2));
        painter.setBrush(MARK_COLOUR);
        painter.drawRoundedRect(box, 4, 4);
        painter.drawText(box, Qt::AlignCenter, text);
    }
}

void ImageView::drawOverlay(QPainter&) {}

bool ImageView::clicked(QPointF)
{
    return false;
}

void ImageView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window).darker(isEnabled() ? 125 : 110));
    if (image().isNull()) {
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap, placeholder_);
        return;
    }
    drawImage(painter, image_);
    painter.save();
    drawOverlay(painter);
    painter.restore();
    const QRectF place = rect().toRectF().intersected(geometry_.imageRect());
    if (micrometresPerPixel_ > 0)
        drawScaleBar(painter, place, micrometresPerPixel_ / geometry_.scale());
    drawMarks(painter, place);
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

void ImageView::resizeEvent(QResizeEvent*)
{
    geometry_.setViewSize(size());
    updateCursor();
}

void ImageView::wheelEvent(QWheelEvent* event)
{
    const double notches = event->angleDelta().y() / WHEEL_NOTCH;
    if (!image().isNull() && notches != 0)
        scaleAround(event->position(), geometry_.scale() * std::pow(WHEEL_FACTOR, notches));
    event->accept();
}

void ImageView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && !image().isNull()) {
        pressedAt_ = draggedFrom_ = event->position();
        dragging_ = false;
    }
}

void ImageView::mouseMoveEvent(QMouseEvent* event)
{
    if (pressedAt_) {
        if (!dragging_ && (event->position() - *pressedAt_).manhattanLength() >= QApplication::startDragDistance()) {
            dragging_ = true;
            updateCursor();
        }
        if (dragging_) {
            geometry_.panBy(event->position() - draggedFrom_);
            draggedFrom_ = event->position();
            update();
            emit zoomChanged(zoom());
        }
    }
    const bool isOver = !image().isNull() && geometry_.imageRect().contains(event->position());
    emit pointerMoved(isOver ? std::optional(geometry_.toImage(event->position())) : std::nullopt);
}

void ImageView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !pressedAt_)
        return;
    if (!dragging_)
        clicked(geometry_.toImage(*pressedAt_));
    pressedAt_.reset();
    dragging_ = false;
    updateCursor();
}

void ImageView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || image().isNull() || clicked(geometry_.toImage(event->position())))
        return;
    if (geometry_.zoom().fit)
        scaleAround(event->position(), actualScale());
    else
        fitToView();
}

void ImageView::leaveEvent(QEvent*)
{
    emit pointerMoved(std::nullopt);
}

void ImageView::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: // plus without Shift on many keyboards
        zoomIn();
        break;
    case Qt::Key_Minus:
        zoomOut();
        break;
    case Qt::Key_0:
        fitToView();
        break;
    case Qt::Key_1:
        showActualSize();
        break;
    default:
        QWidget::keyPressEvent(event); // left to the window
    }
}

} // namespace tesmor::apps
