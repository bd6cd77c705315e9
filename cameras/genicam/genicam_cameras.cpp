// SPDX-License-Identifier: GPL-2.0-or-later
#include "cameras/genicam/genicam_cameras.h"

#include "cameras/genicam/genicam_device.h"

#include <mutex>

namespace tesmor::cameras {

namespace {

std::mutex listMutex; // Aravis has one list of cameras in the process

std::string textOf(const char* text)
{
    return text == nullptr ? "" : text;
}

// With listMutex locked. Blocks for a second.
std::vector<CameraInfo> findCameras()
{
    arv_update_device_list();
    std::vector<CameraInfo> cameras;
    for (unsigned i = 0; i < arv_get_n_devices(); ++i) {
        const bool isNetwork = textOf(arv_get_device_protocol(i)) == "GigEVision";
        const std::string model = textOf(arv_get_device_vendor(i)) + " " + textOf(arv_get_device_model(i));
        cameras.push_back(
            {textOf(arv_get_device_id(i)),
             model + (isNetwork ? ", GigE Vision at " + textOf(arv_get_device_address(i)) : ", USB3 Vision")});
    }
    return cameras;
}

bool isAddress(const std::string& name)
{
    return g_hostname_is_ip_address(name.c_str()) != FALSE;
}

} // namespace

std::string aravisVersion()
{
    return std::to_string(arv_get_major_version()) + "." + std::to_string(arv_get_minor_version()) + "." +
           std::to_string(arv_get_micro_version());
}

std::vector<CameraInfo> listGenicamCameras()
{
    const std::lock_guard lock(listMutex);
    return findCameras();
}

std::unique_ptr<Device> openGenicamDevice(const std::string& name)
{
    const std::lock_guard lock(listMutex);
    if (isAddress(name))
        return std::make_unique<GenicamDevice>(name);
    for (const CameraInfo& camera : findCameras()) {
        if (camera.name == name || camera.description == name || camera.name.ends_with("-" + name))
            return std::make_unique<GenicamDevice>(camera.name);
    }
    return nullptr;
}

} // namespace tesmor::cameras
