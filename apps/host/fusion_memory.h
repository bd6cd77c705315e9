// SPDX-License-Identifier: GPL-2.0-or-later
// The memory that a fusion needs, and whether it is available.
#pragma once

#include "terminal/errors.h"

#include <QSize>

#include <cstddef>
#include <cstdint>

namespace tesmor::apps {

// Bytes in total: the fusion's own memory, the images and the output.
std::uint64_t fusionMemory(QSize size, std::size_t imageCount);

// True where the system does not say.
bool hasMemory(std::uint64_t needed);

// Throws UserError if that much is not available without swapping.
void requireFusionMemory(std::uint64_t needed);

// To be thrown if memory runs short later.
UserError fusionMemoryError(std::uint64_t needed);

} // namespace tesmor::apps
