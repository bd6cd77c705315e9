// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/port_users.h"

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tesmor::drive {

namespace fs = std::filesystem;

namespace {

// The very node: in a container, another may have the same name.
bool hasOpen(const fs::path& process, const struct stat& device)
{
    std::error_code error;
    for (fs::directory_iterator each(process / "fd", error), end; !error && each != end; each.increment(error)) {
        struct stat open {};
        if (stat(each->path().c_str(), &open) == 0 && open.st_dev == device.st_dev && open.st_ino == device.st_ino)
            return true;
    }
    return false;
}

} // namespace

std::string usersOf(const std::string& device)
{
    struct stat node {};
    stat(device.c_str(), &node);
    std::error_code error;
    std::string users;
    for (fs::directory_iterator each("/proc", error), end; !error && each != end; each.increment(error)) {
        const std::string id = each->path().filename();
        if (id.find_first_not_of("0123456789") != std::string::npos || id == std::to_string(getpid()) ||
            !hasOpen(each->path(), node))
            continue;
        std::string name;
        std::ifstream command(each->path() / "comm");
        std::getline(command, name);
        users.append(users.empty() ? "" : ", ").append(name).append(" (process ").append(id).append(")");
    }
    return users.empty() ? "another program" : users;
}

} // namespace tesmor::drive
