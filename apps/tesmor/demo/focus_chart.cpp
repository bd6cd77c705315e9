// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/focus_chart.h"

#include "charts/chart_axis.h"
#include "charts/phase_series.h"

#include <QAreaSeries>
#include <QChart>
#include <QGraphicsScene>
#include <QLegend>
#include <QLineSeries>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <new>

namespace tesmor::apps {

namespace {

constexpr int WIDTH = 1500; // pixels
constexpr int HEIGHT = 640;
constexpr int TITLE_HEIGHT = 50;
constexpr int LEFT_WIDTH = 860;

// One of the two plots.
class Plot {
public:
    Plot(const FocusChart& data, const QString& title, const Range& positions, const Range& contrast)
        : data_(data), contrast_(contrast), chart_(new QChart),
          positionAxis_(makeAxis("motor position (steps)", positions)),
          contrastAxis_(makeAxis("contrast in the middle of the view (grey levels)", contrast))
    {
        chart_->setTitle(title);
        chart_->setTitleFont(chartFont(13));
        chart_->addAxis(positionAxis_, Qt::AlignBottom);
        chart_->addAxis(contrastAxis_, Qt::AlignLeft);
        chart_->legend()->setFont(chartFont(11));
        chart_->setAnimationOptions(QChart::NoAnimation);
        chart_->setBackgroundRoundness(0);
        shadeMargin();
        drawMark(static_cast<double>(data_.startPosition), "start", QPen(QColor(120, 120, 130), 2, Qt::DotLine));
        drawMark(data_.bestPosition, data_.bestLabel, QPen(QColor(190, 30, 45), 2));
        drawMark(static_cast<double>(data_.chosenPosition), "chosen", QPen(QColor(30, 70, 170), 2, Qt::DashLine));
        for (const SearchPhase phase : CHARTED_PHASES)
            drawPhase(phase);
    }

    QChart* chart() const
    {
        return chart_;
    }

private:
    void add(QAbstractSeries* series)
    {
        chart_->addSeries(series);
        series->attachAxis(positionAxis_);
        series->attachAxis(contrastAxis_);
    }

    void shadeMargin()
    {
        const double left = data_.bestPosition - data_.margin;
        const double right = data_.bestPosition + data_.margin;
        auto* upper = new QLineSeries;
        auto* lower = new QLineSeries;
        *upper << QPointF(left, contrast_.high) << QPointF(right, contrast_.high);
        *lower << QPointF(left, contrast_.low) << QPointF(right, contrast_.low);
        auto* area = new QAreaSeries(upper, lower);
        upper->setParent(area);
        lower->setParent(area);
        area->setName("within " + data_.marginLabel);
        area->setColor(QColor(190, 30, 45, 22));
        area->setBorderColor(Qt::transparent);
        add(area);
    }

    void drawMark(double position, const QString& name, const QPen& pen)
    {
        auto* line = new QLineSeries;
        *line << QPointF(position, contrast_.low) << QPointF(position, contrast_.high);
        line->setName(name);
        line->setPen(pen);
        add(line);
    }

    void drawPhase(SearchPhase phase)
    {
        PhaseSeries series(chart_, positionAxis_, contrastAxis_, phase);
        for (const TraceStep& step : data_.trace) {
            if (step.phase == phase && step.sample)
                series.append(QPointF(static_cast<double>(step.position), step.sample->contrast));
        }
    }

    const FocusChart& data_;
    const Range contrast_;
    QChart* chart_; // this and its axes are owned by the scene in the end
    QValueAxis* positionAxis_;
    QValueAxis* contrastAxis_;
};

// Positions and contrast of the samples that `use` selects, with the chosen position and, if `withBest`, the true one.
template <class Use>
std::pair<Range, Range> rangesOf(const FocusChart& chart, bool withBest, Use use)
{
    const auto chosen = static_cast<double>(chart.chosenPosition);
    Range positions{chosen - 1, chosen + 1};
    if (withBest)
        positions.include(chart.bestPosition);
    std::optional<Range> contrast;
    for (const TraceStep& step : chart.trace) {
        if (!step.sample || !use(step))
            continue;
        positions.include(static_cast<double>(step.position));
        if (!contrast)
            contrast = Range{step.sample->contrast, step.sample->contrast};
        contrast->include(step.sample->contrast);
    }
    const Range found = contrast.value_or(Range{0, 0});
    return {positions.widened(0.05),
            found.high - found.low > 0.001 ? found.widened(0.08) : Range{found.low - 1, found.high + 1}};
}

void renderChart(QChart* chart, QPainter& painter, const QRectF& place)
{
    QGraphicsScene scene;
    scene.addItem(chart); // and owns it
    chart->resize(place.size());
    scene.setSceneRect(QRectF(QPointF(0, 0), place.size()));
    scene.render(&painter, place, scene.sceneRect());
}

} // namespace

QImage drawFocusChart(const FocusChart& chart)
{
    QImage picture(WIDTH, HEIGHT, QImage::Format_RGB32);
    if (picture.isNull())
        throw std::bad_alloc();
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(chartFont(15, true));
    painter.drawText(QRect(0, 8, WIDTH, TITLE_HEIGHT), Qt::AlignCenter, chart.title);

    const auto [positions, contrast] = rangesOf(chart, true, [](const TraceStep&) { return true; });
    const bool isNear = std::abs(static_cast<double>(chart.chosenPosition) - chart.bestPosition) <= chart.margin;
    const auto [nearPositions, nearContrast] =
        rangesOf(chart, isNear, [](const TraceStep& step) { return step.phase == SearchPhase::FINE; });
    const int plotHeight = HEIGHT - TITLE_HEIGHT;
    renderChart(Plot(chart, "The whole search", positions, contrast).chart(), painter,
                QRectF(0, TITLE_HEIGHT, LEFT_WIDTH, plotHeight));
    const Plot enlarged(chart, "The fine sweep, enlarged", nearPositions, nearContrast);
    enlarged.chart()->legend()->hide();
    renderChart(enlarged.chart(), painter, QRectF(LEFT_WIDTH, TITLE_HEIGHT, WIDTH - LEFT_WIDTH, plotHeight));
    return picture;
}

} // namespace tesmor::apps
