// `tesmor demo`: a whole session on a simulated microscope, from a blurred view to one sharp image.
#pragma once

namespace tesmor::apps {

// See Subcommand in subcommand.h.
int runDemo(int argc, char** argv);

} // namespace tesmor::apps
