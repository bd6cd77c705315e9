// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/port_users.h"

#include <filesystem>
#include <fstream>
#include <system_error>
#include <unistd.h>

namespace tesmor::drive {

namespace fs = std::filesystem;

namespace {

bool hasOpen(const fs::path& process, const fs::path& device)
{
    std::error_code error;
    for (fs::directory_iterator each(process / "fd", error), end; !error && each != end; each.increment(error)) {
        std::error_code unreadable;
        if (fs::read_symlink(each->path(), unreadable) == device)
            return true;
    }
    return false;
}

} // namespace

std::string usersOf(const std::string& device)
{
    std::error_code error;
    const fs::path file = fs::canonical(device, error);
    std::string users;
    for (fs::directory_iterator each("/proc", error), end; !error && each != end; each.increment(error)) {
        const std::string id = each->path().filename();
        if (id.find_first_not_of("0123456789") != std::string::npos || id == std::to_string(getpid()) ||
            !hasOpen(each->path(), file))
            continue;
        std::string name;
        std::ifstream command(each->path() / "comm");
        std::getline(command, name);
        users += (users.empty() ? "" : ", ") + name + " (process " + id + ")";
    }
    return users.empty() ? "another program" : users;
}

} // namespace tesmor::drive
