#pragma once

namespace tesmor::apps {

// `tesmor microscope [OPTION]...`, a Subcommand's run.
int runMicroscope(int argc, char** argv);

} // namespace tesmor::apps
