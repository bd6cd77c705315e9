// SPDX-License-Identifier: GPL-2.0-or-later
// How an operation on a camera and a drive ended, told to people or to a script.
#pragma once

#include "tesmor/camera/camera_options.h"
#include "tesmor/camera/live_camera.h"

#include <QJsonObject>
#include <QString>

#include <cstdint>

namespace tesmor::apps {

// What has happened and what to do, for every result code but those of success and TESMOR_ABORTED; the camera's own
// reason where it is lost.
QString failureText(std::int32_t result, const LiveCamera& camera);

// Prints the text, or with --json the result, the text and all of `more`. Returns the exit status. Throws UserError for
// a failure without --json, and Interrupted for TESMOR_ABORTED.
int tellOutcome(const CameraOptions& options, std::int32_t result, const QString& text, QJsonObject more);

} // namespace tesmor::apps
