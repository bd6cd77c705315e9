#pragma once

namespace tesmor::apps {

// `tesmor move [--virtual] [--json] ANGLE`, a Subcommand's run.
int runMove(int argc, char** argv);

} // namespace tesmor::apps
