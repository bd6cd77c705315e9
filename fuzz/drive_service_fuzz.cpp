// SPDX-License-Identifier: GPL-2.0-or-later
// Packets of any client, towards the virtual microscope's drive service.
#include "drive_service/drive_service.h"
#include "fuzz/link_client.h"
#include "microscope/drive/drive_controller.h"

using namespace tesmor::microscope;

namespace {

constexpr std::int64_t END_STOP = 400'000; // motor steps

struct Service {
    const unsigned unit = 1000 + static_cast<unsigned>(getpid()); // nobody else's
    Motor motor{{.stepsPerSecond = 0, .lowEnd = -END_STOP, .highEnd = END_STOP}, TimeScale{1}, 0};
    AcknowledgementGate gate;
    DriveController controller{motor, gate};
    tesmor::service::DriveService service{controller, unit};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Service service;
    tesmor::fuzz::playClient(service.unit, {data, size});
    const std::int64_t position = service.motor.position(Clock::now());
    tesmor::fuzz::require(position >= -END_STOP && position <= END_STOP, "the motor stays between its end stops");
    return 0;
}
