// SPDX-License-Identifier: GPL-2.0-or-later
// A frame of any size, allocated to the byte, at any magnification and for any command.
// Input: width, height and magnification as words, the command as a byte, then pixels, repeated over the frame.
#include "frames/frame_hook.h"
#include "fuzz/fuzz_input.h"
#include "protocol/frame_layout.h"

#include <cmath>
#include <memory>

using namespace tesmor;

namespace {

constexpr std::int64_t MOST_BYTES = 1 << 20;
constexpr std::uint16_t MAGNIFICATIONS[] = {4, 10, 20, 40, 60, 80, 100};

int calls;

void onFrame(const std::uint8_t*, std::int32_t, std::int32_t, void*, std::int32_t)
{
    ++calls;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Session session;
    fuzz::Input input(data, size);
    const auto width = static_cast<std::int16_t>(input.word());
    const auto height = static_cast<std::int16_t>(input.word());
    const std::uint16_t magnification = input.word();
    const std::uint8_t command = input.byte();
    const std::int64_t bytes = width > 0 && height > 0 ? rowBytes(width) * height : 0;
    if (bytes > MOST_BYTES)
        return -1; // not worth keeping

    const auto count = static_cast<std::size_t>(bytes);
    const std::unique_ptr<std::uint8_t[]> frame(new std::uint8_t[count]);
    const auto pixels = input.bytes(size);
    for (std::size_t i = 0; i < count; ++i)
        frame[i] = pixels.empty() ? std::uint8_t{7} : pixels[i % pixels.size()];

    session.commandBlock.command = static_cast<CommandCode>(command % 9);
    session.commandBlock.magnification = magnification % 8 < 7 ? MAGNIFICATIONS[magnification % 8] : magnification;
    session.commandBlock.frameCallback = onFrame;
    session.commandBlock.focusValue = -1.0;
    session.frameRequest = 1;
    calls = 0;
    handleFrame(session, frame.get(), width, height);
    fuzz::require(session.frameRequest == 0, "a request is taken");
    const bool isCaptured = session.commandBlock.command == CMD_STACK || session.commandBlock.command == CMD_CAPTURE;
    fuzz::require(calls == (isCaptured ? 1 : 0), "a captured frame is handed on once");
    if (session.commandBlock.command == CMD_AUTOFOCUS) {
        const double value = session.commandBlock.focusValue;
        fuzz::require(std::isfinite(value) && value >= 0.0, "the focus measure is a number and not negative");
    }
    return 0;
}
