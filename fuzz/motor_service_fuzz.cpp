// SPDX-License-Identifier: GPL-2.0-or-later
// Packets of any client, towards tesmor-drive's service; its motor moves at once, and only between the soft ends.
#include "drive/motor_runner.h"
#include "drive_service/drive_service.h"
#include "fuzz/link_client.h"

#include <cstdlib>
#include <filesystem>

using namespace tesmor;

namespace {

constexpr std::int64_t LOW = -100'000; // steps of the link
constexpr std::int64_t HIGH = 150'000;
constexpr std::int64_t GEAR_MOTOR = 3;
constexpr std::int64_t GEAR_LINK = 7;
constexpr drive::TravelSettings TRAVEL{
    .gearMotor = GEAR_MOTOR, .gearLink = GEAR_LINK, .backlash = 900, .low = LOW, .high = HIGH};

class InstantMotor : public drive::Motor {
public:
    std::string name() const override
    {
        return "the fuzzer's motor";
    }

    void connect() override {}

    void begin(std::int64_t steps) override
    {
        fuzz::require(steps >= -largestMove() && steps <= largestMove(), "no move is too large");
        position_ += steps;
        const std::int64_t position = position_ * GEAR_LINK;
        fuzz::require(position > LOW * GEAR_MOTOR - GEAR_LINK && position < HIGH * GEAR_MOTOR + GEAR_LINK,
                      "the motor stays between the soft ends");
    }

    void finish() override {}

    std::string describe(std::int64_t) const override
    {
        return {};
    }

    std::int64_t largestMove() const override
    {
        return 5000;
    }

private:
    std::int64_t position_ = 0;
};

std::string stateFolder()
{
    const auto folder = std::filesystem::temp_directory_path() / "tesmor-motor-fuzz";
    setenv("XDG_STATE_HOME", folder.c_str(), 1);
    return "fuzz " + std::to_string(getpid());
}

struct Service {
    const unsigned unit = 1000 + static_cast<unsigned>(getpid()); // nobody else's
    InstantMotor motor;
    drive::PositionFile file{stateFolder()};
    drive::MotorRunner runner{motor, file, {.travel = TRAVEL}};
    service::DriveService service{runner, unit};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Service service;
    fuzz::playClient(service.unit, {data, size});
    return 0;
}
