// What a control request means.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace tesmor::microscope {

struct DriveCommand {
    enum class Kind { move, open, close, resetAcknowledgement };

    Kind kind;
    std::int64_t displacement = 0; // of a move, motor steps
};

// None when the code is unknown, the input has a wrong length or a field of it is outside its range.
std::optional<DriveCommand> parseCommand(std::uint32_t code, std::span<const std::uint8_t> input);

} // namespace tesmor::microscope
