// SPDX-License-Identifier: GPL-2.0-or-later
// A fused image and its slices, to be compared: the result alone, beside a slice, or with a slice laid over one half.
#pragma once

#include "viewer/widgets/view_geometry.h"

#include <QImage>
#include <QList>
#include <QWidget>

class QActionGroup;
class QLabel;
class QSlider;
class QSplitter;

namespace tesmor::apps {

class ImageView;
class WipeView;

class ResultView : public QWidget {
    Q_OBJECT

public:
    enum class Comparison { RESULT, SLICE, BESIDE, OVER };
    Q_ENUM(Comparison)

    explicit ResultView(QWidget* parent = nullptr);

    // Shares the pixels. A null result: the slices alone, as after a stack that has not been fused.
    void setImages(const QImage& result, const QList<QImage>& slices);
    const QImage& result() const;

    // What is shown is chosen there, wherever it is put; it belongs to where it is put.
    QWidget* controls()
    {
        return controls_;
    }

    const QList<QImage>& slices() const;

    void setMicrometresPerPixel(double micrometres); // 0 for none
    void setSimulated(bool simulated);

    Comparison comparison() const;
    int slice() const; // from 0

    Zoom zoom() const;

public slots:
    void setComparison(tesmor::apps::ResultView::Comparison comparison);
    void setSlice(int index);                     // from 0
    void setZoom(const tesmor::apps::Zoom& zoom); // emits nothing
    void fitToView();
    void showActualSize();
    void zoomIn();
    void zoomOut();

signals:
    void zoomChanged(const tesmor::apps::Zoom& zoom);
    void sliceChanged(int index);

private:
    void build();
    void buildControls();
    void showImages();
    void showZoom(const Zoom& zoom);

    QImage result_;
    QList<QImage> slices_;
    Comparison comparison_ = Comparison::RESULT;
    WipeView* resultView_;
    ImageView* sliceView_;
    QWidget* controls_;
    QSlider* slider_;
    QLabel* sliceLabel_;
    QActionGroup* comparisons_;
};

} // namespace tesmor::apps
