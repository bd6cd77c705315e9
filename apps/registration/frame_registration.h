// SPDX-License-Identifier: GPL-2.0-or-later
// Finds how frames lie over one another. All frames are of format QImage::Format_BGR888 and one size, their
// sides from LEAST_REGISTERED_SIDE to MOST_REGISTERED_SIDE. Any thread at once.
#pragma once

#include "registration/placement.h"

#include <QImage>
#include <QSize>

#include <cstdint>
#include <optional>

namespace tesmor::apps {

constexpr int LEAST_REGISTERED_SIDE = 32; // pixels
constexpr int MOST_REGISTERED_SIDE = 32766;

// Of the frame over the reference; nothing if they have too little in common. Both may be out of focus, each in another
// place; brightness and contrast may differ. Finds shifts up to a third of the frame, scales and turns of a few percent
// and degrees, to a tenth of a pixel.
// G. D. Evangelidis, E. Z. Psarakis: Parametric image alignment using enhanced correlation coefficient maximization,
// IEEE Transactions on Pattern Analysis and Machine Intelligence 30 (2008).
std::optional<Placement> registerFrame(const QImage& frame, const QImage& reference);

// Bytes that a call takes at most.
std::uint64_t registrationMemory(QSize size);

} // namespace tesmor::apps
