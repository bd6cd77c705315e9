// SPDX-License-Identifier: GPL-2.0-or-later
#include "cameras/gstreamer/gstreamer_cameras.h"

#include "cameras/gstreamer/gstreamer_device.h"

#include <algorithm>
#include <filesystem>

namespace tesmor::cameras {

namespace {

struct FoundCamera {
    CameraInfo info;
    ObjectHandle<GstDevice> device;
};

void initialise()
{
    static const bool once = [] {
        GError* error = nullptr;
        if (gst_init_check(nullptr, nullptr, &error) != FALSE)
            return true;
        const ErrorHandle failure(error);
        throw CameraError(std::string("GStreamer cannot be used: ") + failure->message + "; install it anew");
    }();
    static_cast<void>(once);
}

std::string textOf(const GstStructure* properties, const char* name)
{
    const char* const text = properties == nullptr ? nullptr : gst_structure_get_string(properties, name);
    return text == nullptr ? "" : text;
}

// The device file where there is one, else GStreamer's name for it.
CameraInfo infoOf(GstDevice* device)
{
    const TextHandle description(gst_device_get_display_name(device));
    const std::unique_ptr<GstStructure, Release<gst_structure_free>> properties(gst_device_get_properties(device));
    for (const char* property : {"device.path", "api.v4l2.path"}) {
        if (const std::string path = textOf(properties.get(), property); !path.empty())
            return {path, description.get()};
    }
    return {description.get(), description.get()};
}

// Several of GStreamer's plugins may know one camera; the first counts.
std::vector<FoundCamera> findCameras()
{
    initialise();
    const ObjectHandle<GstDeviceMonitor> monitor(gst_device_monitor_new());
    gst_device_monitor_add_filter(monitor.get(), "Video/Source", nullptr);
    std::vector<FoundCamera> cameras;
    if (gst_device_monitor_start(monitor.get()) == FALSE)
        return cameras;
    GList* const devices = gst_device_monitor_get_devices(monitor.get());
    for (GList* item = devices; item != nullptr; item = item->next) {
        ObjectHandle<GstDevice> device(GST_DEVICE(item->data));
        CameraInfo info = infoOf(device.get());
        const auto isSame = [&](const FoundCamera& camera) { return camera.info.name == info.name; };
        if (std::ranges::none_of(cameras, isSame))
            cameras.push_back({std::move(info), std::move(device)});
    }
    g_list_free(devices);
    gst_device_monitor_stop(monitor.get());
    return cameras;
}

std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\')
            result += '\\';
        result += character;
    }
    return result + '"';
}

std::unique_ptr<Device> openDeviceFile(const std::string& file)
{
    return std::make_unique<GStreamerDevice>("v4l2src name=tesmor_v4l2 device=" + quoted(file) + " ! decodebin");
}

std::unique_ptr<Device> play(const std::string& uri)
{
    return std::make_unique<GStreamerDevice>("uridecodebin uri=" + quoted(uri));
}

std::unique_ptr<Device> playFile(const std::string& file)
{
    GError* error = nullptr;
    const TextHandle uri(gst_filename_to_uri(file.c_str(), &error));
    const ErrorHandle failure(error);
    if (!uri)
        throw CameraError(std::string(failure->message) + "; name the file in another way");
    return play(uri.get());
}

// The first word names an element, as "videotestsrc" or "v4l2src device=/dev/video2 ! image/jpeg ! jpegdec".
bool isPipeline(const std::string& text)
{
    const ObjectHandle<GstElementFactory> factory(
        gst_element_factory_find(text.substr(0, text.find_first_of(" !")).c_str()));
    return factory != nullptr || text.find('!') != std::string::npos;
}

} // namespace

std::string gstreamerVersion()
{
    unsigned major = 0, minor = 0, micro = 0, nano = 0;
    gst_version(&major, &minor, &micro, &nano);
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(micro);
}

std::vector<CameraInfo> listGStreamerCameras()
{
    std::vector<CameraInfo> infos;
    for (FoundCamera& camera : findCameras())
        infos.push_back(std::move(camera.info));
    return infos;
}

std::unique_ptr<Device> openGStreamerDevice(const std::string& name)
{
    initialise();
    if (name.starts_with("/dev/"))
        return openDeviceFile(name);
    if (name.find("://") != std::string::npos && name.find(' ') == std::string::npos)
        return play(name);
    if (std::error_code ignored; std::filesystem::is_regular_file(name, ignored))
        return playFile(name);
    for (const FoundCamera& camera : findCameras()) {
        if (camera.info.name != name && camera.info.description != name)
            continue;
        if (camera.info.name.starts_with("/dev/"))
            return openDeviceFile(camera.info.name);
        ObjectHandle<GstElement> source(gst_device_create_element(camera.device.get(), nullptr));
        return std::make_unique<GStreamerDevice>("decodebin name=tesmor_head", std::move(source));
    }
    return isPipeline(name) ? std::make_unique<GStreamerDevice>(name) : nullptr;
}

} // namespace tesmor::cameras
