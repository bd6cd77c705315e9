// SPDX-License-Identifier: GPL-2.0-or-later
// Where an image is: a file, or a page of a TIFF file.
#pragma once

#include <QString>

namespace tesmor::apps {

struct ImageSource {
    QString file;
    int page = 0; // from 0
    QString name; // for messages: "a.png", "stack.tif, page 7"
};

} // namespace tesmor::apps
