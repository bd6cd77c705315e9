// SPDX-License-Identifier: GPL-2.0-or-later
// The command line of `tesmor demo`.
#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace tesmor::apps {

struct DemoOptions {
    QString output;
    std::uint64_t seed;
    std::uint16_t magnification;
    std::optional<int> offset;  // motor steps, of the start from the best focus
    std::optional<int> slices;  // 1 to 128
    std::optional<int> spacing; // units of the objective, 1 or more; at most LARGEST_MOVE motor steps
    QSize size;                 // of a frame, pixels; photographs keep theirs
    std::optional<QString> planes;
};

// Nothing if the user asked for help; it is then printed. Throws UsageError.
std::optional<DemoOptions> parseDemoOptions(const QStringList& arguments);

} // namespace tesmor::apps
