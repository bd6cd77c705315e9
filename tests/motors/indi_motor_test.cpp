// SPDX-License-Identifier: GPL-2.0-or-later
// tesmor-drive with INDI's own server and its simulated focuser.
#include "drive/backends.h"
#include "motors/link_packets.h"
#include "motors/program.h"
#include "support/library_test.h"

#include <csignal>
#include <netinet/in.h>
#include <optional>
#include <sys/socket.h>

namespace tesmor::test {
namespace {

const std::string FOCUSER = "Focuser Simulator";

std::string freePort()
{
    const int socketFd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    socklen_t length = sizeof address;
    bind(socketFd, reinterpret_cast<sockaddr*>(&address), length);
    getsockname(socketFd, reinterpret_cast<sockaddr*>(&address), &length);
    close(socketFd);
    return std::to_string(ntohs(address.sin_port));
}

class IndiMotorTest : public MotorTest {
protected:
    void SetUp() override
    {
        if (!drive::HAS_INDI || std::system("command -v indiserver indi_getprop >/dev/null") != 0)
            GTEST_SKIP() << "needs libindi-dev, when it is built, and indi-bin";
        startServer();
        program.emplace(std::vector<std::string>{TESMOR_DRIVE, "indi", "--device", FOCUSER, "--server",
                                                 "localhost:" + port, "--unit", "12"});
        ASSERT_TRUE(program->says("unit 12 is the focuser")) << program->said();
    }

    void startServer()
    {
        server.emplace(std::vector<std::string>{"indiserver", "-p", port, "indi_simulator_focus"});
        ASSERT_TRUE(eventually([&] { return get("DRIVER_INFO.DRIVER_NAME") == FOCUSER; }));
    }

    // A property's value, by INDI's own client.
    std::string get(const std::string& property) const
    {
        const std::string command =
            "indi_getprop -1 -t 1 -p " + port + " '" + FOCUSER + "." + property + "' 2>/dev/null";
        FILE* const output = popen(command.c_str(), "r");
        char line[128] = {};
        const bool isThere = std::fgets(line, sizeof line, output) != nullptr;
        pclose(output);
        return isThere ? std::string(line).substr(0, std::string(line).find('\n')) : "";
    }

    double focuser() const
    {
        return std::atof(get("ABS_FOCUS_POSITION.FOCUS_ABSOLUTE_POSITION").c_str());
    }

    void slowDown() const
    {
        const std::string command =
            "indi_setprop -p " + port + " '" + FOCUSER + ".DELAY.DELAY_VALUE=5000'"; // microseconds a step
        ASSERT_EQ(std::system(command.c_str()), 0);
    }

    const std::string port = freePort();
    std::optional<Program> server;
    std::optional<Program> program;
};

TEST_F(IndiMotorTest, MovesThereAndBackAndRefusesToPassTheEnd)
{
    const RawClient client(UNIT);
    EXPECT_EQ(client.ask(OPEN), ACCEPTED);
    const double start = focuser();
    for (const auto& [request, steps] :
         {std::pair(FORWARD_1000, 1000.0), {FORWARD_1000, 2000.0}, {REVERSE_1000, 1000.0}}) {
        EXPECT_EQ(client.ask(request), ACCEPTED);
        EXPECT_EQ(client.receive(), ACKNOWLEDGEMENT);
        EXPECT_EQ(focuser(), start + steps);
    }
    std::optional<Packet> reply;
    for (int i = 0; i < 100 && (reply = client.ask(FORWARD_1000)) == ACCEPTED; ++i)
        EXPECT_EQ(client.receive(), ACKNOWLEDGEMENT);
    EXPECT_EQ(reply, REFUSED);
    EXPECT_TRUE(program->says("and ends at 100000; a move by 1000 is refused\n")) << program->said();
}

TEST_F(IndiMotorTest, AServerThatEndsInAMoveIsToldAndFoundAgain)
{
    {
        const RawClient client(UNIT);
        slowDown();
        EXPECT_EQ(client.ask(FORWARD_1000), ACCEPTED);
        server.reset();
        EXPECT_EQ(client.receive(), END_OF_FILE);
        EXPECT_TRUE(program->says("is lost: the server has ended; moves are refused until it is back\n"));
    }
    startServer();
    EXPECT_TRUE(program->says(" is back; where it stands is uncertain")) << program->said();
    const RawClient next(UNIT);
    EXPECT_EQ(next.ask(FORWARD_1000), ACCEPTED) << program->said();
    EXPECT_EQ(next.receive(), ACKNOWLEDGEMENT);
    program->signal(SIGTERM);
    EXPECT_EQ(program->end(), 0);
}

} // namespace
} // namespace tesmor::test
