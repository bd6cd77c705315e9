// What reaches the device, line by line.
#include "drive/focus_drive.h"

#include "support/scripted_device.h"

#include <gtest/gtest.h>
#include <memory>

namespace tesmor::test {

namespace {

const std::string OPEN_REQUEST = "request 00 02 00 00 D2 00 00 00 00 00";
const std::string CLOSE_REQUEST = "request 00 02 00 00 D3 00 00 00 00 00";
const std::string FORWARD_3200 = "request 00 02 00 00 D1 00 60 00 80 0C";
const std::string REVERSE_3200 = "request 00 02 00 00 D1 00 60 80 80 0C";

class Drive : public ::testing::Test {
protected:
    Drive()
    {
        device.reset({0});
    }

    // The log of what `action` does with an open drive, the opening left out.
    template <class Action>
    std::vector<std::string> logOf(Action action)
    {
        auto drive = std::make_unique<FocusDrive>();
        const auto opening = static_cast<std::ptrdiff_t>(device.log().size());
        action(drive);
        const auto log = device.log();
        return {log.begin() + opening, log.end()};
    }
};

TEST_F(Drive, TakesTheLowestUnitThatExistsAndOpens)
{
    device.existingUnits = {1, 2, 5};
    device.openingUnits = {2, 5};
    {
        FocusDrive drive;
        EXPECT_TRUE(drive.hasDevice());
    }
    EXPECT_EQ(device.log(), (std::vector<std::string>{"exists 0", "exists 1", "open 1", "exists 2", "open 2",
                                                      OPEN_REQUEST, CLOSE_REQUEST, "close"}));
}

TEST_F(Drive, LooksAtSixteenUnitsAndThenGivesUp)
{
    device.existingUnits = device.openingUnits = {16};
    {
        FocusDrive drive;
        EXPECT_FALSE(drive.hasDevice());
        EXPECT_FALSE(drive.move(1, false));
    }
    const auto log = device.log();
    EXPECT_EQ(log.size(), 16u + 5u);
    EXPECT_EQ(log[15], "exists 15");
    EXPECT_EQ(log.back(), "sleep 20");
}

TEST_F(Drive, ReleasesOnlyWhatTheDriverHasAccepted)
{
    device.refuseOpenRequest = true;
    const auto log = logOf([](auto& drive) {
        EXPECT_TRUE(drive->move(3200, false));
        drive.reset();
    });
    EXPECT_EQ(log, (std::vector<std::string>{FORWARD_3200, "read 1500", "close"}));
}

TEST_F(Drive, SendsMovesToTheByte)
{
    struct Case {
        std::int32_t displacement;
        std::string request;
    };
    const Case cases[] = {
        {3200, FORWARD_3200},
        {-3200, REVERSE_3200},
        {0, "request 00 02 00 00 D1 00 60 80 00 00"},
        {65536 + 7, "request 00 02 00 00 D1 00 60 00 07 00"},
        {-65536 - 7, "request 00 02 00 00 D1 00 60 80 07 00"},
        {INT32_MIN, "request 00 02 00 00 D1 00 60 80 00 00"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(logOf([&](auto& drive) { EXPECT_TRUE(drive->moveBy(c.displacement)); }),
                  (std::vector{c.request, std::string("read 1500")}));
    }
}

TEST_F(Drive, ReadsFiveAcknowledgementsInAllAndNeverRepeatsAnAcceptedMove)
{
    device.goodMoves = 0;
    for (const int missing : {1, 4, 5}) {
        device.missingAcks = missing;
        std::vector<std::string> expected{FORWARD_3200};
        for (int i = 0; i < missing; ++i)
            expected.insert(expected.end(), {"read 1500", "reset", "sleep 20"});
        if (missing < 5)
            expected.push_back("read 1500");
        EXPECT_EQ(logOf([&](auto& drive) { EXPECT_EQ(drive->move(3200, false), missing < 5); }), expected);
    }
}

} // namespace

} // namespace tesmor::test
