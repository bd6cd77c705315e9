// SPDX-License-Identifier: GPL-2.0-or-later
// What the subcommands that look through a camera share on their command lines.
#pragma once

#include <QCommandLineParser>
#include <QString>

#include <cstdint>
#include <optional>

namespace tesmor::apps {

struct CameraOptions {
    std::optional<QString> camera;  // none: the only one
    std::optional<double> exposure; // seconds
    std::optional<double> gain;
    bool json;
};

// Lines about the camera for a subcommand's description.
extern const char* const CAMERA_HELP;

void addCameraOptions(QCommandLineParser& parser, const QString& jsonExample);
void addMagnificationOption(QCommandLineParser& parser);

// Throws UsageError.
CameraOptions cameraOptionsOf(const QCommandLineParser& parser);

} // namespace tesmor::apps
