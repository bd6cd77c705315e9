// SPDX-License-Identifier: GPL-2.0-or-later
#include "charts/phase_series.h"

#include <QChart>
#include <QCoreApplication>
#include <QLegend>
#include <QLegendMarker>
#include <QLineSeries>
#include <QScatterSeries>
#include <QValueAxis>

namespace tesmor::apps {

namespace {

struct Look {
    QScatterSeries::MarkerShape shape;
    QColor colour; // readable on white and on black
    double size;   // of a point, pixels
};

Look lookOf(SearchPhase phase)
{
    switch (phase) {
    case SearchPhase::COARSE:
        return {QScatterSeries::MarkerShapeRectangle, QColor(225, 120, 20), 8};
    case SearchPhase::FINE:
        return {QScatterSeries::MarkerShapeTriangle, QColor(30, 150, 100), 9};
    default:
        return {QScatterSeries::MarkerShapeCircle, QColor(140, 140, 155), 11};
    }
}

} // namespace

PhaseSeries::PhaseSeries(QChart* chart, QValueAxis* positionAxis, QValueAxis* sharpnessAxis, SearchPhase phase)
    : line_(new QLineSeries), points_(new QScatterSeries)
{
    const Look look = lookOf(phase);
    line_->setPen(QPen(look.colour, 1.5));
    points_->setName(QCoreApplication::translate("SearchPhase", phaseName(phase)));
    points_->setMarkerShape(look.shape);
    points_->setColor(look.colour);
    points_->setBorderColor(Qt::white);
    points_->setMarkerSize(look.size);
    for (QXYSeries* series : {static_cast<QXYSeries*>(line_), static_cast<QXYSeries*>(points_)}) {
        chart->addSeries(series);
        series->attachAxis(positionAxis);
        series->attachAxis(sharpnessAxis);
    }
    for (QLegendMarker* marker : chart->legend()->markers(line_))
        marker->setVisible(false);
    chart->legend()->setMarkerShape(QLegend::MarkerShapeFromSeries);
}

void PhaseSeries::append(QPointF point)
{
    line_->append(point);
    points_->append(point);
}

void PhaseSeries::clear()
{
    line_->clear();
    points_->clear();
}

} // namespace tesmor::apps
