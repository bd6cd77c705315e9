// SPDX-License-Identifier: GPL-2.0-or-later
// What a client of a motor sends and gets, and where the tests' motors are.
#pragma once

#include "drive_service/drive_service.h"
#include "platform_linux/raw_service.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace tesmor::test {

inline constexpr unsigned UNIT = 12;

inline const Packet OPEN{0x59, 0x20, 0x22, 0, 0, 2, 0, 0, 0xD2, 0, 0, 0, 0, 0};
inline const Packet FORWARD_1000{0x59, 0x20, 0x22, 0, 0, 2, 0, 0, 0xD1, 0, 0x60, 0, 0xE8, 0x03};
inline const Packet REVERSE_1000{0x59, 0x20, 0x22, 0, 0, 2, 0, 0, 0xD1, 0, 0x60, 0x80, 0xE8, 0x03};
inline const Packet RESET{0x35, 0x20, 0x22, 0, 0, 0, 0, 0};
inline const Packet ACCEPTED{0x59, 0x20, 0x22, 0, 1};
inline const Packet REFUSED{0x59, 0x20, 0x22, 0, 0};
inline const Packet RESET_ACCEPTED{0x35, 0x20, 0x22, 0, 1};
inline const Packet ACKNOWLEDGEMENT{service::ACKNOWLEDGEMENT_BYTE};
inline const Packet END_OF_FILE;

// With nothing remembered of any motor.
class MotorTest : public ::testing::Test {
protected:
    MotorTest()
    {
        const auto folder = std::filesystem::temp_directory_path() / ("tesmor-state-" + std::to_string(getpid()));
        std::filesystem::remove_all(folder);
        std::filesystem::create_directory(folder);
        setenv("XDG_STATE_HOME", folder.c_str(), 1);
        setenv("HOME", folder.c_str(), 1); // where INDI's drivers keep their settings
    }
};

} // namespace tesmor::test
