// SPDX-License-Identifier: GPL-2.0-or-later
// A drive service that sends whatever it likes, towards the library.
// Input: packets, each a length byte and so many bytes, 0xFF for 300 bytes of one value; all are sent before the
// library asks for anything, and the end of file follows.
#include "fuzz/fuzz_input.h"
#include "platform/drive_device.h"
#include "platform_linux/raw_service.h"
#include "protocol/drive_request.h"

using namespace tesmor;
using test::Packet;

namespace {

constexpr int REQUESTS = 4;
constexpr int READS = 4;
constexpr std::size_t MOST_PACKETS = 32; // what a socket takes without blocking

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const unsigned unit = 1000 + static_cast<unsigned>(getpid()); // nobody else's
    static test::RawService service(unit);
    fuzz::Input input(data, size);

    auto device = platform::systemDriveUnits().open(unit);
    fuzz::require(device != nullptr, "the service's unit opens");
    service.acceptClient();
    int acknowledgements = 0;
    int acceptances = 0;
    for (std::size_t i = 0; i < MOST_PACKETS && !input.isEmpty(); ++i) {
        const std::uint8_t length = input.byte();
        const auto bytes = input.bytes(length);
        const Packet packet = length == 0xFF ? Packet(300, length) : Packet(bytes.begin(), bytes.end());
        if (packet.empty())
            break; // reads as the end of file
        acknowledgements += packet.size() == 1;
        acceptances += packet.size() == 5 && packet[4] != 0;
        service.send(packet);
    }
    service.endSending();

    platform::Event completion(platform::Reset::manual, false);
    const DriveRequest request = makeDriveRequest(DRIVE_REQ_MOVE, DIR_REVERSE, 1);
    for (int i = 0; i < REQUESTS; ++i) {
        if (i % 2 == 0)
            acceptances -= device->control(IOCTL_DRIVE_REQUEST, request);
        else
            acceptances -= device->control(IOCTL_DRIVE_RESET_ACK, DRIVE_RESET_ACK_INPUT);
        for (int read = 0; read < READS; ++read)
            acknowledgements -= device->readByte(&completion, 1000);
    }
    fuzz::require(acceptances >= 0, "every acceptance was sent");
    fuzz::require(acknowledgements >= 0, "every acknowledgement was sent");
    device.reset();
    service.vanish();
    return 0;
}
