// The whole command `tesmor`, for a `main` that adds nothing.
#pragma once

namespace tesmor::apps {

// Finds the subcommand, runs it, and turns its failure into a line on the standard error. Returns the exit status.
int runCommand(int argc, char** argv);

} // namespace tesmor::apps
