// Merges images through the library, as any host does it, with a progress bar and an end to it on interruption.
#pragma once

#include "terminal/progress_bar.h"
#include "tesmor/subcommand.h"

#include <QImage>

#include <cstdint>
#include <vector>

namespace tesmor::apps {

// Bytes that a run needs in all: the fusion's own memory, the images and the output.
std::uint64_t fusionMemory(QSize size, std::size_t imageCount);

// Throws when there is less.
void requireFusionMemory(std::uint64_t needed);

// To be thrown when it turns out later.
UserError fusionMemoryError(std::uint64_t needed);

// Within a LibrarySession.
//   images   at most 128, all of output's size and of format BGR888, at least 2 x 2 pixels
//   output   of format BGR888; untouched unless the result is TESMOR_SUCCESS
//   bar      follows the progress
// Returns TESMOR_SUCCESS, TESMOR_NO_MEMORY or, after an interruption, TESMOR_ABORTED. When the library does not end within
// a second of an interruption, it is not waited for: the program ends here with status 130.
std::int32_t mergeImages(const std::vector<QImage>& images, QImage& output, ProgressBar& bar);

} // namespace tesmor::apps
