#pragma once

namespace tesmor::apps {

// `tesmor devices [--json]`, a Subcommand's run.
int runDevices(int argc, char** argv);

} // namespace tesmor::apps
