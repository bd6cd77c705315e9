// SPDX-License-Identifier: GPL-2.0-or-later
// The drive service, byte for byte, as a client on the socket sees it.
#include "drive_service/drive_service.h"

#include "microscope/drive/drive_controller.h"
#include "platform_linux/raw_service.h"
#include "support/child_process.h"
#include "support/library_test.h"

namespace tesmor::service {
namespace {

using namespace std::chrono_literals;
using test::Packet;

constexpr unsigned UNIT = 13;

const Packet OPEN{0x59, 0x20, 0x22, 0, 0, 2, 0, 0, 0xD2, 0, 0, 0, 0, 0};
const Packet CLOSE{0x59, 0x20, 0x22, 0, 0, 2, 0, 0, 0xD3, 0, 0, 0, 0, 0};
const Packet MOVE_1000{0x59, 0x20, 0x22, 0, 0, 2, 0, 0, 0xD1, 0, 0x60, 0, 0xE8, 0x03};
const Packet RESET{0x35, 0x20, 0x22, 0, 0, 0, 0, 0};
const Packet REQUEST_ACCEPTED{0x59, 0x20, 0x22, 0, 1};
const Packet REQUEST_REFUSED{0x59, 0x20, 0x22, 0, 0};
const Packet RESET_ACCEPTED{0x35, 0x20, 0x22, 0, 1};
const Packet ACKNOWLEDGEMENT{ACKNOWLEDGEMENT_BYTE};
const Packet END_OF_FILE;

struct Client : test::RawClient {
    Client() : RawClient(UNIT) {}
};

class DriveServiceTest : public ::testing::Test {
protected:
    microscope::Motor motor_{{.stepsPerSecond = 20'000}, microscope::TimeScale{1}, 0}; // MOVE_1000 takes 50 ms
    microscope::AcknowledgementGate gate_;
    microscope::DriveController controller_{motor_, gate_};
    DriveService service_{controller_, UNIT};
};

TEST_F(DriveServiceTest, AnswersEveryPacketAndAcknowledgesAfterTheReply)
{
    const Client client;
    EXPECT_EQ(client.ask(OPEN), REQUEST_ACCEPTED);
    EXPECT_EQ(client.ask(RESET), RESET_ACCEPTED);
    EXPECT_EQ(client.ask(MOVE_1000), REQUEST_ACCEPTED);
    EXPECT_EQ(client.receive(), ACKNOWLEDGEMENT);
    EXPECT_FALSE(motor_.isMoving(Clock::now()));
    EXPECT_EQ(motor_.position(Clock::now()), 1000);

    struct Case {
        Packet request;
        Packet reply;
    };
    Packet longRequest = OPEN;
    longRequest.resize(500);
    const Case malformed[] = {
        {{0x59, 0x20, 0x22, 0}, REQUEST_REFUSED}, {{OPEN.begin(), OPEN.end() - 1}, REQUEST_REFUSED},
        {longRequest, REQUEST_REFUSED},           {{0x78, 0x56, 0x34, 0x12, 1}, {0x78, 0x56, 0x34, 0x12, 0}},
        {{0x59, 0x20}, {0x59, 0x20, 0, 0, 0}},
    };
    for (const Case& each : malformed)
        EXPECT_EQ(client.ask(each.request), each.reply);
    EXPECT_EQ(client.ask(OPEN), REQUEST_ACCEPTED);
}

TEST_F(DriveServiceTest, IsHeldByTheOneThatHasOpenedIt)
{
    const Client lister;
    const Client waiting;
    const Client first;
    EXPECT_EQ(lister.ask(RESET), RESET_ACCEPTED);
    EXPECT_EQ(first.ask(OPEN), REQUEST_ACCEPTED) << "who has only connected holds nothing";
    EXPECT_EQ(lister.ask(RESET), RESET_ACCEPTED);
    EXPECT_EQ(lister.ask(OPEN), END_OF_FILE);
    EXPECT_EQ(Client().receive(), END_OF_FILE);
    EXPECT_EQ(first.ask(CLOSE), REQUEST_ACCEPTED);

    EXPECT_EQ(waiting.ask(OPEN), REQUEST_ACCEPTED) << "the first one has given it back";
    EXPECT_EQ(first.ask(MOVE_1000), END_OF_FILE);
    EXPECT_EQ(waiting.ask(MOVE_1000), REQUEST_ACCEPTED);
    EXPECT_EQ(waiting.receive(), ACKNOWLEDGEMENT);
}

TEST_F(DriveServiceTest, ServesOneClientButNeverTurnsItsSuccessorAway)
{
    {
        const Client first;
        ASSERT_EQ(first.ask(OPEN), REQUEST_ACCEPTED);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(Client().receive(), END_OF_FILE);
        EXPECT_EQ(first.ask(OPEN), REQUEST_ACCEPTED);
    }
    for (int i = 0; i < 200; ++i) {
        const Client next;
        next.send(RESET); // the last word of a client may still be on the way when the next one comes
        ASSERT_EQ(next.ask(OPEN), RESET_ACCEPTED) << i;
    }
}

TEST_F(DriveServiceTest, OutlivesAClientThatDisappearsInMidMove)
{
    EXPECT_EQ(Client().ask(MOVE_1000), REQUEST_ACCEPTED);
    const Client next;
    EXPECT_EQ(next.ask(OPEN), REQUEST_ACCEPTED);
    EXPECT_TRUE(test::eventually([&] { return !motor_.isMoving(Clock::now()); }));
    EXPECT_EQ(motor_.position(Clock::now()), 1000);
    EXPECT_EQ(next.ask(RESET), RESET_ACCEPTED) << "and not the acknowledgement of the other client's move";
    EXPECT_EQ(next.ask(MOVE_1000), REQUEST_ACCEPTED);
    EXPECT_EQ(next.receive(), ACKNOWLEDGEMENT);
}

TEST_F(DriveServiceTest, TurnsAnotherUserAway)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs root, to be another user";
    const int end = test::endOfChild([] {
        if (setresuid(test::NOBODY, test::NOBODY, test::NOBODY) != 0)
            return 2;
        return Client().receive() == END_OF_FILE ? 0 : 1;
    });
    if (end == 2)
        GTEST_SKIP() << "may not be another user";
    EXPECT_EQ(end, 0);
    EXPECT_EQ(Client().ask(OPEN), REQUEST_ACCEPTED);
}

} // namespace
} // namespace tesmor::service
