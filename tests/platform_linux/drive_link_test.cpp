// SPDX-License-Identifier: GPL-2.0-or-later
// The library's end of the drive link, packet by packet.
#include "platform/drive_device.h"
#include "platform_linux/raw_service.h"
#include "support/call_recorder.h"
#include "support/child_process.h"
#include "support/library_test.h"
#include "support/video_thread.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>

namespace tesmor::test {

namespace {

using namespace platform;

constexpr std::uint32_t HOURS_MS = 10'000'000;
constexpr std::uint32_t CODE = 0x222059;
const Packet INPUT{0, 2, 0, 0, 0xD1, 0, 0x60, 0x80, 0x80, 0x0C};
const Packet ACCEPTED{0x59, 0x20, 0x22, 0, 1};
const Packet REFUSED{0x59, 0x20, 0x22, 0, 0};
const Packet ACK{0};

class DriveLink : public ::testing::Test {
protected:
    DriveLink()
    {
        service.acceptClient();
    }

    bool control()
    {
        return device->control(CODE, INPUT);
    }

    bool readAck(std::uint32_t timeoutMs = 0)
    {
        return device->readByte(&completion, timeoutMs);
    }

    // At once, that is: a wait would not end before the test is given up.
    void expectLinkDown()
    {
        EXPECT_FALSE(control());
        EXPECT_FALSE(readAck(HOURS_MS));
    }

    // Not one of the sixteen, so that nobody else has it.
    const unsigned unit = 1000 + static_cast<unsigned>(getpid());
    RawService service{unit};
    std::unique_ptr<DriveDevice> device = systemDriveUnits().open(unit);
    Event completion{Reset::manual, false};
};

TEST_F(DriveLink, SendsAControlRequestToTheByteAndTakesItsReply)
{
    service.send(ACCEPTED);
    EXPECT_TRUE(control());
    EXPECT_EQ(service.receive(), (Packet{0x59, 0x20, 0x22, 0, 0, 2, 0, 0, 0xD1, 0, 0x60, 0x80, 0x80, 0x0C}));
    service.send(REFUSED);
    EXPECT_FALSE(control());
    service.send({0x59, 0x20, 0x22, 0, 0xFF});
    EXPECT_TRUE(control()) << "any value but 0 accepts, and a refusal leaves the link up";
}

TEST_F(DriveLink, KeepsAcknowledgementsAndIgnoresTheRest)
{
    for (const Packet& packet :
         {ACK, Packet{1, 2}, Packet(4), Packet(6), Packet(4000), Packet{0x35, 0x20, 0x22, 0, 0}, Packet{7}, ACCEPTED})
        service.send(packet);
    EXPECT_TRUE(control());
    EXPECT_TRUE(readAck());
    EXPECT_TRUE(completion.waitFor(0));
    EXPECT_TRUE(readAck());
    EXPECT_FALSE(readAck(1));
    EXPECT_FALSE(completion.waitFor(0));
    service.send(ACCEPTED); // nobody asked
    service.send(ACK);
    EXPECT_TRUE(readAck(1500));
    EXPECT_FALSE(device->readByte(nullptr, 0)) << "without an event every read fails";
}

TEST_F(DriveLink, APacketThatIsThereIsReadThoughTheTimeIsUp)
{
    service.send({1, 2, 3});
    service.send(ACK);
    EXPECT_TRUE(readAck(0));
    EXPECT_FALSE(readAck(0));
    service.send(ACCEPTED);
    EXPECT_TRUE(control()) << "the link is still up";
}

TEST_F(DriveLink, AServiceThatHangsCostsTheLink)
{
    EXPECT_FALSE(control());
    EXPECT_TRUE(service.receive().has_value());
    EXPECT_EQ(service.receive(), Packet{}) << "the client has left";
    expectLinkDown();
}

TEST_F(DriveLink, AServiceThatOnlyTalksIsGivenUpToo)
{
    std::atomic<bool> stop{false};
    std::jthread chatter([&] {
        while (!stop)
            service.send({1, 2, 3});
    });
    EXPECT_FALSE(control());
    EXPECT_FALSE(readAck(50));
    stop = true;
    device.reset();
}

TEST_F(DriveLink, AServiceThatDiesIsNoticedWithoutASignal)
{
    service.send(ACK);
    service.vanish();
    EXPECT_FALSE(control());
    expectLinkDown();
}

TEST_F(DriveLink, AServiceThatDiesDuringAReadEndsTheRead)
{
    std::jthread death([&] { service.vanish(); });
    EXPECT_FALSE(readAck(HOURS_MS));
    death.join();
    expectLinkDown();
}

TEST_F(DriveLink, NoDescriptorSurvivesAnExec)
{
    int sockets = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (!std::filesystem::read_symlink(entry, error).string().starts_with("socket:"))
            continue;
        ++sockets;
        EXPECT_TRUE(fcntl(std::stoi(entry.path().filename()), F_GETFD) & FD_CLOEXEC);
    }
    EXPECT_GE(sockets, 3) << "listener and both ends";
}

TEST_F(DriveLink, EndsAlsoWhileAForkedChildHoldsTheDescriptor)
{
    const pid_t child = fork();
    if (child == 0) {
        pause();
        _exit(0);
    }
    device.reset();
    EXPECT_EQ(service.receive(), Packet{}) << "the client has left";
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

TEST(DriveLinkPeer, NobodyThereIsNoDevice)
{
    EXPECT_EQ(systemDriveUnits().open(2000 + static_cast<unsigned>(getpid())), nullptr);
}

class HangingService : public LibraryTest {};

// The next unit may be another microscope's.
TEST_F(HangingService, EndsTheSearchForADriveAndFailsTheCommand)
{
    const RawService hanging(0);
    const RawClient waiting[] = {RawClient(0), RawClient(0)}; // fill its backlog
    const RawService next(1);
    const VideoThread video(8, 8);
    CallRecorder recorder;
    ASSERT_EQ(tesmor_init(), 1);
    tesmor_start(40, CallRecorder::onDone, &recorder);
    tesmor_startif(40, 1, 1, CallRecorder::onFrame, &recorder, 0);
    tesmor_manual(1.0, CallRecorder::onDone, &recorder);
    waitUntilIdle();
    EXPECT_EQ(recorder.calls(), std::vector<Call>(3, report(TESMOR_MOVE_FAILED)));
    EXPECT_FALSE(next.hasCaller());
}

TEST(DriveLinkPeer, AServiceOfAnotherUserIsPassedOver)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can start a service as another user";
    const unsigned unit = 3000 + static_cast<unsigned>(getpid());
    ASSERT_EQ(seteuid(NOBODY), 0);
    RawService service(unit);
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_EQ(systemDriveUnits().open(unit), nullptr);
    service.acceptClient();
    EXPECT_EQ(service.receive(), Packet{}) << "the client has left at once";
}

} // namespace

} // namespace tesmor::test
