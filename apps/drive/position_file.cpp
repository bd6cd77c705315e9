// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/position_file.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace tesmor::drive {

namespace {

std::filesystem::path stateFolder()
{
    if (const char* state = std::getenv("XDG_STATE_HOME"); state && *state == '/')
        return state;
    if (const char* home = std::getenv("HOME"); home && *home == '/')
        return std::filesystem::path(home) / ".local" / "state";
    throw std::runtime_error("there is no place for the motor's position: set HOME or XDG_STATE_HOME");
}

std::string fileName(std::string motor)
{
    for (char& letter : motor) {
        if (letter == '/' || letter == ' ')
            letter = '-';
    }
    return motor;
}

} // namespace

PositionFile::PositionFile(const std::string& motor) : file_(stateFolder() / "tesmor-drive" / fileName(motor))
{
    std::error_code error;
    std::filesystem::create_directories(file_.parent_path(), error);
    if (error)
        throw std::runtime_error("the folder " + file_.parent_path().string() +
                                 ", for the motor's position, cannot be made: " + error.message());
}

std::optional<std::int64_t> PositionFile::read() const
{
    std::ifstream in(file_);
    std::int64_t position = 0;
    return in >> position ? std::optional(position) : std::nullopt;
}

bool PositionFile::write(std::int64_t position) const
{
    const std::filesystem::path fresh = file_.string() + ".new";
    std::ofstream out(fresh);
    out << position << '\n';
    out.close();
    std::error_code error;
    if (out)
        std::filesystem::rename(fresh, file_, error);
    return out && !error;
}

std::string PositionFile::name() const
{
    return file_.string();
}

} // namespace tesmor::drive
