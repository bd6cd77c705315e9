// SPDX-License-Identifier: GPL-2.0-or-later
// The cameras of this computer, of all kinds that this build has.
#pragma once

#include "cameras/device.h"

#include <memory>
#include <string>
#include <vector>

namespace tesmor::cameras {

struct CameraInfo {
    std::string name;        // what openDevice takes; stays the same while the camera is plugged in
    std::string description; // for people, such as the maker's name for it
};

// Those that answer now; not the virtual one, which is always there. From any thread, several at a time too. Blocks for
// some two seconds.
std::vector<CameraInfo> listCameras();

// By name:
//   virtual                            a simulated microscope's, with its drive
//   a name or a description that listCameras gives
//   /dev/video0                        a USB camera or another of the system's
//   rtsp://..., http://..., a file     a stream or a recording
//   videotestsrc ! ...                 whatever GStreamer can do, as for gst-launch-1.0
//   192.168.0.9                        a GigE Vision camera by its address
// For a Camera, on its thread. Throws CameraError.
std::unique_ptr<Device> openDevice(const std::string& name);

// "virtual, GStreamer 1.22.0; built without Aravis (GigE Vision, USB3 Vision)"
std::string kindsOfCameras();

} // namespace tesmor::cameras
