// SPDX-License-Identifier: GPL-2.0-or-later
// A client that sends whatever it likes, towards the virtual microscope's drive service.
// Input: packets, each a length byte and so many bytes; a bit of the length says that the client leaves without reading
// the answer.
#include "drive_service/drive_service.h"
#include "fuzz/fuzz_input.h"
#include "microscope/drive/drive_controller.h"
#include "protocol/drive_socket.h"

#include <cerrno>
#include <cstring>

using namespace tesmor::microscope;

namespace {

constexpr std::uint8_t LENGTH_BITS = 0x7F;
constexpr std::uint8_t LEAVES = 0x80;
constexpr std::int64_t END_STOP = 400'000; // motor steps

struct Service {
    const unsigned unit = 1000 + static_cast<unsigned>(getpid()); // nobody else's
    Motor motor{{.stepsPerSecond = 0, .lowEnd = -END_STOP, .highEnd = END_STOP}, TimeScale{1}, 0};
    AcknowledgementGate gate;
    DriveController controller{motor, gate};
    tesmor::service::DriveService service{controller, unit};
};

int connectTo(unsigned unit)
{
    const int client = tesmor::makeDriveSocket(0);
    const tesmor::DriveAddress address(unit);
    tesmor::fuzz::require(connect(client, address.get(), address.length()) == 0, "the service listens");
    return client;
}

// The one reply to a packet, past the acknowledgements.
void expectReply(int client, std::span<const std::uint8_t> packet)
{
    std::uint8_t code[4] = {};
    std::memcpy(code, packet.data(), std::min<std::size_t>(packet.size(), sizeof code));
    std::uint8_t reply[512];
    ssize_t length;
    do {
        length = recv(client, reply, sizeof reply, 0);
    } while (length == 1 || (length < 0 && errno == EINTR)); // the fuzzer's own timer interrupts
    tesmor::fuzz::require(length == 5, "every packet is replied to");
    tesmor::fuzz::require(std::memcmp(reply, code, sizeof code) == 0 && reply[4] <= 1, "with its code and a verdict");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Service service;
    tesmor::fuzz::Input input(data, size);
    int client = connectTo(service.unit);
    while (!input.isEmpty()) {
        const std::uint8_t head = input.byte();
        const auto packet = input.bytes(head & LENGTH_BITS);
        if (packet.empty())
            continue; // reads as the end of file
        tesmor::fuzz::require(send(client, packet.data(), packet.size(), MSG_NOSIGNAL) > 0,
                              "the service takes packets");
        if (head & LEAVES) {
            close(client);
            client = connectTo(service.unit);
        } else {
            expectReply(client, packet);
        }
    }
    close(client);
    const std::int64_t position = service.motor.position(Clock::now());
    tesmor::fuzz::require(position >= -END_STOP && position <= END_STOP, "the motor stays between its end stops");
    return 0;
}
