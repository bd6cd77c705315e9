// SPDX-License-Identifier: GPL-2.0-or-later
#include "cameras/camera.h"

#include "cameras/camera_list.h"
#include "cameras/camera_source.h"

#include <utility>

namespace tesmor::cameras {

Camera::Camera(const std::string& name) : Camera([name] { return openDevice(name); }) {}

Camera::Camera(const DeviceMaker& make) : source_(CameraSource::open(make)) {}

Camera::~Camera()
{
    source_->close();
}

void Camera::start(FrameSink frameSink, EventSink eventSink)
{
    source_->start(std::move(frameSink), std::move(eventSink));
}

void Camera::stop() noexcept
{
    source_->stop();
}

std::optional<ControlState> Camera::control(Control control) const
{
    return source_->control(control);
}

void Camera::setControl(Control control, double value)
{
    source_->setControl(control, value);
}

} // namespace tesmor::cameras
