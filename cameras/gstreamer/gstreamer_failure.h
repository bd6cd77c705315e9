// SPDX-License-Identifier: GPL-2.0-or-later
// GStreamer's errors as one line for people, with a remedy.
#pragma once

#include <gst/gst.h>

#include <string>

namespace tesmor::cameras {

std::string pipelineFailure(const GError& error); // of a pipeline's text
std::string streamFailure(GstMessage* message);   // a message of type error

} // namespace tesmor::cameras
