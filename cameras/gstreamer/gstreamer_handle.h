// SPDX-License-Identifier: GPL-2.0-or-later
// Owns what GStreamer counts the references of.
#pragma once

#include <gst/gst.h>

#include <memory>

namespace tesmor::cameras {

template <auto release>
struct Release {
    template <class Type>
    void operator()(Type* thing) const
    {
        release(thing);
    }
};

template <class Type>
using ObjectHandle = std::unique_ptr<Type, Release<gst_object_unref>>;
using SampleHandle = std::unique_ptr<GstSample, Release<gst_sample_unref>>;
using MessageHandle = std::unique_ptr<GstMessage, Release<gst_message_unref>>;
using CapsHandle = std::unique_ptr<GstCaps, Release<gst_caps_unref>>;
using ErrorHandle = std::unique_ptr<GError, Release<g_error_free>>;
using TextHandle = std::unique_ptr<char, Release<g_free>>;

} // namespace tesmor::cameras
