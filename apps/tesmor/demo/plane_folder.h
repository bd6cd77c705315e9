// SPDX-License-Identifier: GPL-2.0-or-later
// A folder of photographs as the planes of a specimen.
#pragma once

#include "microscope/camera/image.h"
#include "terminal/live_line.h"

#include <QString>

#include <vector>

namespace tesmor::apps {

// All PNG, JPEG, TIFF and BMP files in the folder, in the order of their names (2 before 10); at least two of them, of
// one size. Throws UserError, which names the culprit and the remedy.
std::vector<microscope::Image> readPlanes(const QString& folder, LiveLine::Style style);

} // namespace tesmor::apps
