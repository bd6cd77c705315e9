// SPDX-License-Identifier: GPL-2.0-or-later
// What is drawn where, on screens of one and of several pixels a point; see CMakeLists.txt.
#include "viewer/widgets/live_view.h"

#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tesmor::test {

namespace {

constexpr QSize VIEW(431, 317); // points; odd, so that nothing fits by chance

QImage noise(QSize size)
{
    QImage image(size, QImage::Format_BGR888);
    unsigned state = 1;
    for (int y = 0; y < size.height(); ++y)
        std::generate_n(image.scanLine(y), 3 * size.width(),
                        [&] { return (state = state * 1664525 + 1013904223) >> 24; });
    return image;
}

// The middle of what is red, in pixels.
QPointF middleOfRed(const QImage& picture)
{
    QPointF sum;
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (const QColor colour = picture.pixelColor(x, y); colour.red() > 200 && colour.green() < 100) {
                sum += QPointF(x + 0.5, y + 0.5);
                ++count;
            }
        }
    }
    return sum / count;
}

class ImageViewTest : public testing::Test {
protected:
    void show(const QImage& image)
    {
        view_.resize(VIEW);
        view_.show();
        view_.setFrame(image);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view_));
        ratio_ = view_.devicePixelRatioF();
    }

    QImage picture()
    {
        view_.clearFocus(); // the frame of who has the keys
        return view_.grab().toImage();
    }

    apps::LiveView view_;
    double ratio_ = 0;
};

TEST_F(ImageViewTest, A100PercentShowsEachPixelAsItIs)
{
    const QImage image = noise(QSize(1300, 1000));
    show(image);
    view_.showActualSize();
    const QImage shown = picture().convertToFormat(QImage::Format_BGR888);
    const QPoint corner = (view_.geometryOfImage().imageRect().topLeft() * ratio_).toPoint();
    EXPECT_EQ(shown, image.copy(QRect(-corner, shown.size())));
}

// Lines that are too fine for the screen become grey, not other lines.
TEST_F(ImageViewTest, AFineGratingMakesNoMoire)
{
    for (const double scale : {0.21, 0.36, 0.55, 0.73}) {
        const QSize size = (VIEW.toSizeF() * view_.devicePixelRatioF() / scale).toSize();
        QImage lines(size, QImage::Format_BGR888);
        lines.fill(Qt::black);
        for (int x = 0; x < size.width(); x += 2)
            QPainter(&lines).fillRect(x, 0, 1, size.height(), Qt::white);
        show(lines);
        const QImage shown = picture();
        int least = 255;
        int most = 0;
        for (int x = 8; x < shown.width() - 8; ++x) {
            const int grey = shown.pixelColor(x, shown.height() / 2).green();
            least = std::min(least, grey);
            most = std::max(most, grey);
        }
        EXPECT_LT(most - least, 255 / 2) << scale; // interpolation alone: from black to white
        EXPECT_NEAR((most + least) / 2, 128, 12) << scale;
    }
}

TEST_F(ImageViewTest, WhatIsClickedIsWhatIsShown)
{
    const QPointF places[] = {{210, 150}, {1010, 730}};
    QSignalSpy measured(&view_, &apps::LiveView::rulerMeasured);
    const auto measure = [&] {
        view_.setRulerActive(true);
        for (const QPointF& place : places) {
            QImage image(1280, 960, QImage::Format_BGR888);
            image.fill(Qt::white);
            QPainter(&image).fillRect(QRectF(place - QPointF(20, 20), QSizeF(40, 40)), Qt::red);
            show(image);
            const QPointF shown = middleOfRed(picture()) / ratio_;
            const QPointF error = (shown - view_.geometryOfImage().toView(place)) * ratio_;
            EXPECT_LT(std::hypot(error.x(), error.y()), 1) << "pixels of the screen";
            QTest::mouseClick(&view_, Qt::LeftButton, {}, shown.toPoint());
        }
        const double scale = view_.geometryOfImage().scale();
        EXPECT_NEAR(measured.takeFirst().first().toDouble(), std::hypot(800, 580), 1.5 / scale);
        view_.setRulerActive(false);
    };
    show(noise(QSize(1280, 960)));
    measure();
    view_.zoomOut();
    measure();
}

} // namespace

} // namespace tesmor::test
