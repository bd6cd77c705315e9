// The memory that a fusion takes, and whether it is there.
#pragma once

#include "terminal/errors.h"

#include <QSize>

#include <cstddef>
#include <cstdint>

namespace tesmor::apps {

// Bytes that a run needs in all: the fusion's own memory, the images and the output.
std::uint64_t fusionMemory(QSize size, std::size_t imageCount);

// Throws when programs cannot take so much without swapping.
void requireFusionMemory(std::uint64_t needed);

// To be thrown when it turns out later.
UserError fusionMemoryError(std::uint64_t needed);

} // namespace tesmor::apps
