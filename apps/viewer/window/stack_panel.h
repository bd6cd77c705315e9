// SPDX-License-Identifier: GPL-2.0-or-later
// What a stack is to be, what it will cost, and the buttons that take and fuse it.
#pragma once

#include "viewer/session/calibration.h"
#include "viewer/session/session.h"

#include <QGroupBox>

#include <optional>

class QLabel;
class QPushButton;
class QRadioButton;
class QSpinBox;

namespace tesmor::apps {

class StackPanel : public QGroupBox {
    Q_OBJECT

public:
    StackPanel(Session& session, QWidget* parent = nullptr);

    void setCalibration(const Calibration& calibration);

    static constexpr int USUAL_SLICES = 12;
    static constexpr int USUAL_SPACING = 4;

    void setNumbers(int slices, int spacing);
    // None when the ends are not set, or too far from each other.
    std::optional<StackPlan> plan() const;

    int slices() const;
    int spacing() const; // units of the objective

signals:
    // What is to be done with the session, once nothing unsaved is in its way.
    void captureAsked();
    void fuseAsked();
    void allAsked(int slices, int spacing);

private:
    void build();
    void connectSession();
    void showState();
    void showTips();
    void showEnd(QLabel* label, std::optional<std::int64_t> end);
    QString textOfPlan() const;
    static QString timeText(double seconds);
    QString lengthText(double steps) const;

    Session& session_;
    Calibration calibration_;
    QRadioButton* around_;
    QRadioButton* between_;
    QPushButton* setFirst_;
    QPushButton* setLast_;
    QLabel* first_;
    QLabel* last_;
    QSpinBox* slices_;
    QSpinBox* spacing_;
    QLabel* planText_;
    QPushButton* capture_;
    QPushButton* fuse_;
    QPushButton* all_;
};

} // namespace tesmor::apps
