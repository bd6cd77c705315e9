#include "microscope/drive/drive_command.h"

#include <algorithm>

namespace tesmor::microscope {

namespace {

constexpr std::uint32_t REQUEST_CODE = 0x222059; // input: one request packet
constexpr std::uint32_t RESET_CODE = 0x222035;   // input: four zero bytes
constexpr std::size_t REQUEST_BYTES = 10;
constexpr std::size_t RESET_BYTES = 4;

constexpr std::uint8_t MOVE = 209;
constexpr std::uint8_t OPEN = 210;
constexpr std::uint8_t CLOSE = 211;

constexpr std::uint16_t FORWARD = 0x0060;
constexpr std::uint16_t REVERSE = 0x8060;

// Byte 4 is the request, 6 and 7 its value, 8 and 9 its index, little-endian; 1 is 2, the others are 0.
std::optional<DriveCommand> parseRequest(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() != REQUEST_BYTES)
        return std::nullopt;
    if (bytes[0] != 0 || bytes[1] != 2 || bytes[2] != 0 || bytes[3] != 0 || bytes[5] != 0)
        return std::nullopt;
    const int value = bytes[6] | bytes[7] << 8;
    const int index = bytes[8] | bytes[9] << 8;
    const bool isPlain = value == 0 && index == 0;
    if (bytes[4] == MOVE && value == FORWARD)
        return DriveCommand{DriveCommand::Kind::move, index};
    if (bytes[4] == MOVE && value == REVERSE)
        return DriveCommand{DriveCommand::Kind::move, -index};
    if (bytes[4] == OPEN && isPlain)
        return DriveCommand{DriveCommand::Kind::open};
    if (bytes[4] == CLOSE && isPlain)
        return DriveCommand{DriveCommand::Kind::close};
    return std::nullopt;
}

} // namespace

std::optional<DriveCommand> parseCommand(std::uint32_t code, std::span<const std::uint8_t> input)
{
    if (code == REQUEST_CODE)
        return parseRequest(input);
    const auto isZero = [](std::uint8_t byte) { return byte == 0; };
    if (code == RESET_CODE && input.size() == RESET_BYTES && std::ranges::all_of(input, isZero))
        return DriveCommand{DriveCommand::Kind::resetAcknowledgement};
    return std::nullopt;
}

} // namespace tesmor::microscope
