// SPDX-License-Identifier: GPL-2.0-or-later
// GigE Vision and USB3 Vision cameras, through Aravis.
#pragma once

#include "cameras/camera_list.h"

#include <memory>
#include <string>
#include <vector>

namespace tesmor::cameras {

std::string aravisVersion();

// See listCameras.
std::vector<CameraInfo> listGenicamCameras();

// By a name or a description of the list, a serial number or a network address. Null when there is no such camera.
// Throws CameraError.
std::unique_ptr<Device> openGenicamDevice(const std::string& name);

} // namespace tesmor::cameras
