// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/subcommands.h"

#include "host/drive_units.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"

#include <QCoreApplication>
#include <QJsonArray>

#include <algorithm>
#include <cstdio>

namespace tesmor::apps {

namespace {

constexpr const char* DESCRIPTION = "Lists the focus drives. Nothing moves.\n\n"
                                    "Each drive has a unit number from 0 to 15; the library uses the lowest one.\n\n"
                                    "Examples:\n"
                                    "  tesmor devices\n"
                                    "  tesmor microscope > /dev/null & tesmor devices     with a simulated drive\n\n"
                                    "Exit status: 0 a drive responds, 1 none does, 2 wrong usage.";

const char* stateName(DriveState state)
{
    switch (state) {
    case DriveState::answers:
        return "answers";
    case DriveState::busy:
        return "busy";
    case DriveState::foreign:
        return "foreign";
    case DriveState::silent:
        return "silent";
    }
    return "";
}

QString explanation(const DriveUnit& unit)
{
    switch (unit.state) {
    case DriveState::answers:
        return "answers";
    case DriveState::busy:
        return "busy: in use by another program; close that program";
    case DriveState::foreign:
        return QString("foreign: its drive service runs as user %1; it must run as root or as you").arg(unit.owner);
    case DriveState::silent:
        return "silent: its drive service does not reply; restart the service";
    }
    return {};
}

void printUnits(const std::vector<DriveUnit>& units)
{
    for (const DriveUnit& unit : units)
        std::printf("unit %-2u  %s\n", unit.number, qPrintable(explanation(unit)));
    if (units.empty())
        std::fprintf(
            stderr,
            "tesmor devices: no focus drive found; connect a camera that has one and start its drive service, or "
            "try: tesmor microscope > /dev/null\n");
}

void printUnitsAsJson(const std::vector<DriveUnit>& units)
{
    QJsonArray array;
    for (const DriveUnit& unit : units)
        array.append(QJsonObject{{"unit", static_cast<int>(unit.number)}, {"state", stateName(unit.state)}});
    printJson({{"units", array}});
}

} // namespace

int runDevices(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(DESCRIPTION);
    parser.addOption({"json", "Print the result as one line of JSON: {\"units\":[{\"unit\":0,\"state\":\"answers\"}]}. "
                              "The states: answers, busy, foreign, silent."});
    if (!parseCommandLine(parser, QCoreApplication::arguments()))
        return STATUS_DONE;
    refuseArguments(parser);

    const std::vector<DriveUnit> units = findDriveUnits();
    if (parser.isSet("json"))
        printUnitsAsJson(units);
    else
        printUnits(units);
    const auto answers = [](const DriveUnit& unit) { return unit.state == DriveState::answers; };
    return std::ranges::any_of(units, answers) ? STATUS_DONE : STATUS_FAILED;
}

} // namespace tesmor::apps
