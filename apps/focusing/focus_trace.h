// SPDX-License-Identifier: GPL-2.0-or-later
// The course of an autofocus, reconstructed from the moves that the drive was asked for and the frames that the library
// received.
#pragma once

#include "charts/search_phase.h"
#include "focusing/seen_frame.h"
#include "microscope/drive/request_log.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace tesmor::apps {

struct TraceStep {
    SearchPhase phase;         // of the sample, if there is one
    std::int64_t displacement; // motor steps, signed
    std::int64_t position;     // of the motor after the move
    double seconds;            // from the search's first request to this move's
    std::optional<SeenFrame> sample;
};

using FocusTrace = std::vector<TraceStep>;

// Motor steps, signed; none unless the request is a move that was accepted.
std::optional<std::int64_t> displacementOf(const microscope::LoggedRequest& request);

// Sizes tell the phases apart: the first nine moves, by one coarse step each, are the probe; a fine step is a fifth of
// a coarse one; a longer move brings the motor to where the next sweep starts; the last two bring it to the sharpest
// position. The sample of a move is the last frame before the next request, as the library goes on as soon as it has
// one.
//   requests        of one autofocus that has ended, in order
//   frames          in order; earlier and later ones are ignored
//   startPosition   motor steps
//   complete        it found a focus, so that the last two moves are the return
FocusTrace traceSearch(const std::vector<microscope::LoggedRequest>& requests, const std::vector<SeenFrame>& frames,
                       std::int64_t startPosition, bool complete);

QByteArray traceAsCsv(const FocusTrace& trace);

} // namespace tesmor::apps
