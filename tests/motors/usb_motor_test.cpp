// SPDX-License-Identifier: GPL-2.0-or-later
// tesmor-drive and libusb with a device that umockdev simulates. Runs under umockdev-wrapper.
#include "motors/fake_usb_camera.h"
#include "motors/link_packets.h"
#include "motors/program.h"
#include "protocol/drive_request.h"

#include <csignal>

namespace tesmor::test {
namespace {

class UsbMotorTest : public MotorTest {
protected:
    static std::vector<std::string> words(const std::string& serial = "S7", const std::string& endpoint = "0x81")
    {
        return {TESMOR_DRIVE, "usb",    "--device", "1d50:6018",      "--serial",
                serial,       "--unit", "12",       "--ack-endpoint", endpoint};
    }

    FakeUsbCamera camera;
};

TEST_F(UsbMotorTest, EachRequestIsOneControlTransferAndEachAcknowledgementOneByte)
{
    Program drive(words());
    ASSERT_TRUE(drive.says("unit 12 is the USB device 1d50:6018 with serial number S7, at position 0\n"))
        << drive.said();
    const RawClient client(UNIT);
    EXPECT_EQ(client.ask(OPEN), ACCEPTED);
    camera.hold(true);
    EXPECT_EQ(client.ask(REVERSE_1000), ACCEPTED);
    EXPECT_EQ(client.ask(RESET), RESET_ACCEPTED) << "and no acknowledgement yet";
    camera.hold(false);
    EXPECT_EQ(client.receive(), ACKNOWLEDGEMENT);
    camera.stall(true);
    EXPECT_EQ(client.ask(FORWARD_1000), REFUSED);
    EXPECT_TRUE(drive.says("refuses a move by 1000 steps\n")) << drive.said();
    camera.stall(false);
    EXPECT_EQ(client.ask(FORWARD_1000), ACCEPTED);
    EXPECT_EQ(client.receive(), ACKNOWLEDGEMENT);
    const std::vector<FakeUsbCamera::Setup> expected{{0x40, DRIVE_REQ_OPEN, 0, 0},
                                                     {0x40, DRIVE_REQ_MOVE, DIR_REVERSE, 1000},
                                                     {0x40, DRIVE_REQ_MOVE, DIR_FORWARD, 1000}};
    EXPECT_EQ(camera.requests(), expected);
}

TEST_F(UsbMotorTest, AUnpluggedCameraIsToldAndFoundAgain)
{
    Program drive(words());
    ASSERT_TRUE(drive.says("unit 12 is")) << drive.said();
    {
        const RawClient client(UNIT);
        camera.hold(true);
        EXPECT_EQ(client.ask(FORWARD_1000), ACCEPTED);
        camera.unplug();
        EXPECT_EQ(client.receive(), END_OF_FILE);
        EXPECT_TRUE(drive.says("is the cable plugged in?; moves are refused until it is back\n")) << drive.said();
    }
    camera.hold(false);
    camera.plugIn();
    EXPECT_TRUE(drive.says(" is back; where it stands is uncertain")) << drive.said();
    const RawClient next(UNIT);
    EXPECT_EQ(next.ask(FORWARD_1000), ACCEPTED);
    EXPECT_EQ(next.receive(), ACKNOWLEDGEMENT);
    drive.signal(SIGTERM);
    EXPECT_EQ(drive.end(), 0);
}

TEST_F(UsbMotorTest, SaysWhatIsMissing)
{
    std::string said;
    EXPECT_EQ(run(words("S8"), said), 1);
    EXPECT_NE(said.find("with serial number S8 is not there; plug it in, and see: tesmor-drive list\n"), said.npos)
        << said;
    EXPECT_EQ(run(words("S7", "0x82"), said), 1);
    EXPECT_NE(said.find("has no bulk or interrupt endpoint 0x82; choose another with --ack-endpoint\n"), said.npos)
        << said;
}

} // namespace
} // namespace tesmor::test
