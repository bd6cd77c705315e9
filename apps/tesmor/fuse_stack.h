// SPDX-License-Identifier: GPL-2.0-or-later
// One stack on its way through `tesmor fuse`: planned, read, merged, written. All throw UserError, which names the
// culprit and the remedy.
#pragma once

#include "images/depth_range.h"
#include "images/image_series.h"
#include "images/plane_choice.h"
#include "terminal/live_line.h"

#include <QImage>
#include <QJsonObject>
#include <QRect>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <vector>

namespace tesmor::apps {

// What the user asks for, the same for every stack.
struct FuseOptions {
    PlaneChoice planes;
    RangeChoice range;
    bool align;
    bool crop;         // an aligned stack to what all images show
    bool lookForShift; // in stacks that are not to be aligned
};

struct StackPlan {
    ImageSeries series;
    std::uint64_t memory; // bytes that it takes in total
};

// From the headers alone; from 1 to 128 images.
//   arguments   files, or pages of TIFF files as in stack.tif[3-20]
StackPlan planStack(const QStringList& arguments, const FuseOptions& options);

// "10 images of 1200 x 900 pixels"
QString planText(const StackPlan& plan);

// That the file can be written, and is none of those to be read.
void checkStackOutput(const QString& file, const StackPlan& plan);

struct LoadedStack {
    std::vector<QImage> images;      // of format BGR888
    bool grey;                       // all of them were
    std::optional<DepthRange> range; // that scaled them to 8 bits, in the unit of the images
    QString reference;               // on which they are aligned
    QStringList leftOut;             // since they could not be
    QRect part;                      // of what they merge to, that is to be kept
    std::optional<double> shift;     // worth a word, pixels
};

// Read and, if asked for, aligned. Any thread, one at a time.
LoadedStack loadStack(const StackPlan& plan, const FuseOptions& options, LiveLine::Style style);

// With the resolution and the colour profile of the first image. Within a LibrarySession. Throws Interrupted, too.
QImage mergeStack(const StackPlan& plan, const LoadedStack& stack, LiveLine::Style style);

// images, leftOut, width, height and range
QJsonObject figuresOf(const LoadedStack& stack, const QImage& output);

} // namespace tesmor::apps
