// SPDX-License-Identifier: GPL-2.0-or-later
// Cameras, streams and recordings that GStreamer can play.
#pragma once

#include "cameras/camera_list.h"

#include <memory>
#include <string>
#include <vector>

namespace tesmor::cameras {

std::string gstreamerVersion();

// See listCameras.
std::vector<CameraInfo> listGStreamerCameras();

// By a name, a description, a device file, an address, a file or a pipeline; see openDevice. Null when it is none of
// them. Throws CameraError.
std::unique_ptr<Device> openGStreamerDevice(const std::string& name);

} // namespace tesmor::cameras
