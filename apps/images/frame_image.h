// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QImage>

#include <cstdint>

namespace tesmor::apps {

// A copy of a frame in the library's layout, which is that of QImage::Format_BGR888; null when there is no memory.
QImage copyOfFrame(const std::uint8_t* pixels, int width, int height);

} // namespace tesmor::apps
