// SPDX-License-Identifier: GPL-2.0-or-later
#include "motors/fake_usb_camera.h"

#include "protocol/drive_request.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>
#include <utility>

namespace tesmor::test {

namespace {

constexpr const char* NODE = "/dev/bus/usb/001/005";

constexpr const char* PATH = "/sys/devices/camera";

// The descriptors: a device, 1d50:6018; a configuration, a vendor's interface, an interrupt endpoint 0x81 of 8 bytes.
constexpr const char* DEVICE = "P: /devices/camera\n"
                               "N: bus/usb/001/005\n"
                               "E: DEVNAME=/dev/bus/usb/001/005\n"
                               "E: DEVTYPE=usb_device\n"
                               "E: SUBSYSTEM=usb\n"
                               "E: BUSNUM=001\n"
                               "E: DEVNUM=005\n"
                               "A: busnum=1\\n\n"
                               "A: devnum=5\\n\n"
                               "A: speed=480\\n\n"
                               "A: bConfigurationValue=1\\n\n"
                               "H: descriptors=1201000200000040501d18600001000003010902190001010080320904000001FF0000"
                               "000705810308000A\n\n";

usbdevfs_urb& urbIn(UMockdevIoctlData* data)
{
    return *reinterpret_cast<usbdevfs_urb*>(data->data);
}

} // namespace

FakeUsbCamera::FakeUsbCamera() : testbed_(umockdev_testbed_new()), base_(umockdev_ioctl_base_new())
{
    g_signal_connect(base_, "handle-ioctl", G_CALLBACK(onIoctl), this);
    plugIn();
    umockdev_testbed_attach_ioctl(testbed_, NODE, base_, nullptr);
}

FakeUsbCamera::~FakeUsbCamera()
{
    umockdev_testbed_detach_ioctl(testbed_, NODE, nullptr);
    g_object_unref(base_);
    g_object_unref(testbed_);
}

void FakeUsbCamera::plugIn()
{
    umockdev_testbed_add_from_string(testbed_, DEVICE, nullptr);
    const std::lock_guard lock(mutex_);
    gone_ = false;
}

void FakeUsbCamera::unplug()
{
    {
        const std::lock_guard lock(mutex_);
        gone_ = true;
        acknowledgements_ = 0;
        for (UMockdevIoctlData* const urb : std::exchange(waiting_, {}))
            finish(urb, -ESHUTDOWN, 0);
    }
    umockdev_testbed_remove_device(testbed_, PATH);
}

std::vector<FakeUsbCamera::Setup> FakeUsbCamera::requests() const
{
    const std::lock_guard lock(mutex_);
    return requests_;
}

void FakeUsbCamera::stall(bool stalls)
{
    const std::lock_guard lock(mutex_);
    stalls_ = stalls;
}

void FakeUsbCamera::hold(bool held)
{
    const std::lock_guard lock(mutex_);
    held_ = held;
}

gboolean FakeUsbCamera::onIoctl(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer camera)
{
    return static_cast<FakeUsbCamera*>(camera)->answer(client) ? TRUE : FALSE;
}

bool FakeUsbCamera::answer(UMockdevIoctlClient* client)
{
    const std::lock_guard lock(mutex_);
    if (gone_ && done_.empty()) {
        umockdev_ioctl_client_complete(client, -1, ENODEV);
        return true;
    }
    switch (umockdev_ioctl_client_get_request(client)) {
    case USBDEVFS_SUBMITURB:
        submit(client);
        break;
    case USBDEVFS_REAPURB:
    case USBDEVFS_REAPURBNDELAY:
        if (!reap(client)) {
            umockdev_ioctl_client_complete(client, -1, EAGAIN);
            return true;
        }
        break;
    case USBDEVFS_DISCARDURB:
        if (!waiting_.empty()) {
            finish(waiting_.front(), -ENOENT, 0);
            waiting_.pop_front();
        }
        break;
    case USBDEVFS_CLAIMINTERFACE:
    case USBDEVFS_RELEASEINTERFACE:
        break;
    default:
        umockdev_ioctl_client_complete(client, -1, ENOTTY);
        return true;
    }
    umockdev_ioctl_client_complete(client, 0, 0);
    return true;
}

void FakeUsbCamera::submit(UMockdevIoctlClient* client)
{
    UMockdevIoctlData* const urb =
        umockdev_ioctl_data_resolve(umockdev_ioctl_client_get_arg(client), 0, sizeof(usbdevfs_urb), nullptr);
    UMockdevIoctlData* const buffer = umockdev_ioctl_data_resolve(
        urb, offsetof(usbdevfs_urb, buffer), static_cast<gsize>(urbIn(urb).buffer_length), nullptr);
    if (urbIn(urb).type != USBDEVFS_URB_TYPE_CONTROL) {
        waiting_.push_back(urb);
        return;
    }
    const int length = control(buffer);
    finish(urb, length < 0 ? -EPIPE : 0, std::max(length, 0));
}

// The bytes that it answers with, or -1 when it refuses.
int FakeUsbCamera::control(UMockdevIoctlData* buffer)
{
    const guint8* const bytes = buffer->data;
    const Setup setup{bytes[0], bytes[1], bytes[2] | unsigned{bytes[3]} << 8, bytes[4] | unsigned{bytes[5]} << 8};
    if (setup[0] == 0x80 && setup[1] == 6) { // a string: the languages, or the serial number
        std::array<guint8, 6> languages{4, 3, 9, 4};
        std::array<guint8, 6> serial{6, 3, 'S', 0, '7', 0};
        auto& text = setup[2] == 0x0300 ? languages : serial;
        umockdev_ioctl_data_update(buffer, 8, text.data(), text[0]);
        return text[0];
    }
    if (stalls_)
        return -1;
    requests_.push_back(setup);
    acknowledgements_ += setup[1] == DRIVE_REQ_MOVE ? 1 : 0;
    return 0;
}

bool FakeUsbCamera::reap(UMockdevIoctlClient* client)
{
    if (acknowledgements_ > 0 && !held_ && !waiting_.empty()) {
        UMockdevIoctlData* const urb = waiting_.front();
        waiting_.pop_front();
        UMockdevIoctlData* const buffer = umockdev_ioctl_data_resolve(urb, offsetof(usbdevfs_urb, buffer), 1, nullptr);
        guint8 byte = 6;
        umockdev_ioctl_data_update(buffer, 0, &byte, 1);
        --acknowledgements_;
        finish(urb, 0, 1);
    }
    if (done_.empty())
        return false;
    UMockdevIoctlData* const place =
        umockdev_ioctl_data_resolve(umockdev_ioctl_client_get_arg(client), 0, sizeof(void*), nullptr);
    umockdev_ioctl_data_set_ptr(place, 0, done_.front());
    done_.pop_front();
    return true;
}

void FakeUsbCamera::finish(UMockdevIoctlData* urb, int status, int length)
{
    urbIn(urb).status = status;
    urbIn(urb).actual_length = length;
    done_.push_back(urb);
}

} // namespace tesmor::test
