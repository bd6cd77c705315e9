// SPDX-License-Identifier: GPL-2.0-or-later
// Pages of a file, as named on the command line: stack.tif[3-20].
#pragma once

#include <QString>

#include <optional>

namespace tesmor::apps {

struct PageRange {
    int first = 1;           // from 1
    std::optional<int> last; // nothing: the last there is
};

struct PagedName {
    QString file;
    std::optional<PageRange> pages; // nothing: all of them
};

// "[3-20]", "[5]", "[3-]" and "[-20]" at the end are pages; in any other name nothing is. Throws UserError for a range
// that is empty or begins at 0.
PagedName pagedNameOf(const QString& text);

} // namespace tesmor::apps
