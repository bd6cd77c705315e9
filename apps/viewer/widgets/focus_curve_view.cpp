// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/focus_curve_view.h"

#include <QChart>
#include <QChartView>
#include <QEvent>
#include <QGraphicsLayout>
#include <QLabel>
#include <QLegend>
#include <QLineSeries>
#include <QStackedLayout>
#include <QValueAxis>

#include <algorithm>

namespace tesmor::apps {

namespace {

constexpr int LOW = 180; // pixels: below, the curve needs what the legend takes

} // namespace

FocusCurveView::FocusCurveView(QWidget* parent)
    : QWidget(parent), chart_(new QChart), view_(new QChartView(chart_)),
      nothing_(new QLabel(tr("An autofocus draws its curve here."))),
      positionAxis_(makeAxis(tr("motor position (steps)"), {0, 1000})),
      sharpnessAxis_(makeAxis(tr("sharpness (grey levels)"), {0, 10})), chosen_(new QLineSeries)
{
    auto* layout = new QStackedLayout(this);
    layout->addWidget(nothing_);
    layout->addWidget(view_);
    nothing_->setAlignment(Qt::AlignCenter);
    nothing_->setForegroundRole(QPalette::PlaceholderText);
    view_->setRenderHint(QPainter::Antialiasing);
    view_->setFrameShape(QFrame::NoFrame);
    view_->setFocusPolicy(Qt::NoFocus);
    chart_->setAnimationOptions(QChart::NoAnimation);
    chart_->setBackgroundVisible(false);
    chart_->setMargins(QMargins(2, 2, 2, 2));
    chart_->layout()->setContentsMargins(0, 0, 0, 0);
    chart_->addAxis(positionAxis_, Qt::AlignBottom);
    chart_->addAxis(sharpnessAxis_, Qt::AlignLeft);
    chart_->legend()->setAlignment(Qt::AlignTop);
    chosen_->setName(tr("focus"));
    chart_->addSeries(chosen_);
    chosen_->attachAxis(positionAxis_);
    chosen_->attachAxis(sharpnessAxis_);
    for (const SearchPhase phase : CHARTED_PHASES)
        phases_.emplace_back(chart_, positionAxis_, sharpnessAxis_, phase);
    setAccessibleName(tr("Focus curve"));
    setPhased(true);
    followPalette();
    showRange();
}

void FocusCurveView::setPositionTitle(const QString& title)
{
    positionAxis_->setTitleText(title);
}

void FocusCurveView::setPhased(bool isPhased)
{
    isPhased_ = isPhased;
    setToolTip(isPhased ? tr("Sharpness over motor position during the search: probe (grey circles), coarse sweep "
                             "(orange squares), fine sweep (green triangles), and where it ended (dashed line)")
                        : tr("Sharpness over time during the search: this motor does not tell its position"));
    showLegend();
}

void FocusCurveView::showLegend()
{
    chart_->legend()->setVisible(isPhased_ && height() >= LOW);
}

int FocusCurveView::sampleCount() const
{
    return sampleCount_;
}

QSize FocusCurveView::sizeHint() const
{
    return {360, 120}; // more where there is more
}

QSize FocusCurveView::minimumSizeHint() const
{
    return {240, 120};
}

void FocusCurveView::clear()
{
    for (PhaseSeries& phase : phases_)
        phase.clear();
    positions_.reset();
    sharpness_.reset();
    sampleCount_ = 0;
    setChosenPosition({});
    static_cast<QStackedLayout*>(layout())->setCurrentWidget(nothing_);
}

void FocusCurveView::addSample(SearchPhase phase, double position, double sharpness)
{
    const auto* found = std::ranges::find(CHARTED_PHASES, phase);
    if (found == std::end(CHARTED_PHASES))
        return;
    phases_[static_cast<std::size_t>(found - CHARTED_PHASES)].append(QPointF(position, sharpness));
    ++sampleCount_;
    static_cast<QStackedLayout*>(layout())->setCurrentWidget(view_);
    if (!positions_) {
        positions_ = Range{position, position};
        sharpness_ = Range{sharpness, sharpness};
    }
    positions_->include(position);
    sharpness_->include(sharpness);
    showRange();
}

void FocusCurveView::setChosenPosition(std::optional<double> position)
{
    chosenPosition_ = position;
    if (position && positions_)
        positions_->include(*position);
    showRange();
}

void FocusCurveView::showRange()
{
    constexpr double LEAST = 1e-3;
    constexpr int PARTS = 2; // the view may be narrow, and its numbers long
    if (positions_ && positions_->high - positions_->low >= LEAST)
        setAxisRange(positionAxis_, positions_->widened(0.05), PARTS);
    if (sharpness_ && sharpness_->high - sharpness_->low >= LEAST)
        setAxisRange(sharpnessAxis_, sharpness_->widened(0.08), PARTS);
    chosen_->clear();
    if (chosenPosition_)
        *chosen_ << QPointF(*chosenPosition_, sharpnessAxis_->min())
                 << QPointF(*chosenPosition_, sharpnessAxis_->max());
}

void FocusCurveView::resizeEvent(QResizeEvent* event)
{
    showLegend();
    sharpnessAxis_->setTitleVisible(height() >= LOW);
    QWidget::resizeEvent(event);
}

void FocusCurveView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        followPalette();
    QWidget::changeEvent(event);
}

void FocusCurveView::followPalette()
{
    const QColor text = palette().color(QPalette::WindowText);
    QColor grid = text;
    grid.setAlphaF(0.15F);
    QFont small = font();
    small.setPointSizeF(font().pointSizeF() * 0.9);
    for (QValueAxis* axis : {positionAxis_, sharpnessAxis_}) {
        axis->setTitleFont(small);
        axis->setTitleBrush(text);
        axis->setLabelsFont(small);
        axis->setLabelsColor(text);
        axis->setLinePenColor(text);
        axis->setGridLineColor(grid);
    }
    chart_->legend()->setFont(small);
    chart_->legend()->setLabelColor(text);
    chosen_->setPen(QPen(palette().color(QPalette::Highlight), 2, Qt::DashLine));
    view_->setBackgroundBrush(palette().color(QPalette::Window));
}

} // namespace tesmor::apps
