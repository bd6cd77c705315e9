// The drive service, byte for byte, as a client on the socket sees it.
#include "microscope/drive_service.h"

#include "microscope/virtual_microscope.h"
#include "support/library_test.h"

#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace tesmor::microscope {
namespace {

using namespace std::chrono_literals;
using Packet = std::vector<std::uint8_t>;

constexpr unsigned UNIT = 13;

const Packet OPEN{0x59, 0x20, 0x22, 0, 0, 2, 0, 0, 0xD2, 0, 0, 0, 0, 0};
const Packet MOVE_1000{0x59, 0x20, 0x22, 0, 0, 2, 0, 0, 0xD1, 0, 0x60, 0, 0xE8, 0x03};
const Packet RESET{0x35, 0x20, 0x22, 0, 0, 0, 0, 0};
const Packet REQUEST_ACCEPTED{0x59, 0x20, 0x22, 0, 1};
const Packet REQUEST_REFUSED{0x59, 0x20, 0x22, 0, 0};
const Packet RESET_ACCEPTED{0x35, 0x20, 0x22, 0, 1};
const Packet ACKNOWLEDGEMENT{DriveController::ACKNOWLEDGEMENT_BYTE};
const Packet END_OF_FILE;
const Packet SILENCE{0xFF, 0xFF}; // stands for no packet in ten seconds

class Client {
public:
    Client() : socket_(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const int length = std::snprintf(address.sun_path + 1, sizeof address.sun_path - 1, "braskdrv-%u-1010", UNIT);
        connected_ = connect(socket_, reinterpret_cast<sockaddr*>(&address),
                             static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length)) == 0;
    }

    ~Client()
    {
        close(socket_);
    }

    bool connected() const
    {
        return connected_;
    }

    // Whether the service still takes packets.
    bool send(const Packet& packet) const
    {
        return ::send(socket_, packet.data(), packet.size(), MSG_NOSIGNAL) > 0;
    }

    Packet receive() const
    {
        pollfd readable{socket_, POLLIN, 0};
        if (poll(&readable, 1, 10'000) <= 0)
            return SILENCE;
        Packet packet(512);
        const ssize_t length = recv(socket_, packet.data(), packet.size(), 0);
        packet.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        return packet;
    }

    Packet ask(const Packet& request) const
    {
        send(request);
        return receive();
    }

private:
    int socket_;
    bool connected_;
};

class DriveServiceTest : public ::testing::Test {
protected:
    DriveServiceTest()
    {
        service_.start();
    }

    Motor motor_{{.stepsPerSecond = 20'000}, TimeScale{1}, 0}; // MOVE_1000 takes 50 ms
    AcknowledgementGate gate_;
    DriveController controller_{motor_, gate_};
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

TEST_F(DriveServiceTest, DropsAClientThatDoesNotRead)
{
    const Client deaf;
    int sent = 0;
    while (sent < 1'000'000 && deaf.send(OPEN))
        ++sent;
    EXPECT_LT(sent, 1'000'000);
    EXPECT_EQ(Client().ask(OPEN), REQUEST_ACCEPTED);
}

TEST_F(DriveServiceTest, DoesTheFaultsOfTheLink)
{
    {
        const Client client;
        controller_.setFaults({.hangRequests = 1});
        client.send(OPEN);
        EXPECT_EQ(client.ask(RESET), RESET_ACCEPTED) << "the first request stays without reply";
        controller_.setFaults({.rubbishReplies = 1});
        client.send(OPEN);
        int rubbish = 0;
        for (Packet packet = client.receive(); packet != REQUEST_ACCEPTED && packet != SILENCE;
             packet = client.receive()) {
            ++rubbish;
            EXPECT_NE(packet.size(), 0u);
            EXPECT_NE(packet.size(), 1u) << "an acknowledgement";
        }
        EXPECT_GT(rubbish, 3);
    }
    struct Case {
        Faults faults;
        std::vector<Packet> answers;
    };
    const Case cases[] = {
        {{.vanishAtRequest = true}, {END_OF_FILE}},
        {{.vanishBeforeReply = true}, {END_OF_FILE}},
        {{.vanishInMove = true}, {REQUEST_ACCEPTED, END_OF_FILE}},
    };
    for (const Case& each : cases) {
        controller_.setFaults(each.faults);
        const Client client;
        client.send(MOVE_1000);
        for (const Packet& answer : each.answers)
            EXPECT_EQ(client.receive(), answer);
        EXPECT_TRUE(test::eventually([] { return !Client().connected(); })) << "the unit is still there";
        service_.stop();
        EXPECT_TRUE(test::eventually([&] { return !motor_.isMoving(Clock::now()); }));
        controller_.reappear();
        service_.start();
        EXPECT_EQ(Client().ask(OPEN), REQUEST_ACCEPTED);
    }
}

TEST_F(DriveServiceTest, SaysWhenItsUnitIsTaken)
{
    DriveService second(controller_, UNIT);
    EXPECT_THROW(second.start(), std::system_error);
    service_.stop();
    EXPECT_NO_THROW(second.start());
}

TEST_F(DriveServiceTest, TurnsAnotherUserAway)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs root, to be another user";
    const pid_t other = fork();
    if (other == 0) {
        constexpr uid_t nobody = 65534;
        if (setresuid(nobody, nobody, nobody) != 0)
            _exit(2);
        const Client client;
        _exit(client.connected() && client.receive() == END_OF_FILE ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(other, &status, 0), other);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 2)
        GTEST_SKIP() << "may not be another user";
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Client().ask(OPEN), REQUEST_ACCEPTED);
}

// With a camera that runs free, the first frame after each acknowledgement shows the new position.
TEST(DriveServiceAndCamera, AFrameAfterAnAcknowledgementShowsTheMove)
{
    Settings settings;
    settings.unit = UNIT;
    settings.width = 64;
    settings.height = 64;
    settings.timeScale = 0;
    VirtualMicroscope microscope(settings);
    std::atomic<bool> armed{false};
    std::atomic<std::int64_t> shown{0};
    microscope.start([&](const Frame& frame) {
        if (armed.exchange(false))
            shown = frame.position;
    });
    const Client client;
    for (int move = 1; move <= 200; ++move) {
        ASSERT_EQ(client.ask(MOVE_1000), REQUEST_ACCEPTED);
        ASSERT_EQ(client.receive(), ACKNOWLEDGEMENT);
        armed = true;
        ASSERT_TRUE(test::eventually([&] { return !armed; }));
        const std::int64_t expected = std::llround(microscope.bestFocus()) + 1000 * move;
        ASSERT_TRUE(test::eventually([&] { return shown != expected - 1000; }));
        ASSERT_EQ(shown, expected);
    }
}

} // namespace
} // namespace tesmor::microscope
