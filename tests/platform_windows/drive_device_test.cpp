// SPDX-License-Identifier: GPL-2.0-or-later
// The library's end of the drive link on Windows, and the simulated driver's.
#include "platform/drive_device.h"

#include "drive/focus_drive.h"
#include "drive_service/drive_service.h"
#include "drive_service/windows/driver/protocol.h"
#include "drive_service/windows/handle.h"
#include "microscope/drive/drive_controller.h"
#include "protocol/drive_request.h"

#include <array>
#include <gtest/gtest.h>
#include <optional>
#include <thread>

namespace tesmor::test {
namespace {

using namespace platform;
using namespace std::chrono_literals;
using service::Handle;

constexpr std::uint32_t HOURS_MS = 10'000'000; // longer than a test may take
constexpr DriveRequest OPEN_REQUEST = makeDriveRequest(DRIVE_REQ_OPEN, 0, 0);
constexpr DriveRequest MOVE_REQUEST = makeDriveRequest(DRIVE_REQ_MOVE, DIR_FORWARD, 100);

// A unit whose name exists but which does not open.
class NameOnly {
public:
    explicit NameOnly(unsigned unit)
        : control_(Handle::checked(CreateFileW(L"\\\\.\\" BRASKDRV_CONTROL_NAME, GENERIC_READ | GENERIC_WRITE, 0,
                                               nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr),
                                   "braskdrv"))
    {
        BraskdrvAttach attach{unit, 0};
        DWORD count = 0;
        service::Overlapped operation;
        if (!operation.finish(control_.get(), DeviceIoControl(control_.get(), BRASKDRV_ATTACH, &attach, sizeof attach,
                                                              nullptr, 0, &count, operation.get())))
            service::throwLastError("attach");
    }

private:
    Handle control_;
};

class DriveDeviceTest : public ::testing::Test {
protected:
    DriveDeviceTest()
    {
        device = systemDriveUnits().open(UNIT);
    }

    void moveAcknowledgedAfter(std::chrono::milliseconds delay)
    {
        controller.setFaults({.acknowledgementDelay = delay});
        EXPECT_TRUE(device->control(IOCTL_DRIVE_REQUEST, MOVE_REQUEST));
    }

    static constexpr unsigned UNIT = 3;
    microscope::Motor motor{{.stepsPerSecond = 0}, {1}, 0};
    microscope::AcknowledgementGate gate;
    microscope::DriveController controller{motor, gate};
    std::optional<service::DriveService> drive{std::in_place, controller, UNIT};
    std::unique_ptr<DriveDevice> device;
    Event completion{Reset::manual, false};
};

TEST_F(DriveDeviceTest, AUnitThatExistsButDoesNotOpenIsPassedOver)
{
    device.reset();
    {
        const NameOnly first(0);
        EXPECT_TRUE(systemDriveUnits().exists(0));
        EXPECT_EQ(systemDriveUnits().open(0), nullptr);
        EXPECT_FALSE(systemDriveUnits().exists(1));
        const FocusDrive focusDrive(systemDriveUnits(), systemClock());
        EXPECT_TRUE(focusDrive.hasDevice());
        ASSERT_EQ(controller.log().size(), 1u);
        EXPECT_EQ(controller.log()[0].input[4], DRIVE_REQ_OPEN);
    }
    device = systemDriveUnits().open(UNIT);
}

TEST_F(DriveDeviceTest, TheDriverTakesNothingButTheTwoRequests)
{
    struct Case {
        std::uint32_t code;
        std::size_t length;
        bool accepted;
    };
    const Case cases[] = {
        {IOCTL_DRIVE_REQUEST, 10, true},
        {IOCTL_DRIVE_REQUEST, 9, false},
        {IOCTL_DRIVE_REQUEST, 11, false},
        {IOCTL_DRIVE_RESET_ACK, 4, true},
        {IOCTL_DRIVE_RESET_ACK, 3, false},
        {IOCTL_DRIVE_RESET_ACK, 5, false},
        {0x222099, 10, false},
    };
    for (const Case& c : cases) {
        std::vector<std::uint8_t> input(c.length);
        if (c.code == IOCTL_DRIVE_REQUEST)
            std::copy_n(OPEN_REQUEST.begin(), std::min(c.length, OPEN_REQUEST.size()), input.begin());
        EXPECT_EQ(device->control(c.code, input), c.accepted) << c.code << " with " << c.length << " bytes";
    }
    EXPECT_EQ(controller.log().size(), 2u);
}

TEST_F(DriveDeviceTest, AnAcknowledgementIsKeptForALaterRead)
{
    moveAcknowledgedAfter(0ms);
    moveAcknowledgedAfter(0ms);
    EXPECT_TRUE(device->readByte(&completion, 5000));
    EXPECT_TRUE(device->readByte(&completion, 5000));
    EXPECT_FALSE(device->readByte(&completion, 1));
    EXPECT_FALSE(device->readByte(nullptr, 1)) << "without an event every read fails";
}

// The oldest read takes the byte, and the event that all of them share wakes the newest.
TEST_F(DriveDeviceTest, AReadThatTimedOutTakesALaterByteForTheNewest)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(device->readByte(&completion, 1));
    for (int i = 0; i < 5; ++i) {
        moveAcknowledgedAfter(10ms * (i % 2)); // before the next read begins, and after
        EXPECT_TRUE(device->readByte(&completion, 5000));
    }
    EXPECT_FALSE(device->readByte(&completion, 1));
}

// The driver ends them without a byte while the newest waits, on the event that all of them share.
TEST_F(DriveDeviceTest, ReadsThatAResetEndsDoNotEndTheNewest)
{
    for (int i = 0; i < 5; ++i) {
        EXPECT_FALSE(device->readByte(&completion, 1));
        EXPECT_FALSE(device->readByte(&completion, 1));
        EXPECT_TRUE(device->control(IOCTL_DRIVE_RESET_ACK, std::array<std::uint8_t, 4>{}));
        moveAcknowledgedAfter(50ms);
        EXPECT_TRUE(device->readByte(&completion, HOURS_MS));
    }
}

TEST_F(DriveDeviceTest, ManyReadsOutliveTheirDeviceAndItsEvent)
{
    for (int round = 0; round < 20; ++round) {
        auto ownCompletion = Event::create(Reset::manual, false);
        for (int i = 0; i < 10; ++i)
            EXPECT_FALSE(device->readByte(ownCompletion.get(), 0));
        device.reset();
        ownCompletion.reset();
        device = systemDriveUnits().open(UNIT);
        moveAcknowledgedAfter(0ms);
        EXPECT_TRUE(device->readByte(&completion, 5000));
    }
}

TEST_F(DriveDeviceTest, ADriverThatGoesAwayEndsTheRead)
{
    std::jthread end([this] { drive.reset(); });
    EXPECT_FALSE(device->readByte(&completion, HOURS_MS));
    end.join();
    EXPECT_FALSE(systemDriveUnits().exists(UNIT));
    EXPECT_FALSE(device->control(IOCTL_DRIVE_REQUEST, OPEN_REQUEST));
    EXPECT_FALSE(device->readByte(&completion, HOURS_MS));
    drive.emplace(controller, UNIT);
    EXPECT_FALSE(device->control(IOCTL_DRIVE_REQUEST, OPEN_REQUEST)) << "it stays gone for who had it open";
}

} // namespace
} // namespace tesmor::test
