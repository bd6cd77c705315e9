// SPDX-License-Identifier: GPL-2.0-or-later
// The curve of a search: sharpness over motor position, drawn while it runs. Before its first point, words say so.
#pragma once

#include "charts/chart_axis.h"
#include "charts/phase_series.h"

#include <QWidget>

#include <optional>
#include <vector>

class QChart;
class QChartView;
class QLabel;
class QLineSeries;
class QValueAxis;

namespace tesmor::apps {

class FocusCurveView : public QWidget {
    Q_OBJECT

public:
    explicit FocusCurveView(QWidget* parent = nullptr);

    // The title of the horizontal axis, with its unit; "motor position (steps)" at first.
    void setPositionTitle(const QString& title);

    // False where nothing tells the phases of the search apart; true at first.
    void setPhased(bool isPhased);

    int sampleCount() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public slots:
    void clear(); // before a search
    void addSample(tesmor::apps::SearchPhase phase, double position, double sharpness);
    // Where the search ended; none while it runs.
    void setChosenPosition(std::optional<double> position);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void followPalette();
    void showLegend();
    void showRange();

    QChart* chart_;
    QChartView* view_;
    QLabel* nothing_; // in place of the chart while there are no points
    QValueAxis* positionAxis_;
    QValueAxis* sharpnessAxis_;
    std::vector<PhaseSeries> phases_; // as CHARTED_PHASES
    QLineSeries* chosen_;
    std::optional<double> chosenPosition_;
    std::optional<Range> positions_;
    std::optional<Range> sharpness_;
    int sampleCount_ = 0;
    bool isPhased_ = true;
};

} // namespace tesmor::apps
