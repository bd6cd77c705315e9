// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/focus_drive.h"

#include "protocol/drive_request.h"

namespace tesmor {

FocusDrive::FocusDrive(platform::DriveUnits& units, platform::Clock& clock) noexcept : clock_(clock)
{
    for (unsigned unit = 0; unit < MAX_DRIVE_UNITS && !hasDevice(); ++unit) {
        if (units.exists(unit))
            device_ = units.open(unit);
    }
    ackEvent_ = platform::Event::create(platform::Reset::manual, false);
    opened_ = sendRequest(DRIVE_REQ_OPEN, 0, 0);
}

FocusDrive::~FocusDrive()
{
    if (opened_)
        sendRequest(DRIVE_REQ_CLOSE, 0, 0);
    device_.reset(); // before the event, which its pending reads may still set
}

bool FocusDrive::sendRequest(std::uint8_t request, std::uint16_t value, std::uint16_t index) noexcept
{
    return device_ && device_->control(IOCTL_DRIVE_REQUEST, makeDriveRequest(request, value, index));
}

bool FocusDrive::readAck() noexcept
{
    if (device_->readByte(ackEvent_.get(), ACK_TIMEOUT_MS))
        return true;
    device_->control(IOCTL_DRIVE_RESET_ACK, DRIVE_RESET_ACK_INPUT);
    clock_.sleepMilliseconds(DRIVE_RETRY_PAUSE_MS);
    return false;
}

bool FocusDrive::move(std::uint16_t steps, bool reverse) noexcept
{
    const std::uint16_t direction = reverse ? DIR_REVERSE : DIR_FORWARD;
    int refusals = 0;
    while (!sendRequest(DRIVE_REQ_MOVE, direction, steps)) {
        clock_.sleepMilliseconds(DRIVE_RETRY_PAUSE_MS);
        if (++refusals == SEND_ATTEMPTS)
            return false;
    }
    for (int read = 0; read < ACK_READS; ++read) {
        if (readAck())
            return true;
    }
    return false;
}

bool FocusDrive::moveBy(std::int32_t displacement) noexcept
{
    const bool reverse = displacement <= 0;
    const auto bits = static_cast<std::uint32_t>(displacement);
    return move(static_cast<std::uint16_t>(reverse ? 0u - bits : bits), reverse);
}

} // namespace tesmor
