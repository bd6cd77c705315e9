// SPDX-License-Identifier: GPL-2.0-or-later
// What `tesmor fuse` does about shifted images. A build without OpenCV has another source of these, which cannot align.
#pragma once

#include "terminal/live_line.h"

#include <QImage>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tesmor::apps {

// What this build aligns with, for people.
std::string alignmentText();

// Throws UserError if images of that size cannot be aligned, or not by this build.
//   name   of one of them
void requireAlignment(const QString& name, QSize size);

// Bytes in total that aligning takes at most: its own memory and the images.
std::uint64_t alignmentMemory(QSize size, std::size_t imageCount);

struct AlignedImages {
    QString reference;   // the image that the others lie over
    QStringList leftOut; // those that cannot be aligned
    QRect part;          // of what they merge to, that is to be kept
};

// Lays the images, in focus order, over a sharp one of them, and removes those that cannot be aligned. They keep their
// size, for which the fusion may have been planned before. Throws UserError if most cannot be aligned, or if they share
// too little.
//   names   of the images
//   crop    keep the part that all of them show; otherwise all, and what an image does not show is that of the next one
AlignedImages alignImages(std::vector<QImage>& images, const QStringList& names, bool crop, LiveLine::Style style);

// By how many pixels images in focus order are shifted against one another, if it is worth a word.
std::optional<double> noticeableShift(const std::vector<QImage>& images);

} // namespace tesmor::apps
