// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/camera_panel.h"

#include <QDoubleSpinBox>
#include <QFormLayout>

namespace tesmor::apps {

namespace {

constexpr double MS_PER_SECOND = 1000;

// Hides the row of a control that the camera has not.
void showControl(QFormLayout* form, QDoubleSpinBox* field, const std::optional<cameras::ControlState>& state,
                 double scale)
{
    form->setRowVisible(field, state.has_value());
    if (!state || field->hasFocus())
        return;
    const QSignalBlocker blocker(field);
    field->setRange(state->least * scale, state->most * scale);
    field->setValue(state->value * scale);
}

} // namespace

CameraPanel::CameraPanel(LiveSource& source, QWidget* parent)
    : QGroupBox(tr("Camera"), parent), source_(source), form_(new QFormLayout(this)), exposure_(new QDoubleSpinBox),
      gain_(new QDoubleSpinBox)
{
    exposure_->setObjectName("exposure");
    exposure_->setSuffix(tr(" ms"));
    exposure_->setKeyboardTracking(false);
    exposure_->setStepType(QAbstractSpinBox::AdaptiveDecimalStepType);
    gain_->setObjectName("gain");
    gain_->setKeyboardTracking(false);
    form_->addRow(tr("&Exposure:"), exposure_);
    form_->addRow(tr("&Gain:"), gain_);
    connect(exposure_, &QDoubleSpinBox::valueChanged, this,
            [this](double value) { source_.setControl(cameras::Control::EXPOSURE, value / MS_PER_SECOND); });
    connect(gain_, &QDoubleSpinBox::valueChanged, this,
            [this](double value) { source_.setControl(cameras::Control::GAIN, value); });
    connect(&source_, &LiveSource::controlsChanged, this, &CameraPanel::showControls);
    connect(&source_, &LiveSource::stateChanged, this, &CameraPanel::showControls);
    showControls();
}

void CameraPanel::showControls()
{
    const CameraControls& controls = source_.controls();
    setVisible(controls.exposure || controls.gain);
    showControl(form_, exposure_, controls.exposure, MS_PER_SECOND);
    showControl(form_, gain_, controls.gain, 1);
}

} // namespace tesmor::apps
