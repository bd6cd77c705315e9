// SPDX-License-Identifier: GPL-2.0-or-later
// Where an image is: a file, a page of a TIFF file, or behind one.
#pragma once

#include <QSizeF>
#include <QString>

#include <cstdint>

namespace tesmor::apps {

// How large a pixel is, as far as a file's description says it; the rest is in the pages.
struct PixelScale {
    QSizeF pixelSize;          // metres; empty if unknown
    double resolutionUnit = 0; // metres in which a page's resolution counts; 0 if the page says so itself
};

struct ImageSource {
    QString file;
    std::uint64_t page; // where it begins in the file; 0: the first, or no pages
    QString name;       // for messages: "a.png", "stack.tif, page 7"
    PixelScale scale = {};
    int behind = 0; // how many images behind the page it lies, with no page of its own
};

} // namespace tesmor::apps
