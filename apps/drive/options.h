// SPDX-License-Identifier: GPL-2.0-or-later
// What the user asks of tesmor-drive.
#pragma once

#include "drive/gcode_motor.h"
#include "drive/motor_runner.h"
#include "drive/sangaboard_motor.h"

#include <optional>
#include <stdexcept>
#include <string>

namespace tesmor::drive {

// A wrong command line; the text says what is wrong with it, and what would be right.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class Kind { usb, gcode, sangaboard, indi };

// Of the motors, only what belongs to `kind` is filled in. The fields of USB and INDI are here as they stand in their
// settings, which a build may be without.
struct Options {
    Kind kind = Kind::gcode;
    GcodeSettings gcode;
    SangaboardSettings sangaboard;
    struct {
        std::uint16_t vendor = 0;
        std::uint16_t product = 0;
        std::string serial;
        std::uint8_t ackEndpoint = 0x81;
    } usb;
    struct {
        std::string device;
        std::string host = "localhost";
        unsigned port = 7624;
    } indi;

    unsigned unit = 0;
    TravelSettings travel;
    std::chrono::milliseconds settle{0};
    std::optional<std::int64_t> position; // none: as it was at the end of the last run
    bool dryRun = false;

    // What tells the motor from others; position_file.h.
    std::string motorId() const;
};

// arguments: from the kind on. Throws UsageError.
Options parseOptions(int argc, char** argv);

extern const char* const USAGE; // the text of --help

} // namespace tesmor::drive
