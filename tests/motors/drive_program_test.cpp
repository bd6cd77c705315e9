// SPDX-License-Identifier: GPL-2.0-or-later
// tesmor-drive as its user meets it: its lines, its ends, and what it remembers.
#include "motors/fake_board.h"
#include "motors/link_packets.h"
#include "motors/program.h"
#include "support/child_process.h"

#include <algorithm>
#include <csignal>

namespace tesmor::test {
namespace {

class DriveProgramTest : public MotorTest {
protected:
    std::vector<std::string> onBoard(const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> words{TESMOR_DRIVE, "gcode",  "--port", board.port(), "--steps-per-mm",
                                       "3200",       "--unit", "12",     "--limit",    "-5000..5000"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    FakeBoard board{Firmware::grbl};
};

TEST(DriveProgram, SaysWhatIsWrongWithACommandLine)
{
    const struct {
        std::vector<std::string> words;
        int status;
        const char* line;
    } cases[] = {
        {{}, 2, "needs a kind of motor"},
        {{"screw"}, 2, "no kind of motor 'screw'"},
        {{"gcode", "--steps-per-mm", "9"}, 2, "gcode needs --port"},
        {{"gcode", "--port", "x", "--steps-per-mm", "0"}, 2, "must be a number from 0.001"},
        {{"gcode", "--port"}, 2, "--port needs a value"},
        {{"gcode", "--porridge", "x"}, 2, "no option --porridge"},
        {{"indi", "--device", "x", "--port", "y"}, 2, "--port is no option of indi"},
        {{"indi", "--device", "x", "--server", ":1"}, 2, "must be HOST:PORT"},
        {{"sangaboard", "--port", "x", "--limit", "5..-5"}, 2, "the lower one first"},
        {{"sangaboard", "--port", "x", "--gear", "0/3"}, 2, "two whole numbers"},
        {{"sangaboard", "--port", "x", "--unit", "16"}, 2, "from 0 to 15"},
        {{"sangaboard", "--port", "x", "--limit", "0..9", "--position", "10"}, 2, "outside of --limit"},
        {{"sangaboard", "--port", "x", "y"}, 2, "'y' is too much"},
        {{"usb", "--device", "1d50"}, 2, ""}, // the line depends on whether libusb is there
        {{"sangaboard", "--port", "/dev/nothing"}, 1, "no port /dev/nothing; plug the board in"},
        {{"sangaboard", "--port", "/dev/null"}, 1, "/dev/null is no serial port"},
        {{"sangaboard", "--port", "x", "--baud", "7"}, 2, "from 300 to 4000000"},
    };
    for (const auto& each : cases) {
        std::vector<std::string> words{TESMOR_DRIVE};
        words.insert(words.end(), each.words.begin(), each.words.end());
        std::string said;
        EXPECT_EQ(run(words, said), each.status) << said;
        EXPECT_NE(said.find(each.line), std::string::npos) << each.line << ": " << said;
        EXPECT_EQ(std::ranges::count(said, '\n'), 1) << said;
    }
}

TEST_F(DriveProgramTest, EndsAfterTheMoveInHandAndRemembersWhereTheMotorStands)
{
    Program drive(onBoard());
    ASSERT_TRUE(drive.says("unit 12 is GRBL on " + board.port() + ", at position 0\n")) << drive.said();
    const RawClient client(UNIT);
    board.hold(true);
    EXPECT_EQ(client.ask(FORWARD_1000), ACCEPTED);
    drive.signal(SIGTERM);
    board.hold(false);
    EXPECT_EQ(client.receive(), ACKNOWLEDGEMENT);
    EXPECT_EQ(client.receive(), END_OF_FILE);
    EXPECT_EQ(drive.end(), 0);
    EXPECT_EQ(board.position(), 1000);

    Program again(onBoard());
    EXPECT_TRUE(again.says("at position 1000\n")) << again.said();
}

TEST_F(DriveProgramTest, SaysWhoHasThePortAndWhoMayNotHaveIt)
{
    Program drive(onBoard());
    ASSERT_TRUE(drive.says("unit 12 is"));
    std::string said;
    EXPECT_EQ(run(onBoard(), said), 1);
    EXPECT_NE(said.find("is in use by tesmor-drive (process " + std::to_string(drive.id()) + "); end that first\n"),
              std::string::npos)
        << said;
    EXPECT_EQ(run(onBoard({"--dry-run"}), said), 1);
    EXPECT_NE(said.find("unit 12 is taken by another drive service"), std::string::npos) << said;
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can try another user";
    std::filesystem::permissions(std::getenv("XDG_STATE_HOME"), std::filesystem::perms::all);
    setenv("XDG_STATE_HOME", "/tmp", 1);
    EXPECT_EQ(run(onBoard(), said, NOBODY), 1);
    EXPECT_NE(said.find("no permission for " + board.port() + "; install the udev rule"), std::string::npos) << said;
}

TEST_F(DriveProgramTest, ADryRunSaysWhatItWouldSendAndForgetsNothing)
{
    Program drive(onBoard({"--dry-run", "--backlash", "100"}));
    ASSERT_TRUE(drive.says("unit 12 is a dry run")) << drive.said();
    const RawClient client(UNIT);
    EXPECT_EQ(client.ask(REVERSE_1000), ACCEPTED);
    EXPECT_EQ(client.receive(), ACKNOWLEDGEMENT);
    EXPECT_TRUE(drive.says("would send: G1 Z-0.343750 F60\n")) << drive.said();
    EXPECT_TRUE(drive.says("would send: G1 Z0.031250 F60\n")) << drive.said();
    EXPECT_EQ(board.turns(), 0);
}

} // namespace
} // namespace tesmor::test
