// SPDX-License-Identifier: GPL-2.0-or-later
// The live image, with the measured region and a ruler.
#pragma once

#include "viewer/widgets/image_view.h"

#include <cstdint>

namespace tesmor::apps {

class LiveView : public ImageView {
    Q_OBJECT

public:
    explicit LiveView(QWidget* parent = nullptr);

    // From the window's thread, as often as frames come; it costs next to nothing.
    void setFrame(const QImage& frame);

    // The part of the frame that an autofocus looks at, for the magnification (4 to 100).
    void setMagnification(std::uint16_t magnification);

    bool isRulerActive() const;

public slots:
    void setRegionVisible(bool visible);
    // Two clicks measure a length; the third starts again. Esc puts an unfinished ruler away, then the ruler itself.
    void setRulerActive(bool active);

signals:
    void rulerMeasured(double pixels); // at the second click
    void rulerActiveChanged(bool active);

protected:
    void drawOverlay(QPainter& painter) override;
    bool clicked(QPointF imagePoint) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void drawRegion(QPainter& painter);
    void drawRuler(QPainter& painter);

    std::uint16_t magnification_ = 10;
    bool regionVisible_ = false;
    bool rulerActive_ = false;
    bool rulerDone_ = false; // both ends are set
    std::optional<QPointF> rulerStart_;
    QPointF rulerEnd_;
};

} // namespace tesmor::apps
