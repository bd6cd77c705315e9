// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/options.h"

namespace tesmor::drive {

const char* const USAGE =
    "Usage: tesmor-drive KIND [options]     turns a real motor for the tesmor library\n"
    "       tesmor-drive list               shows what could be a motor, with the command to type\n"
    "       tesmor-drive --help | --version\n"
    "\n"
    "Kinds of motors:\n"
    "  usb --device VVVV:PPPP [--serial S] [--ack-endpoint 0x81]\n"
    "                     a camera with a focus controller of its own\n"
    "  gcode --port PORT --steps-per-mm N [--baud 115200] [--feed 60] [--axis Z]\n"
    "                     a board that speaks G-code: GRBL, Marlin; the feed is in mm a minute\n"
    "  sangaboard --port PORT [--baud 115200] [--axis z]\n"
    "                     the motor board of open laboratory microscopes\n"
    "  indi --device NAME [--server localhost:7624]\n"
    "                     a focuser that has an INDI driver\n"
    "\n"
    "Options of all kinds; steps are those of the library, 12800 a turn:\n"
    "  --unit U           the drive's number, 0 to 15 (0); the library takes the lowest one that is there\n"
    "  --gear N/M         N steps of the motor for M steps of the library (1/1)\n"
    "  --reverse          turn the other way round\n"
    "  --backlash STEPS   approach every position from one side: go this much too far in reverse, and come back\n"
    "  --limit LOW..HIGH  soft ends: refuse a move that goes beyond these positions\n"
    "  --position P       the motor stands at P now (where it stood at the end of the last run, at first 0)\n"
    "  --settle MS        wait this long after a move before the next frame is used (0)\n"
    "  --dry-run          say what would be sent, and turn nothing\n"
    "\n"
    "It runs until Ctrl-C or SIGTERM, and ends after the move in hand.\n"
    "Exit status: 0 ended as asked, 1 failed, 2 wrong usage.\n";

} // namespace tesmor::drive
