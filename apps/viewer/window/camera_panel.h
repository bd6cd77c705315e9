// SPDX-License-Identifier: GPL-2.0-or-later
// Exposure and gain, where the camera has them.
#pragma once

#include "viewer/session/live_source.h"

#include <QGroupBox>
#include <QTimer>

class QDoubleSpinBox;
class QFormLayout;

namespace tesmor::apps {

class CameraPanel : public QGroupBox {
    Q_OBJECT

public:
    CameraPanel(LiveSource& source, QWidget* parent = nullptr);

private:
    void set(cameras::Control control, double value);
    void showControls();

    LiveSource& source_;
    QFormLayout* form_;
    QDoubleSpinBox* exposure_; // milliseconds
    QDoubleSpinBox* gain_;
    QTimer settling_; // until the camera has had time to take a value
};

} // namespace tesmor::apps
