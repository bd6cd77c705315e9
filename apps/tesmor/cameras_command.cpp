// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/subcommands.h"

#include "cameras/camera_list.h"
#include "terminal/command_line.h"
#include "terminal/errors.h"

#include <QCoreApplication>
#include <QJsonArray>

#include <algorithm>
#include <cstdio>

namespace tesmor::apps {

namespace {

constexpr const char* DESCRIPTION =
    "Lists the cameras, with the names that --camera takes. This takes some two seconds, in which network cameras\n"
    "respond. --camera also takes what no list can show: the address of a stream, a video file, a GStreamer pipeline,\n"
    "or virtual, a simulated microscope.\n\n"
    "Examples:\n"
    "  tesmor cameras\n"
    "  tesmor snap --camera /dev/video0 -o image.png\n\n"
    "Exit status: 0 a camera was found, 1 none was, 2 wrong usage.";

void printCameras(const std::vector<cameras::CameraInfo>& all)
{
    std::size_t width = 0;
    for (const auto& camera : all)
        width = std::max(width, camera.name.size());
    for (const auto& camera : all)
        std::printf("%-*s  %s\n", static_cast<int>(width), camera.name.c_str(), camera.description.c_str());
    if (all.empty())
        std::fprintf(stderr, "tesmor cameras: no camera found; connect one, or try: tesmor snap --camera virtual\n");
}

void printCamerasAsJson(const std::vector<cameras::CameraInfo>& all)
{
    QJsonArray array;
    for (const auto& camera : all)
        array.append(QJsonObject{{"name", QString::fromStdString(camera.name)},
                                 {"description", QString::fromStdString(camera.description)}});
    printJson({{"cameras", array}});
}

} // namespace

int runCameras(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(DESCRIPTION);
    parser.addOption(
        {"json", "Print the result as one line of JSON: {\"cameras\":[{\"description\":\"...\",\"name\":\"...\"}]}."});
    if (!parseCommandLine(parser, QCoreApplication::arguments()))
        return STATUS_DONE;
    refuseArguments(parser);
    const auto all = cameras::listCameras();
    if (parser.isSet("json"))
        printCamerasAsJson(all);
    else
        printCameras(all);
    return all.empty() ? STATUS_FAILED : STATUS_DONE;
}

} // namespace tesmor::apps
