// SPDX-License-Identifier: GPL-2.0-or-later
// All of the command `tesmor` but main.
#pragma once

namespace tesmor::apps {

// Finds the subcommand, runs it, and reports a failure in one line on standard error. Returns the exit status.
int runCommand(int argc, char** argv);

} // namespace tesmor::apps
