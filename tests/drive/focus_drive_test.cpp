// SPDX-License-Identifier: GPL-2.0-or-later
// What reaches the device, line by line.
#include "drive/focus_drive.h"

#include "support/scripted_system.h"

#include <gtest/gtest.h>

namespace tesmor::test {

namespace {

using Lines = std::vector<std::string>;

const std::string OPEN_REQUEST = "request 00 02 00 00 D2 00 00 00 00 00";
const std::string CLOSE_REQUEST = "request 00 02 00 00 D3 00 00 00 00 00";
const std::string FORWARD_3200 = "request 00 02 00 00 D1 00 60 00 80 0C";
const std::string REVERSE_3200 = "request 00 02 00 00 D1 00 60 80 80 0C";

class Drive : public ::testing::Test {
protected:
    Drive()
    {
        system.reset({0});
    }

    // The log of what `action` does with an open drive, its opening left out and its closing, too.
    template <class Action>
    Lines logOf(Action action)
    {
        FocusDrive drive(system, system);
        const auto opening = static_cast<std::ptrdiff_t>(system.log().size());
        action(drive);
        const auto log = system.log();
        return {log.begin() + opening, log.end()};
    }

    ScriptedSystem system;
};

TEST_F(Drive, TakesTheLowestUnitThatExistsAndOpens)
{
    system.existingUnits = {1, 2, 5};
    system.openingUnits = {2, 5};
    EXPECT_TRUE(FocusDrive(system, system).hasDevice());
    EXPECT_EQ(system.log(),
              (Lines{"exists 0", "exists 1", "open 1", "exists 2", "open 2", OPEN_REQUEST, CLOSE_REQUEST, "close"}));
}

TEST_F(Drive, LooksAtSixteenUnitsAndThenGivesUp)
{
    system.existingUnits = system.openingUnits = {16};
    FocusDrive drive(system, system);
    EXPECT_FALSE(drive.hasDevice());
    EXPECT_FALSE(drive.move(1, false));
    EXPECT_EQ(system.log().size(), 16u + 5u);
    EXPECT_EQ(system.log()[15], "exists 15");
    EXPECT_EQ(system.log().back(), "sleep 20");
}

TEST_F(Drive, ReleasesOnlyWhatTheDriverHasAccepted)
{
    system.refuseOpenRequest = true;
    EXPECT_EQ(logOf([](auto& drive) { EXPECT_TRUE(drive.move(3200, false)); }), (Lines{FORWARD_3200, "read 1500"}));
    EXPECT_EQ(system.log().back(), "close");
    EXPECT_EQ(system.log().end()[-2], "read 1500");
}

TEST_F(Drive, SendsMovesToTheByte)
{
    const std::pair<std::int32_t, std::string> cases[] = {
        {3200, FORWARD_3200},
        {-3200, REVERSE_3200},
        {0, "request 00 02 00 00 D1 00 60 80 00 00"},
        {65536 + 7, "request 00 02 00 00 D1 00 60 00 07 00"},
        {-65536 - 7, "request 00 02 00 00 D1 00 60 80 07 00"},
        {INT32_MIN, "request 00 02 00 00 D1 00 60 80 00 00"},
    };
    for (const auto& [displacement, request] : cases)
        EXPECT_EQ(logOf([&](auto& drive) { EXPECT_TRUE(drive.moveBy(displacement)); }), (Lines{request, "read 1500"}));
}

TEST_F(Drive, ReadsFiveAcknowledgementsInAllAndNeverRepeatsAnAcceptedMove)
{
    system.goodMoves = 0;
    for (const int missing : {1, 4, 5}) {
        system.missingAcks = missing;
        Lines expected{FORWARD_3200};
        for (int i = 0; i < missing; ++i)
            expected.insert(expected.end(), {"read 1500", "reset", "sleep 20"});
        if (missing < 5)
            expected.push_back("read 1500");
        EXPECT_EQ(logOf([&](auto& drive) { EXPECT_EQ(drive.move(3200, false), missing < 5); }), expected);
    }
}

} // namespace

} // namespace tesmor::test
