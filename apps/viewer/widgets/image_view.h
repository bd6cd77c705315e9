// SPDX-License-Identifier: GPL-2.0-or-later
// Shows an image: fitted or enlarged, moved by mouse, wheel and keys, with a scale bar and the mark of a simulated
// source. What the live view and the views of a result have in common.
#pragma once

#include "viewer/widgets/drawn_image.h"
#include "viewer/widgets/view_geometry.h"

#include <QWidget>

#include <optional>

namespace tesmor::apps {

// Wheel: zoom around the pointer. Drag: pan. Double click: fit, and back to 100 %. Keys + - 0 (fit) 1 (100 %). The
// arrow keys are left to the window.
class ImageView : public QWidget {
    Q_OBJECT

public:
    explicit ImageView(QWidget* parent = nullptr);

    // Shares the image's pixels. Frames that come faster than the screen shows them are never drawn. A null image shows
    // the text of setPlaceholder().
    void setImage(const QImage& image);
    const QImage& image() const;
    void setPlaceholder(const QString& text);

    // 0 for none: without calibration there is no scale bar.
    void setMicrometresPerPixel(double micrometres);
    double micrometresPerPixel() const;
    void setSimulated(bool simulated);
    // A short text in the top right corner, such as "Result" or "Slice 3 of 12"; empty for none.
    void setCaption(const QString& caption);

    Zoom zoom() const;
    const ViewGeometry& geometryOfImage() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public slots:
    void setZoom(const Zoom& zoom); // emits nothing
    void fitToView();
    void showActualSize(); // 100 %: one image pixel per pixel of the screen
    void zoomIn();
    void zoomOut();

signals:
    void zoomChanged(const Zoom& zoom); // by the user, or by one of the slots above but setZoom
    // The image point under the pointer, or none.
    void pointerMoved(std::optional<QPointF> imagePoint);

protected:
    // Where this view's image lies.
    void drawImage(QPainter& painter, DrawnImage& image) const;

    // Over the image, below caption, scale bar and mark.
    virtual void drawOverlay(QPainter& painter);
    // A click that was no drag. Returns true when it has been used.
    virtual bool clicked(QPointF imagePoint);

    void updateCursor(); // to what the mouse can do

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void scaleAround(QPointF viewPoint, double scale);
    double actualScale() const;
    void drawMarks(QPainter& painter, const QRectF& place);

    ViewGeometry geometry_;
    DrawnImage image_;
    QString placeholder_;
    QString caption_;
    double micrometresPerPixel_ = 0;
    bool simulated_ = false;
    std::optional<QPointF> pressedAt_;
    QPointF draggedFrom_;
    bool dragging_ = false;
};

} // namespace tesmor::apps
