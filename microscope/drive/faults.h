// SPDX-License-Identifier: GPL-2.0-or-later
// One switch for each fault of the focus drive. All are off by default; a count falls by one at each use, a flag is
// cleared by its use.
#pragma once

#include <chrono>

namespace tesmor::microscope {

struct Faults {
    int refuseMoves = 0;              // refuse the next n move requests
    int refuseRequests = 0;           // refuse the next n well-formed requests of any kind
    int withholdAcknowledgements = 0; // make the next n moves, but never acknowledge them
    int hangRequests = 0;             // carry out the next n requests, but never reply to them
    int rubbishReplies = 0;           // send meaningless packets before each of the next n replies

    // Every move is acknowledged this much after its end. Real time, whatever the time scale.
    std::chrono::milliseconds acknowledgementDelay{0};

    // The drive goes as if unplugged or killed, and its unit with it, until the microscope is started again:
    bool vanishAtRequest = false;   // when the next request comes, which is not carried out
    bool vanishBeforeReply = false; // when the next request has been carried out, before it is replied to
    bool vanishInMove = false;      // half way through the next move, after its request was accepted
};

} // namespace tesmor::microscope
