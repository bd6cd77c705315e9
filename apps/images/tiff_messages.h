// SPDX-License-Identifier: GPL-2.0-or-later
// What libtiff says of one file, which it would otherwise print.
#pragma once

#include <QString>

#include <tiffio.h>

#include <memory>

namespace tesmor::apps {

struct TiffMessages {
    QString error;    // the first one
    bool cut = false; // JPEG data ends early; libtiff pads it and merely warns
};

// To open a file with. The messages outlive the file. Throws std::bad_alloc.
std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions*)> optionsWith(TiffMessages& messages);

} // namespace tesmor::apps
