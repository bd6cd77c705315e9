// SPDX-License-Identifier: GPL-2.0-or-later
// `tesmor fuse --each`: every stack becomes one image of its name in a folder.
#pragma once

#include "tesmor/fuse_stack.h"

#include <QString>
#include <QStringList>

namespace tesmor::apps {

struct EachRequest {
    QStringList stacks; // folders, files, or pages of TIFF files
    QString folder;     // of the output; created if necessary
    QString format;     // of the output: png, jpg, tif or bmp
    bool skipExisting;
    bool quiet;
    bool json;
    FuseOptions options;
};

// Returns the exit status: STATUS_FAILED if a stack failed, which ends none of the others. Throws UserError if there is
// nothing to begin with or no place left to write to.
int fuseEach(const EachRequest& request);

} // namespace tesmor::apps
