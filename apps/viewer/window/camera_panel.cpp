// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/camera_panel.h"

#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLineEdit>

namespace tesmor::apps {

namespace {

constexpr double MS_PER_SECOND = 1000;
constexpr int EXPOSURE_DECIMALS = 3; // microseconds
constexpr int SETTLING_MS = 300;     // and two exposures

bool isBeingEdited(const QDoubleSpinBox* field)
{
    return field->hasFocus() && field->findChild<QLineEdit*>()->isModified();
}

// Hides the row of a control that the camera has not.
void showControl(QFormLayout* form, QDoubleSpinBox* field, const std::optional<cameras::ControlState>& state,
                 double scale)
{
    form->setRowVisible(field, state.has_value());
    if (!state || isBeingEdited(field))
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
    exposure_->setDecimals(EXPOSURE_DECIMALS);
    exposure_->setKeyboardTracking(false);
    exposure_->setStepType(QAbstractSpinBox::AdaptiveDecimalStepType);
    gain_->setObjectName("gain");
    gain_->setKeyboardTracking(false);
    form_->addRow(tr("&Exposure:"), exposure_);
    form_->addRow(tr("&Gain:"), gain_);
    connect(exposure_, &QDoubleSpinBox::valueChanged, this,
            [this](double value) { set(cameras::Control::EXPOSURE, value / MS_PER_SECOND); });
    connect(gain_, &QDoubleSpinBox::valueChanged, this, [this](double value) { set(cameras::Control::GAIN, value); });
    settling_.setSingleShot(true);
    connect(&settling_, &QTimer::timeout, &source_, &LiveSource::refreshControls);
    connect(&source_, &LiveSource::controlsChanged, this, &CameraPanel::showControls);
    connect(&source_, &LiveSource::stateChanged, this, [this] {
        settling_.stop();
        showControls();
    });
    showControls();
}

void CameraPanel::set(cameras::Control control, double value)
{
    source_.setControl(control, value);
    settling_.start(SETTLING_MS + static_cast<int>(2 * exposure_->value()));
}

// While a value settles, the camera still tells the old one.
void CameraPanel::showControls()
{
    if (settling_.isActive())
        return;
    const CameraControls& controls = source_.controls();
    setVisible(controls.exposure || controls.gain);
    setEnabled(source_.state() != LiveSource::State::LOST);
    showControl(form_, exposure_, controls.exposure, MS_PER_SECOND);
    showControl(form_, gain_, controls.gain, 1);
}

} // namespace tesmor::apps
