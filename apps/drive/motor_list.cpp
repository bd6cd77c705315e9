// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/motor_list.h"

#include "drive/backends.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace tesmor::drive {

namespace fs = std::filesystem;

namespace {

// Names that stay when the board is plugged into another socket, before those that do not.
std::vector<std::string> serialPorts()
{
    std::vector<std::string> ports;
    std::set<fs::path> named;
    std::error_code error;
    for (const auto& each : fs::directory_iterator("/dev/serial/by-id", error)) {
        ports.push_back(each.path());
        named.insert(fs::canonical(each.path(), error));
    }
    for (const auto& each : fs::directory_iterator("/dev", error)) {
        const std::string name = each.path().filename();
        if ((name.starts_with("ttyUSB") || name.starts_with("ttyACM")) && !named.contains(each.path()))
            ports.push_back(each.path());
    }
    std::ranges::sort(ports);
    return ports;
}

} // namespace

bool listMotors()
{
    const std::vector<std::string> ports = serialPorts();
    for (const std::string& port : ports) {
        const bool allowed = access(port.c_str(), R_OK | W_OK) == 0;
        std::printf("serial port %s%s\n", port.c_str(), allowed ? "" : ", for which you have no permission");
        std::printf("  tesmor-drive gcode --port %s --steps-per-mm N\n", port.c_str());
        std::printf("  tesmor-drive sangaboard --port %s\n", port.c_str());
    }
    const std::vector<FoundMotor> others = findOtherMotors();
    for (const FoundMotor& motor : others)
        std::printf("%s\n  tesmor-drive %s\n", motor.what.c_str(), motor.arguments.c_str());
    return !ports.empty() || !others.empty();
}

} // namespace tesmor::drive
