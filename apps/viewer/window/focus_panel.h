// SPDX-License-Identifier: GPL-2.0-or-later
// Objective, autofocus with its curve, and the focus by hand.
#pragma once

#include "viewer/session/calibration.h"
#include "viewer/session/session.h"

#include <QWidget>

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;

namespace tesmor::apps {

class FocusCurveView;
class FocusWheel;
class SharpnessMeter;

class FocusPanel : public QWidget {
    Q_OBJECT

public:
    FocusPanel(Session& session, QWidget* parent = nullptr);

    void setCalibration(const Calibration& calibration);

    static constexpr int COARSE = 10; // fine steps in a coarse one

    // Motor steps of a fine step.
    int fineSteps() const;

    void addSharpness(double sharpness);

private:
    QWidget* makeSearchBox();
    QWidget* makeHandBox();
    QPushButton* makeMoveButton(const QString& icon, const QString& text, int fineSteps);
    void connectSession();
    void chooseObjective();
    void showState();
    void showPosition();
    void beginCurve();
    void growCurve();
    double placeInCurve(double place) const;
    void endCurve(bool found);

    Session& session_;
    Calibration calibration_;
    QComboBox* objective_;
    QPushButton* focus_;
    QPushButton* stop_;
    FocusCurveView* curve_;
    SharpnessMeter* meter_;
    FocusWheel* wheel_;
    QDoubleSpinBox* step_;
    QLabel* stepLength_;
    QLabel* position_;
    QWidget* handBox_ = nullptr;
    QPushButton* heldButton_ = nullptr;
};

} // namespace tesmor::apps
