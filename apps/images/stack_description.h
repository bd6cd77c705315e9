// SPDX-License-Identifier: GPL-2.0-or-later
// What the writer of a TIFF file says of its pages: which slice, channel and time each of them is, and how large a
// pixel is. All throw UserError, which names the file and the remedy.
#pragma once

#include "images/image_source.h"

#include <QByteArray>
#include <QMap>
#include <QString>

#include <cstdint>
#include <vector>

namespace tesmor::apps {

struct DescribedFile {
    QString name;
    QByteArray description; // of the first page
    int pageCount;
    std::int64_t pageSamples; // of the first page, all channels together
    std::int64_t room; // how many images like the first page's could lie there, one behind the other; see imageRoom
};

constexpr int MOST_PAGES = 1'000'000; // as many pages as libtiff reads

// All from 0.
struct Plane {
    int page;
    int channel;
    int time;
    int slice;
};

struct StackDescription {
    std::vector<Plane> planes;
    QMap<int, QString> channelNames; // of those that have one
    PixelScale scale;
    bool behindOnePage = false; // the images lie behind the only page, and a plane's page is the number of its image
};

// Without OME-XML and without ImageJ's lines, every page is a slice.
StackDescription describeStack(const DescribedFile& file);

// The two that describeStack knows.
StackDescription readOmeXml(const DescribedFile& file);
StackDescription readImagejLines(const DescribedFile& file);

// Whether a file of so many images has one page that stands for all. A page taken out of a stack, too, has the
// description of the whole, but not its images. Throws UserError if some of them are missing.
bool liesBehindOnePage(const DescribedFile& file, std::int64_t images);

// Every page is a slice.
std::vector<Plane> plainPlanes(int pageCount);

// Metres; 0 for what is no length.
double metresOf(const QString& unit);

} // namespace tesmor::apps
