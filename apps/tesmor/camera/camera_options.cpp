// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/camera/camera_options.h"

#include "host/focus_units.h"
#include "terminal/command_line.h"

namespace tesmor::apps {

namespace {

constexpr double LONGEST_EXPOSURE_MS = 3'600'000;
constexpr double LARGEST_GAIN = 1e6;

std::optional<double> optionalNumber(const QCommandLineParser& parser, const QString& name, double most)
{
    if (!parser.isSet(name))
        return std::nullopt;
    return numberOf("--" + name, parser.value(name), 0, most);
}

} // namespace

const char* const CAMERA_HELP =
    "Without --camera it uses the only camera that is connected. NAME is a name that tesmor cameras lists, a device\n"
    "file, the address of a GigE camera or of a stream, a video file, a GStreamer pipeline, or virtual: a simulated\n"
    "microscope with a drive.";

void addCameraOptions(QCommandLineParser& parser, const QString& jsonExample)
{
    parser.addOptions({
        {"camera", "Use this camera.", "NAME"},
        {"exposure", "Expose each frame for MS milliseconds.", "MS"},
        {"gain", "Gain of the camera, in its own unit.", "G"},
        {"json", "Print the result as one line of JSON: " + jsonExample +
                     ", with the library's result code; also if it fails."},
    });
}

void addMagnificationOption(QCommandLineParser& parser)
{
    parser.addOption({"magnification", "Magnification of the objective: " + magnificationList() + ".", "M", "10"});
}

CameraOptions cameraOptionsOf(const QCommandLineParser& parser)
{
    CameraOptions options{};
    if (parser.isSet("camera"))
        options.camera = parser.value("camera");
    if (const auto milliseconds = optionalNumber(parser, "exposure", LONGEST_EXPOSURE_MS))
        options.exposure = *milliseconds / 1000;
    options.gain = optionalNumber(parser, "gain", LARGEST_GAIN);
    options.json = parser.isSet("json");
    return options;
}

} // namespace tesmor::apps
