// SPDX-License-Identifier: GPL-2.0-or-later
// The subcommands of `tesmor`; command.cpp has the table of them.
//
// argv[0] is "tesmor NAME". Each creates the Qt application that it needs, and returns the exit status or throws
// UsageError, UserError, Interrupted or std::bad_alloc.
#pragma once

namespace tesmor::apps {

int runCameras(int argc, char** argv);
int runDemo(int argc, char** argv);
int runDevices(int argc, char** argv);
int runFocus(int argc, char** argv);
int runFuse(int argc, char** argv);
int runMicroscope(int argc, char** argv);
int runMove(int argc, char** argv);
int runSnap(int argc, char** argv);
int runStack(int argc, char** argv);

} // namespace tesmor::apps
