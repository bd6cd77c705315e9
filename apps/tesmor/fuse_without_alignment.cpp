// SPDX-License-Identifier: GPL-2.0-or-later
#include "terminal/errors.h"
#include "tesmor/fuse_alignment.h"

namespace tesmor::apps {

std::string alignmentText()
{
    return "built without OpenCV";
}

void requireAlignment(const QString&, QSize)
{
    throw UserError("this build cannot align; run tools/setup registration and build again, or leave out --align");
}

std::uint64_t alignmentMemory(QSize, std::size_t)
{
    return 0;
}

AlignedImages alignImages(std::vector<QImage>&, const QStringList&, bool, LiveLine::Style)
{
    return {};
}

std::optional<double> noticeableShift(const std::vector<QImage>&)
{
    return std::nullopt;
}

} // namespace tesmor::apps
