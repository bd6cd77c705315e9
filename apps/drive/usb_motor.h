// SPDX-License-Identifier: GPL-2.0-or-later
// A camera that carries its own focus controller, through libusb. Each request of the drive link is one vendor control
// transfer to the device; the end of a move is one byte from an endpoint.
#pragma once

#include "drive/motor.h"

#include <memory>

struct libusb_context;
struct libusb_device_handle;

namespace tesmor::drive {

struct UsbSettings {
    std::uint16_t vendor = 0;
    std::uint16_t product = 0;
    std::string serial; // empty: any
    std::uint8_t ackEndpoint = 0x81;
};

class UsbMotor : public Motor {
public:
    explicit UsbMotor(UsbSettings settings);
    ~UsbMotor() override;

    std::string name() const override;
    void connect() override;
    bool open() override;
    bool close() override;
    void begin(std::int64_t steps) override;
    void finish() override;
    std::string describe(std::int64_t steps) const override;
    std::int64_t largestMove() const override;

private:
    void disconnect();
    bool matchesSerial(libusb_device_handle* handle, std::uint8_t index) const;
    libusb_device_handle* openDevice();
    void claimEndpoint();
    bool send(std::uint8_t request, std::uint16_t value, std::uint16_t index);
    bool receive(unsigned milliseconds);
    [[noreturn]] void lose(const std::string& what) const;

    const UsbSettings settings_;
    libusb_context* context_ = nullptr;
    libusb_device_handle* handle_ = nullptr;
    bool isInterrupt_ = false; // else bulk
    int packetBytes_ = 1;
};

} // namespace tesmor::drive
