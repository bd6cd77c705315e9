// SPDX-License-Identifier: GPL-2.0-or-later
// The images that a command line names.
#pragma once

#include "images/image_source.h"
#include "images/page_range.h"
#include "images/plane_choice.h"

#include <QStringList>

#include <vector>

namespace tesmor::apps {

// A file may be called "a[1].tif", and even "a.tif[1]".
PagedName pagesNamedBy(const QString& argument);

// Every argument is a file, or pages of a TIFF file as in stack.tif[3-20]; a TIFF file without a range gives all its
// pages. In one of several channels or times, only the chosen ones are there, and count. Throws UserError, which names
// the file and the remedy.
std::vector<ImageSource> findImages(const QStringList& arguments, const PlaneChoice& choice);

} // namespace tesmor::apps
