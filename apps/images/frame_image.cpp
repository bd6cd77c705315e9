// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/frame_image.h"

namespace tesmor::apps {

QImage copyOfFrame(const std::uint8_t* pixels, int width, int height)
{
    return QImage(pixels, width, height, QImage::Format_BGR888).copy();
}

} // namespace tesmor::apps
