// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/backends.h"
#include "drive/usb_motor.h"

#include <array>
#include <cstdio>
#include <libusb.h>

namespace tesmor::drive {

const bool HAS_USB = true;

namespace {

// A camera of its own kind, or one with a video interface and something besides; not keyboards, disks or hubs.
bool couldBeMotor(libusb_device* device)
{
    libusb_config_descriptor* config = nullptr;
    if (libusb_get_active_config_descriptor(device, &config) != LIBUSB_SUCCESS)
        return false;
    bool could = false;
    for (int i = 0; i < config->bNumInterfaces; ++i) {
        const libusb_interface& each = config->interface[i];
        could = could || (each.num_altsetting > 0 && (each.altsetting[0].bInterfaceClass == LIBUSB_CLASS_VENDOR_SPEC ||
                                                      each.altsetting[0].bInterfaceClass == LIBUSB_CLASS_VIDEO));
    }
    libusb_free_config_descriptor(config);
    return could;
}

} // namespace

std::unique_ptr<Motor> makeUsbMotor(const Options& options)
{
    return std::make_unique<UsbMotor>(
        UsbSettings{options.usb.vendor, options.usb.product, options.usb.serial, options.usb.ackEndpoint});
}

std::vector<FoundMotor> findUsbMotors()
{
    std::vector<FoundMotor> found;
    libusb_context* context = nullptr;
    if (libusb_init(&context) != LIBUSB_SUCCESS)
        return found;
    libusb_device** list = nullptr;
    const ssize_t count = libusb_get_device_list(context, &list);
    for (ssize_t i = 0; i < count; ++i) {
        libusb_device_descriptor device{};
        if (libusb_get_device_descriptor(list[i], &device) != LIBUSB_SUCCESS || !couldBeMotor(list[i]))
            continue;
        std::array<char, 16> id{};
        std::snprintf(id.data(), id.size(), "%04x:%04x", device.idVendor, device.idProduct);
        found.push_back({std::string("USB device ") + id.data() + ", if it has a focus motor",
                         std::string("usb --device ") + id.data()});
    }
    if (count >= 0)
        libusb_free_device_list(list, 1);
    libusb_exit(context);
    return found;
}

} // namespace tesmor::drive
