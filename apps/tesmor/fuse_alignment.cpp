// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/fuse_alignment.h"

#include "registration/frame_overlay.h"
#include "registration/frame_registration.h"
#include "registration/shift_look.h"
#include "registration/stack_placement.h"
#include "terminal/errors.h"
#include "terminal/progress_bar.h"
#include "terminal/text.h"

#include <algorithm>

namespace tesmor::apps {

namespace {

constexpr double NOTICEABLE_SHIFT = 3; // pixels; in many images the look's errors add up to two and a half
constexpr int LEAST_SHARED = 4;        // of a side, one part in so many

} // namespace

std::string alignmentText()
{
    return "with " + registrationVersion();
}

void requireAlignment(const QString& name, QSize size)
{
    if (std::min(size.width(), size.height()) < LEAST_REGISTERED_SIDE)
        throw UserError(QString("%1: %2 pixels are too small to be aligned; the minimum is %3 x %3")
                            .arg(name, sizeText(size), QString::number(LEAST_REGISTERED_SIDE)));
    if (std::max(size.width(), size.height()) > MOST_REGISTERED_SIDE)
        throw UserError(QString("%1: %2 pixels are too large to be aligned; the maximum is %3 a side")
                            .arg(name, sizeText(size), QString::number(MOST_REGISTERED_SIDE)));
}

std::uint64_t alignmentMemory(QSize size, std::size_t imageCount)
{
    const auto pixels = static_cast<std::uint64_t>(size.width()) * static_cast<std::uint64_t>(size.height());
    return placementMemory(size) + 3 * pixels * (imageCount + 1);
}

AlignedImages alignImages(std::vector<QImage>& images, const QStringList& names, bool crop, LiveLine::Style style)
{
    const QSize size = images.front().size();
    ProgressBar bar("Aligning", style);
    const StackPlacement placement = placeFrames(images, [&](int percent) { bar.show(percent); });
    AlignedImages aligned{names[static_cast<qsizetype>(placement.reference)], {}, QRect({}, size)};
    for (std::size_t i = 0; i < images.size(); ++i) {
        if (!placement.frames[i])
            aligned.leftOut.append(names[static_cast<qsizetype>(i)]);
    }
    if (placement.leavesOutMost())
        throw UserError(QString("%1 of %2 images cannot be aligned with %3: they are blank, or show "
                                "something else; leave them out, or merge without --align")
                            .arg(aligned.leftOut.size())
                            .arg(images.size())
                            .arg(aligned.reference));
    if (crop)
        aligned.part = sharedPart(placement, size);
    if (aligned.part.width() < size.width() / LEAST_SHARED || aligned.part.height() < size.height() / LEAST_SHARED)
        throw UserError(
            QString("the images share less than a quarter of the width or height of %1; merge fewer, or add "
                    "--no-crop")
                .arg(aligned.reference));
    layOver(images, placement);
    return aligned;
}

std::optional<double> noticeableShift(const std::vector<QImage>& images)
{
    const double shift = shiftBetweenFrames(images);
    return shift >= NOTICEABLE_SHIFT ? std::optional(shift) : std::nullopt;
}

} // namespace tesmor::apps
