// SPDX-License-Identifier: GPL-2.0-or-later
#include "cameras/camera_list.h"

#include "cameras/virtual/virtual_device.h"

#ifdef TESMOR_CAMERAS_GSTREAMER
#include "cameras/gstreamer/gstreamer_cameras.h"
#endif
#ifdef TESMOR_CAMERAS_ARAVIS
#include "cameras/genicam/genicam_cameras.h"
#endif

#include <utility>

namespace tesmor::cameras {

namespace {

// The kinds of cameras beside the virtual one, in the order in which they are asked.
struct Kind {
    const char* product;
    const char* cameras;
    std::string (*version)();
    std::vector<CameraInfo> (*list)();
    std::unique_ptr<Device> (*open)(const std::string& name); // null: not one of theirs
};

constexpr const char* GSTREAMER_CAMERAS = "USB cameras, streams, files";
constexpr const char* ARAVIS_CAMERAS = "GigE Vision, USB3 Vision";
#ifdef TESMOR_CAMERAS_GSTREAMER
constexpr Kind GSTREAMER{"GStreamer", GSTREAMER_CAMERAS, gstreamerVersion, listGStreamerCameras, openGStreamerDevice};
#else
constexpr Kind GSTREAMER{"GStreamer", GSTREAMER_CAMERAS, nullptr, nullptr, nullptr};
#endif
#ifdef TESMOR_CAMERAS_ARAVIS
constexpr Kind ARAVIS{"Aravis", ARAVIS_CAMERAS, aravisVersion, listGenicamCameras, openGenicamDevice};
#else
constexpr Kind ARAVIS{"Aravis", ARAVIS_CAMERAS, nullptr, nullptr, nullptr};
#endif

std::unique_ptr<Device> openVirtualDevice()
{
    microscope::Settings settings;
    settings.width = 640;
    settings.height = 480;
    settings.startOffset = -1000;
    const double framesPerSecond = std::exchange(settings.framesPerSecond, 0);
    return std::make_unique<VirtualDevice>(std::make_shared<microscope::VirtualMicroscope>(settings), framesPerSecond);
}

} // namespace

std::vector<CameraInfo> listCameras()
{
    std::vector<CameraInfo> all;
    for (const Kind& kind : {ARAVIS, GSTREAMER}) {
        if (kind.list == nullptr)
            continue;
        for (CameraInfo& info : kind.list())
            all.push_back(std::move(info));
    }
    return all;
}

std::unique_ptr<Device> openDevice(const std::string& name)
{
    if (name == "virtual")
        return openVirtualDevice();
    for (const Kind& kind : {GSTREAMER, ARAVIS}) {
        if (kind.open == nullptr)
            continue;
        if (auto device = kind.open(name))
            return device;
    }
    throw CameraError("no such camera; plug it in, or choose one that is listed");
}

std::string kindsOfCameras()
{
    std::string there = "virtual", missing;
    for (const Kind& kind : {GSTREAMER, ARAVIS}) {
        if (kind.version != nullptr)
            there += std::string(", ") + kind.product + " " + kind.version();
        else
            missing += std::string("; built without ") + kind.product + " (" + kind.cameras + ")";
    }
    return there + missing;
}

} // namespace tesmor::cameras
