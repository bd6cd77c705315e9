// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/focus_panel.h"

#include "host/focus_units.h"
#include "viewer/widgets/focus_curve_view.h"
#include "viewer/widgets/scale_bar.h"
#include "viewer/widgets/sharpness_meter.h"
#include "viewer/widgets/style.h"
#include "viewer/window/focus_wheel.h"
#include "viewer/window/why_not.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tesmor::apps {

namespace {

constexpr double LARGEST_STEP = 36; // degrees; a coarse one is a turn
constexpr int LARGE_BUTTON = 40;    // pixels high

} // namespace

FocusPanel::FocusPanel(Session& session, QWidget* parent)
    : QWidget(parent), session_(session), objective_(new QComboBox), focus_(new QPushButton), stop_(new QPushButton),
      curve_(new FocusCurveView), meter_(new SharpnessMeter), wheel_(new FocusWheel), step_(new QDoubleSpinBox),
      stepLength_(new QLabel), position_(new QLabel)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(makeSearchBox());
    layout->addWidget(handBox_ = makeHandBox());
    connectSession();
    chooseObjective();
    showState();
}

QWidget* FocusPanel::makeSearchBox()
{
    auto* box = new QGroupBox(tr("Focus"));
    for (const FocusObjective& objective : FOCUS_OBJECTIVES)
        objective_->addItem(tr("%1×").arg(objective.magnification), objective.magnification);
    objective_->setCurrentIndex(objective_->findData(session_.magnification()));
    objective_->setObjectName("objective");
    objective_->setAccessibleName(tr("Objective"));
    objective_->setToolTip(tr("The objective that is in use: it decides how far an autofocus searches"));
    auto* objectiveLabel = new QLabel(tr("&Objective:"));
    objectiveLabel->setBuddy(objective_);

    focus_->setObjectName("autofocus");
    focus_->setText(tr("Autofocus"));
    focus_->setIcon(themedIcon("focus"));
    focus_->setMinimumHeight(LARGE_BUTTON);
    QFont large = focus_->font();
    large.setPointSizeF(large.pointSizeF() * 1.25);
    large.setBold(true);
    focus_->setFont(large);
    stop_->setObjectName("stop");
    stop_->setIcon(themedIcon("stop"));
    stop_->setToolTip(tr("Stop what is running (Esc)"));
    stop_->setMinimumHeight(LARGE_BUTTON);
    curve_->setAccessibleName(tr("Sharpness over focus position"));
    meter_->setAccessibleName(tr("Sharpness of the live image"));

    auto* objectiveRow = new QHBoxLayout;
    objectiveRow->addWidget(objectiveLabel);
    objectiveRow->addWidget(objective_, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(focus_, 2);
    buttons->addWidget(stop_, 1);
    auto* layout = new QVBoxLayout(box);
    layout->addLayout(objectiveRow);
    layout->addLayout(buttons);
    layout->addWidget(curve_, 1);
    layout->addWidget(meter_);
    return box;
}

QWidget* FocusPanel::makeHandBox()
{
    auto* box = new QGroupBox(tr("By hand"));
    step_->setObjectName("step");
    step_->setRange(DEGREES_PER_STEP, LARGEST_STEP);
    step_->setDecimals(2);
    step_->setSingleStep(0.25);
    step_->setSuffix(tr("°"));
    step_->setAccessibleName(tr("Fine step"));
    step_->setToolTip(
        tr("How far the arrow keys and a notch of the wheel turn the focus; the page keys turn it ten times as far"));
    auto* stepLabel = new QLabel(tr("Ste&p:"));
    stepLabel->setBuddy(step_);
    position_->setObjectName("position");
    position_->setAccessibleName(tr("Focus position"));

    auto* layout = new QGridLayout(box);
    layout->addWidget(wheel_, 0, 0, 3, 1);
    layout->addWidget(makeMoveButton("move-up-fast", tr("Forward, coarse (Page Up)"), COARSE), 0, 1);
    layout->addWidget(makeMoveButton("move-up", tr("Forward, fine (Up)"), 1), 0, 2);
    layout->addWidget(makeMoveButton("move-down", tr("Back, fine (Down)"), -1), 0, 3);
    layout->addWidget(makeMoveButton("move-down-fast", tr("Back, coarse (Page Down)"), -COARSE), 0, 4);
    auto* stepRow = new QHBoxLayout;
    stepRow->addWidget(stepLabel);
    stepRow->addWidget(step_);
    stepRow->addWidget(stepLength_, 1);
    layout->addLayout(stepRow, 1, 1, 1, 4);
    layout->addWidget(position_, 2, 1, 1, 4);
    connect(wheel_, &FocusWheel::turned, this, [this](int notches) { session_.move(notches * fineSteps()); });
    connect(step_, &QDoubleSpinBox::valueChanged, this, &FocusPanel::showPosition);
    return box;
}

QPushButton* FocusPanel::makeMoveButton(const QString& icon, const QString& text, int steps)
{
    auto* button = new QPushButton(themedIcon(icon), {});
    button->setToolTip(text);
    button->setAccessibleName(text);
    button->setAutoRepeat(true);
    button->setFocusPolicy(Qt::TabFocus);
    // A held button repeats by pressing again; its last release comes with the mouse up.
    connect(button, &QPushButton::pressed, this, [this, button, steps] {
        if (std::exchange(heldButton_, button) == button)
            session_.moveHeld(steps * fineSteps());
        else
            session_.move(steps * fineSteps());
    });
    connect(button, &QPushButton::released, this, [this, button] {
        if (button->isDown())
            return;
        heldButton_ = nullptr;
        session_.letGo();
    });
    return button;
}

void FocusPanel::connectSession()
{
    connect(objective_, &QComboBox::currentIndexChanged, this, &FocusPanel::chooseObjective);
    connect(focus_, &QPushButton::clicked, &session_, &Session::focus);
    connect(stop_, &QPushButton::clicked, &session_, &Session::stop);
    connect(&session_, &Session::changed, this, &FocusPanel::showState);
    connect(&session_, &Session::moved, this, &FocusPanel::showPosition);
    connect(&session_, &Session::curveBegun, this, &FocusPanel::beginCurve);
    connect(&session_, &Session::curveGrew, this, &FocusPanel::growCurve);
    connect(&session_, &Session::curveEnded, this, &FocusPanel::endCurve);
}

void FocusPanel::setCalibration(const Calibration& calibration)
{
    calibration_ = calibration;
    showPosition();
}

int FocusPanel::fineSteps() const
{
    return std::max(1, static_cast<int>(std::lround(step_->value() / DEGREES_PER_STEP)));
}

void FocusPanel::addSharpness(double sharpness)
{
    meter_->addSample(sharpness);
}

void FocusPanel::chooseObjective()
{
    const auto magnification = static_cast<std::uint16_t>(objective_->currentData().toUInt());
    step_->setValue(stepsPerUnit(magnification) * DEGREES_PER_STEP);
    meter_->reset();
    session_.setMagnification(magnification);
}

void FocusPanel::showState()
{
    objective_->setEnabled(session_.isFree());
    focus_->setEnabled(session_.isFree() && session_.canFocus());
    stop_->setEnabled(!session_.isFree() && !session_.isStopping());
    stop_->setText(session_.isStopping() ? tr("Stopping …") : tr("Stop"));
    handBox_->setEnabled(session_.isFree() && session_.canFocus());
    const QString reason = whyNot(session_);
    focus_->setToolTip(withReason(tr("Drive the focus to where the image is sharpest (F)"), reason));
    handBox_->setToolTip(reason);
    showPosition();
}

void FocusPanel::showPosition()
{
    const auto lengthOf = [this](double steps) {
        const auto length = calibration_.micrometres(steps);
        return length ? (*length < 0 ? "−" : "") + lengthText(std::abs(*length)) : QString();
    };
    stepLength_->setText(lengthOf(fineSteps()));
    const auto steps = static_cast<double>(session_.position());
    const QString degrees = tr("Position %1°").arg(QString::number(steps * DEGREES_PER_STEP, 'f', 1).replace('-', "−"));
    const QString length = lengthOf(steps);
    position_->setText(length.isEmpty() ? degrees : degrees + ", " + length);
}

void FocusPanel::beginCurve()
{
    curve_->clear();
    curve_->setPhased(!session_.curve().isOverTime());
    curve_->setPositionTitle(session_.curve().isOverTime() ? tr("time (s)")
                             : calibration_.micrometres(1) ? tr("focus position (µm)")
                                                           : tr("focus position (°)"));
}

double FocusPanel::placeInCurve(double place) const
{
    return session_.curve().isOverTime() ? place : calibration_.micrometres(place).value_or(place * DEGREES_PER_STEP);
}

void FocusPanel::growCurve()
{
    const auto& points = session_.curve().points();
    for (auto i = static_cast<std::size_t>(curve_->sampleCount()); i < points.size(); ++i)
        curve_->addSample(points[i].phase, placeInCurve(points[i].place), points[i].sharpness);
}

void FocusPanel::endCurve(bool found)
{
    growCurve();
    if (found && !session_.curve().isOverTime())
        curve_->setChosenPosition(placeInCurve(static_cast<double>(session_.position())));
}

} // namespace tesmor::apps
