// SPDX-License-Identifier: GPL-2.0-or-later
#include "charts/chart_axis.h"

#include <algorithm>
#include <cmath>

namespace tesmor::apps {

namespace {

// 1, 2 or 5 times a power of ten.
double roundInterval(const Range& range, int parts)
{
    const double rough = (range.high - range.low) / parts;
    const double power = std::pow(10, std::floor(std::log10(rough)));
    const double digit = rough / power;
    return power * (digit < 2 ? 1 : digit < 5 ? 2 : 5);
}

} // namespace

void Range::include(double value)
{
    low = std::min(low, value);
    high = std::max(high, value);
}

Range Range::widened(double share) const
{
    const double more = (high - low) * share;
    return {low - more, high + more};
}

QFont chartFont(double points, bool bold)
{
    QFont font("DejaVu Sans");
    font.setPointSizeF(points);
    font.setBold(bold);
    return font;
}

void setAxisRange(QValueAxis* axis, const Range& range, int parts)
{
    const double interval = roundInterval(range, parts);
    const int decimals = std::max(0, static_cast<int>(-std::floor(std::log10(interval) + 1e-9)));
    axis->setLabelFormat(QString("%.%1f").arg(decimals));
    axis->setRange(range.low, range.high);
    axis->setTickInterval(interval);
}

QValueAxis* makeAxis(const QString& title, const Range& range)
{
    auto* axis = new QValueAxis;
    axis->setTitleText(title);
    axis->setTitleFont(chartFont(12));
    axis->setLabelsFont(chartFont(11));
    axis->setTickType(QValueAxis::TicksDynamic);
    axis->setTickAnchor(0);
    axis->setGridLineColor(QColor(228, 228, 232));
    setAxisRange(axis, range);
    return axis;
}

} // namespace tesmor::apps
