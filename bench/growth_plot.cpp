// SPDX-License-Identifier: GPL-2.0-or-later
// Plots how the time of a fusion grows with the number of images and with their size. Argument: the picture to write.
#include "bare_transforms.h"
#include "ratio.h"
#include "stack.h"

#include <QApplication>
#include <QChart>
#include <QGraphicsScene>
#include <QImage>
#include <QLegend>
#include <QLineSeries>
#include <QLogValueAxis>
#include <QPainter>
#include <QValueAxis>

namespace tesmor::bench {

namespace {

constexpr int ROUNDS = 5;
constexpr int IMAGES = 8;
constexpr int WIDTH = 1400; // pixels of the picture
constexpr int HEIGHT = 520;

double milliseconds(Stack& stack)
{
    return timed<ProcessorTime>([&] { stack.fuse(); }) * 1e3;
}

// Milliseconds an image, against the number of images. The mean is sharpened as one image more.
QLineSeries* timePerImage()
{
    auto* series = new QLineSeries;
    series->setName("640 × 480: time / (images + 1)");
    for (const std::uint32_t count : {2u, 4u, 8u, 16u, 32u, 64u, 128u}) {
        Stack stack(640, 480, count);
        stack.fuse();
        std::vector<double> times;
        for (int round = 0; round < ROUNDS; ++round)
            times.push_back(milliseconds(stack));
        series->append(count, median(times) / (count + 1));
    }
    return series;
}

struct TimePerPixel {
    QLineSeries* fusion = new QLineSeries;
    QLineSeries* transforms = new QLineSeries;
};

// Nanoseconds a pixel and image, against the number of pixels.
TimePerPixel timePerPixel()
{
    TimePerPixel series;
    series.fusion->setName("fusion of 8 images");
    series.transforms->setName("its transforms alone");
    for (const int width : {160, 320, 640, 1280, 1600, 2592}) {
        const int height = width * 3 / 4;
        Stack stack(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), IMAGES);
        BareTransforms transforms(width, height, IMAGES);
        transforms.plan();
        stack.fuse();
        std::vector<double> fusions, floors;
        for (int round = 0; round < ROUNDS; ++round) {
            transforms.fill();
            floors.push_back(timed<ProcessorTime>([&] { transforms.run(); }) * 1e3);
            fusions.push_back(milliseconds(stack));
        }
        const double pixels = static_cast<double>(width) * height;
        series.fusion->append(pixels, median(fusions) * 1e6 / pixels / (IMAGES + 1));
        series.transforms->append(pixels, median(floors) * 1e6 / pixels / (IMAGES + 1));
    }
    return series;
}

void draw(QPainter& painter, const QRectF& place, const QString& title, const QString& across, double logarithmBase,
          const QString& upwards, const std::vector<QLineSeries*>& lines)
{
    auto* chart = new QChart;
    chart->setTitle(title);
    auto* xAxis = new QLogValueAxis;
    xAxis->setBase(logarithmBase);
    xAxis->setLabelFormat("%g");
    xAxis->setTitleText(across);
    auto* yAxis = new QValueAxis;
    yAxis->setTitleText(upwards);
    chart->addAxis(xAxis, Qt::AlignBottom);
    chart->addAxis(yAxis, Qt::AlignLeft);
    double highest = 0.0;
    for (QLineSeries* line : lines) {
        line->setPointsVisible(true);
        chart->addSeries(line);
        line->attachAxis(xAxis);
        line->attachAxis(yAxis);
        for (const QPointF& point : line->points())
            highest = std::max(highest, point.y());
    }
    yAxis->setRange(0.0, highest * 1.25);
    yAxis->applyNiceNumbers();
    chart->setBackgroundRoundness(0);
    chart->resize(place.size());
    QGraphicsScene scene;
    scene.addItem(chart); // and owns it
    scene.setSceneRect(QRectF(QPointF(0, 0), place.size()));
    scene.render(&painter, place, scene.sceneRect());
}

bool plot(const QString& file)
{
    const TimePerPixel pixels = timePerPixel();
    QLineSeries* const images = timePerImage();
    QImage picture(WIDTH, HEIGHT, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    draw(painter, QRectF(0, 0, WIDTH / 2.0, HEIGHT), "Time per image against the number of images", "images", 2, "ms",
         {images});
    draw(painter, QRectF(WIDTH / 2.0, 0, WIDTH / 2.0, HEIGHT), "Time per pixel against the size of an image", "pixels",
         10, "ns per pixel and image", {pixels.fusion, pixels.transforms});
    painter.end();
    return picture.save(file);
}

} // namespace

} // namespace tesmor::bench

int main(int count, char** arguments)
{
    const QApplication application(count, arguments);
    if (count != 2) {
        std::fprintf(stderr, "usage: %s PICTURE\n", arguments[0]);
        return 2;
    }
    if (!tesmor::bench::plot(QString::fromLocal8Bit(arguments[1]))) {
        std::fprintf(stderr, "%s: cannot be written\n", arguments[1]);
        return 1;
    }
    return 0;
}
