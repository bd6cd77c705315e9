// SPDX-License-Identifier: GPL-2.0-or-later
#include "cameras/gstreamer/gstreamer_failure.h"

#include "cameras/gstreamer/gstreamer_handle.h"

#include <algorithm>

namespace tesmor::cameras {

namespace {

const char* resourceRemedy(int code)
{
    switch (code) {
    case GST_RESOURCE_ERROR_NOT_FOUND:
        return "check that it is plugged in and its name is right";
    case GST_RESOURCE_ERROR_BUSY:
        return "close the other program that uses it";
    case GST_RESOURCE_ERROR_NOT_AUTHORIZED:
        return "ask for access to it; for a camera, to be put into the group video";
    case GST_RESOURCE_ERROR_OPEN_READ:
    case GST_RESOURCE_ERROR_OPEN_READ_WRITE:
        return "check that it is plugged in and that you may use it (group video)";
    default:
        return "plug it in again, or check that it is still sending";
    }
}

const char* remedyFor(const GError& error)
{
    if (error.domain == GST_RESOURCE_ERROR)
        return resourceRemedy(error.code);
    if (error.domain == GST_CORE_ERROR && error.code == GST_CORE_ERROR_MISSING_PLUGIN)
        return "install the GStreamer plugin for it: the package gstreamer1.0-plugins-bad, -ugly or gstreamer1.0-libav";
    if (error.domain == GST_STREAM_ERROR)
        return "check that it is a video; in a pipeline, decode it first, as with ! decodebin";
    return "try it with gst-launch-1.0, of the package gstreamer1.0-tools";
}

// A line of its own, without a full stop.
std::string plain(std::string text)
{
    std::ranges::replace(text, '\n', ' ');
    while (!text.empty() && (text.back() == '.' || text.back() == ' '))
        text.pop_back();
    return text;
}

} // namespace

std::string pipelineFailure(const GError& error)
{
    const char* const remedy = error.code == GST_PARSE_ERROR_NO_SUCH_ELEMENT
                                   ? "install the GStreamer plugin that has it, or correct its name"
                                   : "try it with gst-launch-1.0, of the package gstreamer1.0-tools";
    return "the pipeline is not possible: " + plain(error.message) + "; " + remedy;
}

std::string streamFailure(GstMessage* message)
{
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    const ErrorHandle owned(error);
    return plain(error->message) + "; " + remedyFor(*error);
}

} // namespace tesmor::cameras
