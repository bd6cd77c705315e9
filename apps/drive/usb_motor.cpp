// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/usb_motor.h"

#include "protocol/drive_request.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <libusb.h>
#include <vector>

namespace tesmor::drive {

namespace {

constexpr std::uint8_t TO_DEVICE_VENDOR = LIBUSB_REQUEST_TYPE_VENDOR; // and out, and to the device: both 0
constexpr unsigned REQUEST_LIMIT_MS = 350;
constexpr unsigned ONE_WAIT_MS = 100;
constexpr unsigned LEFTOVER_WAIT_MS = 10;
constexpr int MOST_LEFTOVERS = 16;
constexpr auto MOVE_LIMIT = std::chrono::seconds(60);

std::string hex(const char* format, unsigned value)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

std::uint16_t directionOf(std::int64_t steps)
{
    return steps > 0 ? DIR_FORWARD : DIR_REVERSE;
}

} // namespace

UsbMotor::UsbMotor(UsbSettings settings) : settings_(std::move(settings)) {}

UsbMotor::~UsbMotor()
{
    disconnect();
}

void UsbMotor::disconnect()
{
    if (handle_)
        libusb_close(handle_);
    if (context_)
        libusb_exit(context_);
    handle_ = nullptr;
    context_ = nullptr;
}

std::string UsbMotor::name() const
{
    return "the USB device " + hex("%04x:", settings_.vendor) + hex("%04x", settings_.product) +
           (settings_.serial.empty() ? "" : " with serial number " + settings_.serial);
}

void UsbMotor::lose(const std::string& what) const
{
    throw MotorLost(name() + " " + what);
}

void UsbMotor::connect()
{
    disconnect();
    if (libusb_init(&context_) != LIBUSB_SUCCESS)
        lose("cannot be reached: this system has no USB");
    handle_ = openDevice();
    claimEndpoint();
    for (int i = 0; i < MOST_LEFTOVERS && receive(LEFTOVER_WAIT_MS); ++i) { // what was on its way when the link broke
    }
}

bool UsbMotor::matchesSerial(libusb_device_handle* handle, std::uint8_t index) const
{
    std::array<unsigned char, 128> text{};
    const int length = libusb_get_string_descriptor_ascii(handle, index, text.data(), text.size());
    return length > 0 && settings_.serial == std::string(text.begin(), text.begin() + length);
}

libusb_device_handle* UsbMotor::openDevice()
{
    libusb_device** list = nullptr;
    const ssize_t count = libusb_get_device_list(context_, &list);
    libusb_device_handle* found = nullptr;
    int failure = LIBUSB_ERROR_NO_DEVICE;
    for (ssize_t i = 0; i < count && !found; ++i) {
        libusb_device_descriptor device{};
        libusb_device_handle* handle = nullptr;
        if (libusb_get_device_descriptor(list[i], &device) != LIBUSB_SUCCESS || device.idVendor != settings_.vendor ||
            device.idProduct != settings_.product)
            continue;
        failure = libusb_open(list[i], &handle);
        if (failure != LIBUSB_SUCCESS)
            continue;
        if (settings_.serial.empty() || matchesSerial(handle, device.iSerialNumber))
            found = handle;
        else
            libusb_close(handle);
    }
    if (count >= 0)
        libusb_free_device_list(list, 1);
    if (!found && failure == LIBUSB_ERROR_ACCESS)
        lose("is there, but you have no permission for it: give it a line in the udev rule that comes with "
             "tesmor-drive, "
             "and plug it in anew");
    if (!found)
        lose("is not there; plug it in, and see: tesmor-drive list");
    return found;
}

void UsbMotor::claimEndpoint()
{
    libusb_config_descriptor* config = nullptr;
    if (libusb_get_active_config_descriptor(libusb_get_device(handle_), &config) != LIBUSB_SUCCESS)
        lose("does not tell its endpoints");
    int interfaceNumber = -1;
    for (int i = 0; i < config->bNumInterfaces; ++i) {
        const libusb_interface& each = config->interface[i];
        for (int e = 0; each.num_altsetting > 0 && e < each.altsetting[0].bNumEndpoints; ++e) {
            const libusb_endpoint_descriptor& endpoint = each.altsetting[0].endpoint[e];
            const int type = endpoint.bmAttributes & LIBUSB_TRANSFER_TYPE_MASK;
            if (endpoint.bEndpointAddress != settings_.ackEndpoint ||
                (type != LIBUSB_TRANSFER_TYPE_BULK && type != LIBUSB_TRANSFER_TYPE_INTERRUPT))
                continue;
            interfaceNumber = each.altsetting[0].bInterfaceNumber;
            isInterrupt_ = type == LIBUSB_TRANSFER_TYPE_INTERRUPT;
            packetBytes_ = endpoint.wMaxPacketSize & 0x7FF;
        }
    }
    libusb_free_config_descriptor(config);
    const std::string endpoint = "endpoint " + hex("0x%02x", settings_.ackEndpoint);
    if (interfaceNumber < 0)
        lose("has no bulk or interrupt " + endpoint + "; choose another with --ack-endpoint");
    const int failure = libusb_claim_interface(handle_, interfaceNumber);
    if (failure == LIBUSB_ERROR_BUSY)
        lose("has its " + endpoint + " in use by another program or driver; end that, or choose another endpoint");
    if (failure != LIBUSB_SUCCESS)
        lose(std::string("does not give its ") + endpoint + ": " + libusb_strerror(failure));
}

// False when the device refuses the request.
bool UsbMotor::send(std::uint8_t request, std::uint16_t value, std::uint16_t index)
{
    if (!handle_)
        lose("has gone");
    const int sent =
        libusb_control_transfer(handle_, TO_DEVICE_VENDOR, request, value, index, nullptr, 0, REQUEST_LIMIT_MS);
    if (sent == LIBUSB_ERROR_NO_DEVICE)
        lose("has gone; is the cable plugged in?");
    if (sent < 0 && sent != LIBUSB_ERROR_PIPE)
        lose(std::string("does not take a request: ") + libusb_strerror(sent));
    return sent >= 0;
}

bool UsbMotor::open()
{
    return send(DRIVE_REQ_OPEN, 0, 0);
}

bool UsbMotor::close()
{
    return send(DRIVE_REQ_CLOSE, 0, 0);
}

void UsbMotor::begin(std::int64_t steps)
{
    if (!send(DRIVE_REQ_MOVE, directionOf(steps), static_cast<std::uint16_t>(std::abs(steps))))
        throw MotorRefused(name() + " refuses a move by " + std::to_string(steps) + " steps");
}

// Whether an acknowledgement came in time.
bool UsbMotor::receive(unsigned milliseconds)
{
    std::vector<unsigned char> packet(static_cast<std::size_t>(packetBytes_) + 1); // never empty
    int length = 0;
    const auto transfer = isInterrupt_ ? libusb_interrupt_transfer : libusb_bulk_transfer;
    const int failure = transfer(handle_, settings_.ackEndpoint, packet.data(), packetBytes_, &length, milliseconds);
    if (failure == LIBUSB_ERROR_NO_DEVICE)
        lose("has gone; is the cable plugged in?");
    if (failure != LIBUSB_SUCCESS && failure != LIBUSB_ERROR_TIMEOUT)
        lose(std::string("gives no acknowledgement: ") + libusb_strerror(failure));
    return length > 0;
}

void UsbMotor::finish()
{
    const auto end = std::chrono::steady_clock::now() + MOVE_LIMIT;
    while (!receive(ONE_WAIT_MS)) {
        if (std::chrono::steady_clock::now() >= end)
            lose("has not acknowledged a move for a minute");
    }
}

std::string UsbMotor::describe(std::int64_t steps) const
{
    return "control transfer " + hex("0x%02x", TO_DEVICE_VENDOR) + ", request " + hex("0x%02x", DRIVE_REQ_MOVE) +
           ", value " + hex("0x%04x", directionOf(steps)) + ", index " + std::to_string(std::abs(steps));
}

std::int64_t UsbMotor::largestMove() const
{
    return UINT16_MAX;
}

} // namespace tesmor::drive
