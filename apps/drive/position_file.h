// SPDX-License-Identifier: GPL-2.0-or-later
// Remembers where a motor stands from one run to the next: in $XDG_STATE_HOME/tesmor-drive, by default in
// ~/.local/state, a file for each motor.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace tesmor::drive {

class PositionFile {
public:
    // motor: what tells it from others. Makes the folder. Throws std::runtime_error when there is no place to write to.
    explicit PositionFile(const std::string& motor);

    // None when nothing is known of this motor.
    std::optional<std::int64_t> read() const;

    // False when it cannot be written; the file is then as it was.
    bool write(std::int64_t position) const;

    std::string name() const;

private:
    std::filesystem::path file_;
};

} // namespace tesmor::drive
