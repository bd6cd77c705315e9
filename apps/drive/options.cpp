// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/options.h"

#include "drive/option_values.h"
#include "protocol/drive_codes.h"

#include <array>
#include <cctype>
#include <getopt.h>
#include <vector>

namespace tesmor::drive {

namespace {

using Kinds = unsigned; // a set of kinds

constexpr Kinds only(Kind kind)
{
    return 1U << static_cast<unsigned>(kind);
}

constexpr Kinds USB = only(Kind::usb);
constexpr Kinds GCODE = only(Kind::gcode);
constexpr Kinds SANGABOARD = only(Kind::sangaboard);
constexpr Kinds INDI = only(Kind::indi);
constexpr Kinds ALL = USB | GCODE | SANGABOARD | INDI;
constexpr Kinds NONE = 0;

struct Row {
    const char* name;
    Kinds takenBy;
    Kinds neededBy;
    void (*set)(Options& options, const std::string& value);
    bool hasValue = true;
};

constexpr std::array ROWS{
    Row{"device", USB | INDI, USB | INDI,
        [](Options& o, const std::string& v) {
            if (o.kind == Kind::usb)
                setUsbDevice(o, v);
            o.indi.device = v;
        }},
    Row{"serial", USB, NONE, [](Options& o, const std::string& v) { o.usb.serial = v; }},
    Row{"ack-endpoint", USB, NONE, setEndpoint},
    Row{"port", GCODE | SANGABOARD, GCODE | SANGABOARD,
        [](Options& o, const std::string& v) { o.gcode.port = o.sangaboard.port = v; }},
    Row{"baud", GCODE | SANGABOARD, NONE,
        [](Options& o, const std::string& v) {
            o.gcode.baud = o.sangaboard.baud = static_cast<unsigned>(integerOf("baud", v, 300, 4'000'000));
        }},
    Row{"steps-per-mm", GCODE, GCODE,
        [](Options& o, const std::string& v) { o.gcode.stepsPerMm = numberOf("steps-per-mm", v); }},
    Row{"feed", GCODE, NONE, [](Options& o, const std::string& v) { o.gcode.feed = numberOf("feed", v); }},
    Row{"axis", GCODE | SANGABOARD, NONE,
        [](Options& o, const std::string& v) {
            o.gcode.axis = static_cast<char>(std::toupper(axisOf(v)));
            o.sangaboard.axis = static_cast<char>(std::tolower(axisOf(v)));
        }},
    Row{"server", INDI, NONE, setServer},
    Row{"unit", ALL, NONE,
        [](Options& o, const std::string& v) {
            o.unit = static_cast<unsigned>(integerOf("unit", v, 0, MAX_DRIVE_UNITS - 1));
        }},
    Row{"gear", ALL, NONE, [](Options& o, const std::string& v) { setGear(o.travel, v); }},
    Row{"reverse", ALL, NONE, [](Options& o, const std::string&) { o.travel.reversed = true; }, false},
    Row{"backlash", ALL, NONE,
        [](Options& o, const std::string& v) { o.travel.backlash = integerOf("backlash", v, 0, 100'000); }},
    Row{"limit", ALL, NONE, [](Options& o, const std::string& v) { setLimit(o.travel, v); }},
    Row{"position", ALL, NONE,
        [](Options& o, const std::string& v) { o.position = integerOf("position", v, -MOST_STEPS, MOST_STEPS); }},
    Row{"settle", ALL, NONE,
        [](Options& o, const std::string& v) {
            o.settle = std::chrono::milliseconds(integerOf("settle", v, 0, 1400)); // the library waits 1500 at a time
        }},
    Row{"dry-run", ALL, NONE, [](Options& o, const std::string&) { o.dryRun = true; }, false},
};

constexpr std::array KIND_NAMES{"usb", "gcode", "sangaboard", "indi"}; // in the order of Kind

Kind kindNamed(const std::string& name)
{
    for (std::size_t i = 0; i < KIND_NAMES.size(); ++i) {
        if (name == KIND_NAMES[i])
            return static_cast<Kind>(i);
    }
    throw UsageError("there is no kind of motor '" + name + "'; the kinds are usb, gcode, sangaboard and indi");
}

std::vector<option> optionsOfTheSystem()
{
    std::vector<option> options;
    options.reserve(ROWS.size() + 1);
    for (const Row& row : ROWS)
        options.push_back({row.name, row.hasValue ? required_argument : no_argument, nullptr, 1});
    options.push_back({});
    return options;
}

} // namespace

Options parseOptions(int argc, char** argv)
{
    Options options;
    options.kind = kindNamed(argv[0]);
    const std::vector<option> known = optionsOfTheSystem();
    std::array<bool, ROWS.size()> given{};
    optind = 0; // begins anew
    opterr = 0;
    int index = 0;
    for (int found; (found = getopt_long(argc, argv, ":", known.data(), &index)) != -1;) {
        if (found == ':')
            throw UsageError(std::string(argv[optind - 1]) + " needs a value");
        if (found == '?')
            throw UsageError(std::string("there is no option ") + argv[optind - 1]);
        const Row& row = ROWS[static_cast<std::size_t>(index)];
        if ((row.takenBy & only(options.kind)) == 0)
            throw UsageError(std::string("--") + row.name + " is no option of " + argv[0]);
        given[static_cast<std::size_t>(index)] = true;
        row.set(options, optarg ? optarg : "");
    }
    if (optind < argc)
        throw UsageError(std::string("'") + argv[optind] + "' is too much");
    for (std::size_t i = 0; i < ROWS.size(); ++i) {
        if ((ROWS[i].neededBy & only(options.kind)) != 0 && !given[i])
            throw UsageError(std::string(argv[0]) + " needs --" + ROWS[i].name + "; see tesmor-drive --help");
    }
    return options;
}

std::string Options::motorId() const
{
    switch (kind) {
    case Kind::usb:
        return "usb " + std::to_string(usb.vendor) + ":" + std::to_string(usb.product) + " " + usb.serial;
    case Kind::gcode:
        return "gcode " + gcode.port + " " + gcode.axis;
    case Kind::sangaboard:
        return "sangaboard " + sangaboard.port + " " + sangaboard.axis;
    case Kind::indi:
        break;
    }
    return "indi " + indi.host + ":" + std::to_string(indi.port) + " " + indi.device;
}

} // namespace tesmor::drive
