#pragma once

namespace tesmor::apps {

// `tesmor fuse [-o OUT] [--quiet] IMAGE...`, a Subcommand's run.
int runFuse(int argc, char** argv);

} // namespace tesmor::apps
