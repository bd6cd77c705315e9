// SPDX-License-Identifier: GPL-2.0-or-later
// Axes of our charts.
#pragma once

#include <QFont>
#include <QString>
#include <QValueAxis>

namespace tesmor::apps {

struct Range {
    double low;
    double high; // above low, for an axis

    void include(double value);
    Range widened(double share) const; // at either end
};

QFont chartFont(double points, bool bold = false);

// A new range for an axis made by makeAxis(), with at least so many parts between ticks at round numbers, and at most
// twice as many and a half.
void setAxisRange(QValueAxis* axis, const Range& range, int parts = 4);

// With four to nine ticks at round numbers. It belongs to the chart that it is added to.
QValueAxis* makeAxis(const QString& title, const Range& range);

} // namespace tesmor::apps
